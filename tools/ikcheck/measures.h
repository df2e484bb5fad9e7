#ifndef QAL_TOOLS_IKCHECK_MEASURES_H_
#define QAL_TOOLS_IKCHECK_MEASURES_H_

#include "solver.h"

namespace qal::ikcheck {

constexpr double kPi = 3.14159265358979323846;

// NaN anywhere makes each of them NaN.

bool AllFinite(const Joints& joints);
bool AllFinite(const Pose& pose);

/// The largest differences of two poses.
struct PoseDifference {
  double position_m;
  double element;  ///< of the rotation matrices

  double Size() const;  ///< the larger of the two, as numbers
};
PoseDifference Difference(const Pose& a, const Pose& b);

/// The largest difference of two joints, whole turns apart being none [rad].
double Difference(const Joints& a, const Joints& b);

/// How far a joint set is from a straight line of sets, in the joint that is farthest off [rad].
/// @param direction a unit vector
double OffLine(const Joints& joints, const Joints& start, const Joints& direction);

/// How far a matrix is from a rotation: its columns from unit length and right angles; 2
/// at least for one that mirrors.
double OffRotation(const Rotation& rotation);

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_MEASURES_H_
