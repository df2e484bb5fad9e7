#include <fmt/format.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>

#include "checks.h"

namespace qal::ikcheck {

namespace {

using Frame = Eigen::Isometry3d;

// Positions as parts of the reach, angles in rad. Far above what numbers with six decimals leave
// open, such as a quarter turn written 1.570796; far below any difference of two arms.
constexpr double kAgreed = 1e-5;

Frame FrameOf(const Pose& pose) {
  Frame frame = Frame::Identity();
  for (int i = 0; i < 3; ++i) {
    frame.translation()(i) = pose.position[i];
    for (int j = 0; j < 3; ++j) frame.linear()(i, j) = pose.rotation[3 * i + j];
  }
  return frame;
}

// From one frame to another.
struct Offset {
  double distance;
  double angle_rad;

  Offset(const Frame& from, const Frame& to)
      : distance((to.translation() - from.translation()).norm()),
        angle_rad(Eigen::AngleAxisd(from.linear().transpose() * to.linear()).angle()) {}
  double Size(double reach) const { return std::max(distance / reach, angle_rad); }
};

// As the origin of a fixed joint is written in a URDF.
std::string Origin(const Frame& frame) {
  const auto& r = frame.linear();
  const double level = std::hypot(r(0, 0), r(1, 0));
  // Pointing straight up or down, roll and yaw turn about one axis: all of it is roll.
  const bool upright = level < kAgreed;
  double values[6] = {frame.translation()(0),
                      frame.translation()(1),
                      frame.translation()(2),
                      upright ? std::atan2(-r(1, 2), r(1, 1)) : std::atan2(r(2, 1), r(2, 2)),
                      std::atan2(-r(2, 0), level),
                      upright ? 0.0 : std::atan2(r(1, 0), r(0, 0))};
  for (double& value : values) value = std::round(value * 1e6) / 1e6 + 0.0;  // no -0
  return fmt::format("xyz=\"{} {} {}\" rpy=\"{} {} {}\"", values[0], values[1], values[2],
                     values[3], values[4], values[5]);
}

// The usual mistake is a frame that is fixed somewhere else.
std::string Reason(const std::vector<Frame>& solver, const std::vector<Frame>& arm, double reach) {
  const auto constant = [&](const auto& between) {
    const Frame first = between(0);
    for (size_t i = 1; i < arm.size(); ++i) {
      if (!(Offset(first, between(i)).Size(reach) <= kAgreed)) return std::string();
    }
    return Origin(first);
  };
  const std::string tool = constant([&](size_t i) { return arm[i].inverse() * solver[i]; });
  if (!tool.empty()) return "; only the tool frame differs: the solver's is at " + tool;
  const std::string base = constant([&](size_t i) { return arm[i] * solver[i].inverse(); });
  if (!base.empty()) return "; only the base frame differs: the solver's is at " + base;
  return "";
}

}  // namespace

void CheckArm(Session& session, Row& row) {
  if (!session.options.arm) return;
  const std::vector<Joints> joints = session.RandomJoints(1000);
  const auto answers = session.Forward(joints);
  std::vector<Frame> solver;
  std::vector<Frame> arm;
  std::vector<Joints> sets;
  for (size_t i = 0; i < joints.size(); ++i) {
    if (answers[i].outcome != Outcome::kReturned) continue;
    solver.push_back(FrameOf(answers[i].pose));
    arm.push_back(FrameOf(session.options.arm->forward(joints[i])));
    sets.push_back(joints[i]);
  }
  double distance = 0.0;
  double angle_rad = 0.0;
  const std::string reason = Reason(solver, arm, session.reach);
  for (size_t i = 0; i < sets.size(); ++i) {
    const Offset offset(arm[i], solver[i]);
    distance = std::max(distance, offset.distance);
    angle_rad = std::max(angle_rad, offset.angle_rad);
    const double size = offset.Size(session.reach);
    session.report.Judge(Finding::kOtherArm, size <= kAgreed, size, [&] {
      return CaseOf(fmt::format("position off by {:.6g}, orientation by {:.6g} rad{}",
                                offset.distance, offset.angle_rad, reason),
                    sets[i]);
    });
  }
  row.values["joint_sets"] = sets.size();
  row.values["largest_distance"] = distance;
  row.values["largest_angle_rad"] = angle_rad;
}

}  // namespace qal::ikcheck
