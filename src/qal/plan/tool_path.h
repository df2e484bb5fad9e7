#ifndef QAL_PLAN_TOOL_PATH_H_
#define QAL_PLAN_TOOL_PATH_H_

#include <memory>

#include "../model/pose.h"
#include "screws.h"

// Internal: where a path has the tool.
namespace qal {

/// How the tool moves along a path: derivatives with respect to the path's parameter.
struct ToolRates {
  Vector3 velocity;  ///< of the tool centre point
  Vector3 acceleration;
  Vector3 jerk;
  Vector3 turn;  ///< the angular velocity, and its derivatives
  Vector3 turn_acceleration;
  Vector3 turn_jerk;
};

/// The quaternion needs not be of length 1.
Frame FrameOf(const Pose& pose);

/// A path of the tool; its parameter x goes from 0 to `span`.
class ToolPath {
 public:
  explicit ToolPath(double span) : span_(span) {}
  ToolPath(const ToolPath&) = default;
  ToolPath& operator=(const ToolPath&) = default;
  ToolPath(ToolPath&&) = default;
  ToolPath& operator=(ToolPath&&) = default;
  virtual ~ToolPath() = default;

  double span() const { return span_; }

  /// At the ends, and beyond them, exactly the ends.
  virtual Pose PoseAt(double x) const = 0;
  virtual ToolRates RatesAt(double x) const = 0;

  Frame FrameAt(double x) const { return FrameOf(PoseAt(x)); }

 private:
  double span_;
};

/// The turn of a tool from one orientation about a fixed axis, in proportion to the path.
class SteadyTurn {
 public:
  /// To another orientation, the shorter way.
  SteadyTurn(const Quat& from, const Quat& to);
  SteadyTurn(const Quat& from, const Vector3& axis, double angle_rad);

  double angle_rad() const { return angle_rad_; }
  Vector3 rate() const { return angle_rad_ * axis_; }  ///< of all the path
  Quat At(double part) const;  ///< from 0 to 1; at the ends, and beyond, exactly the ends

 private:
  Quat from_;
  Quat to_;
  Vector3 axis_;  // in the base frame
  double angle_rad_;
};

Quat Normalized(const Quat& q);
Quat RotationQuat(const Vector3& axis, double angle_rad);

}  // namespace qal

#endif  // QAL_PLAN_TOOL_PATH_H_
