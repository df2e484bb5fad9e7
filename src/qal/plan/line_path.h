#ifndef QAL_PLAN_LINE_PATH_H_
#define QAL_PLAN_LINE_PATH_H_

#include "../model/pose.h"
#include "screws.h"

// Internal: a straight line of the tool, turned about a fixed axis as it goes.
namespace qal {

/// From pose to pose, s from 0 to 1: position start + s * (end - start), orientation turned about a
/// fixed axis by s times the angle, the shorter way.
class LinePath {
 public:
  LinePath(const Pose& from, const Pose& to);

  double length_m() const { return length_m_; }
  double angle_rad() const { return angle_rad_; }

  Pose At(double s) const;
  Frame FrameAt(double s) const;
  /// How the tool moves per unit of s, and how that changes: it is linear in s.
  Twist TwistAt(double s) const;
  Twist TwistRate() const;

 private:
  Pose from_;
  Pose to_;
  Vector3 along_;  // end - start
  Vector3 axis_;   // of the turn, in the base frame
  double length_m_;
  double angle_rad_;
};

}  // namespace qal

#endif  // QAL_PLAN_LINE_PATH_H_
