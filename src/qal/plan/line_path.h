#ifndef QAL_PLAN_LINE_PATH_H_
#define QAL_PLAN_LINE_PATH_H_

#include "tool_path.h"

// Internal: a straight line of the tool, turned about a fixed axis as it goes.
namespace qal {

/// From pose to pose: the position in proportion to x, the orientation turned about a fixed axis,
/// the shorter way, in proportion to it too.
class LinePath final : public ToolPath {
 public:
  LinePath(const Pose& from, const Pose& to, double span);

  double length_m() const { return length_m_; }
  double angle_rad() const { return turn_.angle_rad(); }

  Pose PoseAt(double x) const override;
  ToolRates RatesAt(double x) const override;

 private:
  Vec3 from_;
  Vec3 to_;
  Vector3 along_;  // end - start
  SteadyTurn turn_;
  double length_m_;
};

}  // namespace qal

#endif  // QAL_PLAN_LINE_PATH_H_
