#ifndef QAL_MODEL_FAMILY_H_
#define QAL_MODEL_FAMILY_H_

#include <array>
#include <vector>

#include "../../core/export.h"
#include "description.h"

namespace qal {

/// How far axes may be from parallel, from right angles and from meeting. Angles written with ten
/// decimals lie within; what is left can't be seen in the solver's answers.
constexpr double kAxisAngleToleranceRad = 1e-10;
constexpr double kAxisDistanceToleranceM = 1e-10;

/// In place of an axis: the wrist's centre, where axes 4 and 5 meet.
constexpr int kWristCentre = 0;

/// A condition of a family that an arm doesn't meet.
struct Deviation {
  enum class Kind {
    kNotParallel,    ///< `amount`: from parallel [rad]
    kNotRightAngle,  ///< `amount`: from a right angle [rad]
    kNotMeeting,     ///< `amount`: apart [m]
    kTooClose,       ///< `amount`: apart [m]; a link needs 1e-3
  };
  Kind kind;
  int axis_a;  ///< from 1
  int axis_b;  ///< from 1, or kWristCentre
  double amount;
};

/// Which closed forms an arm has, and what keeps it from the others.
struct FamilyReport {
  std::vector<Deviation> spherical_wrist;      ///< empty: axes 4, 5 and 6 meet in one point
  std::vector<Deviation> three_parallel_axes;  ///< empty: axes 2, 3 and 4 are parallel
  /// Between axis j and the next [rad], 0 to pi / 2.
  std::array<double, 5> axis_angles_rad;
  int rounded_angles;  ///< the description's

  bool HasClosedForm() const { return spherical_wrist.empty() || three_parallel_axes.empty(); }
};

/// Compares an arm's axes, with all joints at zero, with what the families ask for. Distances are
/// looked at once the angles are right: without right angles there is no place where axes meet.
QAL_API FamilyReport ExamineFamilies(const ArmDescription& arm);

}  // namespace qal

#endif  // QAL_MODEL_FAMILY_H_
