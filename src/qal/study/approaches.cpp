#include "approaches.h"

#include "../plan/joint_limits.h"
#include "../plan/line_path.h"
#include "../plan/path_failure.h"
#include "../plan/path_follower.h"

namespace qal {

Result<Approaches> Approaches::Of(const Arm& arm, const ReachStudy& study, const Joints& near) {
  const Result<Screws> screws = Screws::Of(arm, near);
  if (!screws) return screws.error();
  return Approaches(arm, *screws, study, near);
}

Approaches::Approaches(const Arm& arm, const Screws& screws, const ReachStudy& study,
                       const Joints& near)
    : arm_(arm), screws_(screws), length_m_(study.line_m), near_(near) {
  if (!study.line_direction) return;
  const Vector3 direction = ToVector(*study.line_direction);
  direction_ = (1 / Length(direction)) * direction;
}

Pose Approaches::BeginOf(const Pose& end) const {
  const Matrix3 tool = FrameOf(end).rotation;
  const Vector3 z = {{tool[0][2], tool[1][2], tool[2][2]}};
  const Vector3 back = -length_m_ * direction_.value_or(z);
  return {FromVector(ToVector(end.position) + back), end.orientation};
}

std::optional<JointPath> Approaches::Follow(const Pose& end, const Joints& joints) const {
  const LinePath line(end, BeginOf(end), 1);
  const ToolSolver solver(screws_, line, 0);
  const auto first = solver.Solve(0, joints);
  if (!first) return std::nullopt;
  JointPath path(*first);
  if (qal::Follow(solver, 1, path) < 1) return std::nullopt;
  return path;
}

std::optional<double> Approaches::MarginOf(const Pose& end, const Joints& joints) const {
  const auto path = Follow(end, joints);
  if (!path) return std::nullopt;
  const double margin_rad = SmallestMargin(arm_, *path);
  if (margin_rad < -kRangeRoundingRad) return std::nullopt;
  return margin_rad;
}

std::vector<Joints> Approaches::PlacesOf(const Pose& end, const Joints& joints) const {
  const auto path = Follow(end, joints);
  std::vector<Joints> places;
  for (int i = 0; i <= kReachLineParts; ++i) {
    places.push_back(path->At(static_cast<double>(i) / kReachLineParts).value);
  }
  return places;
}

}  // namespace qal
