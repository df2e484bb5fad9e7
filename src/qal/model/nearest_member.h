#ifndef QAL_MODEL_NEAREST_MEMBER_H_
#define QAL_MODEL_NEAREST_MEMBER_H_

#include <vector>

#include "family.h"
#include "lines.h"

// Internal: the member of a family that an arm's axes are nearest to.
namespace qal {

/// A condition that a family has for its axes, which are counted from 1.
struct AxisCondition {
  enum class Kind {
    kParallel,      ///< a and b
    kRightAngle,    ///< between a and b
    kMeeting,       ///< a and b, which are at right angles
    kThroughCentre  ///< a passes through the point of axis 5 that is nearest to axis 4
  };
  Kind kind;
  size_t a;
  size_t b = 0;
};

using AxisConditions = std::vector<AxisCondition>;

/// What a family asks of its members' axes.
const AxisConditions& ConditionsOf(Family family);

/// How far axes are from a condition: an angle [rad] or a distance [m]. Distances are defined where
/// axes aren't parallel.
double Unmet(const Axes& axes, const AxisCondition& condition);

/// The axes moved as little as it takes to meet the conditions: the sum of squares over all axes of
/// the distance and of the angle, 1.5 mm counting as much as 0.5 degrees, is the least. Found by
/// Gauss-Newton steps on their directions and points. Axes that meet them within rounding are
/// returned as they are.
Axes NearestMember(const Axes& axes, const AxisConditions& conditions);

/// How far `axes` are from `others`.
AxisDeviation DeviationOf(const Axes& axes, const Axes& others);

}  // namespace qal

#endif  // QAL_MODEL_NEAREST_MEMBER_H_
