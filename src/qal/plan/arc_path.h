#ifndef QAL_PLAN_ARC_PATH_H_
#define QAL_PLAN_ARC_PATH_H_

#include <optional>

#include "tool_path.h"

// Internal: a part of a circle of the tool.
namespace qal {

/// A circle about a line, by a point on it.
struct Circle {
  Vector3 centre;  ///< nearest to the point
  Vector3 axis;    ///< of length 1
};

/// The circle through three points, its axis such that from `a` through `b` to `c` is
/// counter-clockwise.
/// @return nothing when they are on a line
std::optional<Circle> CircleThrough(const Vector3& a, const Vector3& b, const Vector3& c);

/// The angle from `a` to `b` about a circle's axis, counter-clockwise: 0 to 2 pi.
double AngleAbout(const Circle& circle, const Vector3& a, const Vector3& b);

/// From a point about an axis, in proportion to x; the orientation by a steady turn.
class ArcPath final : public ToolPath {
 public:
  /// @param to where it ends, but for rounding
  ArcPath(const Vec3& from, const Vec3& to, const Circle& circle, double angle_rad,
          const SteadyTurn& turn, double span);

  Pose PoseAt(double x) const override;
  ToolRates RatesAt(double x) const override;

 private:
  Vec3 from_;
  Vec3 to_;
  Vector3 centre_;
  Vector3 radius_;   // from the centre to the start
  Vector3 forward_;  // perpendicular to it, towards growing angles
  double angle_rad_;
  SteadyTurn turn_;
};

}  // namespace qal

#endif  // QAL_PLAN_ARC_PATH_H_
