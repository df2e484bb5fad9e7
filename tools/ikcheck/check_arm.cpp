#include <fmt/format.h>

#include <algorithm>

#include "checks.h"
#include "frame_offset.h"

namespace qal::ikcheck {

void CheckArm(Session& session, Row& row) {
  if (!session.options.arm) return;
  std::vector<Frame> solver;
  std::vector<Frame> arm;
  double distance = 0.0;
  double angle_rad = 0.0;
  for (const Joints& joints : session.RandomJoints(1000)) {
    const auto pose = session.Forward(joints);
    if (!pose) continue;
    solver.push_back(FrameOf(*pose));
    arm.push_back(FrameOf(session.options.arm->forward(joints)));
    const Offset offset(arm.back(), solver.back());
    distance = std::max(distance, offset.distance);
    angle_rad = std::max(angle_rad, offset.angle_rad);
    const double size = offset.Size(session.reach);
    session.report.Judge(Finding::kOtherArm, size <= kAgreed, size, [&] {
      return CaseOf(fmt::format("position off by {:.6g} m, orientation by {:.6g} rad",
                                offset.distance, offset.angle_rad),
                    joints);
    });
  }
  session.report.Explain(Finding::kOtherArm,
                         FixedOffset("the solver's", solver, arm, session.reach));
  row.values["joint_sets"] = solver.size();
  row.values["largest_distance"] = distance;
  row.values["largest_angle_rad"] = angle_rad;
}

}  // namespace qal::ikcheck
