#include <cstdio>
#include <nlohmann/json.hpp>

#include "../src/qal/plan/line_path.h"
#include "../src/qal/plan/path_follower.h"
#include "rows_main.h"
#include "seeded_lines.h"

// Writes the rows that line_optimum.py reads: line_rows COUNT [FILE...], lines of the reference arm
// and of those of the files in turn.

namespace qal::bench {
namespace {

// What each row has of a path, closer where it bends and at its ends.
std::vector<PathPoint> PointsOf(const JointPath& path) {
  constexpr int kParts = 64;
  std::vector<PathPoint> points;
  for (size_t piece = 0; piece < path.size(); ++piece) {
    for (int i = 0; i < kParts; ++i) {
      const double s = PlaceIn(path, piece, static_cast<double>(i) / kParts);
      points.push_back(path.At(s, piece));
    }
  }
  points.push_back(path.At(1));
  return points;
}

nlohmann::json RowOf(const Arm& arm, const Line& line, const LineMotion& motion,
                     const std::string& name) {
  const auto screws = Screws::Of(arm, line.from.joints);
  const LinePath path(*Forward(arm, line.from.joints), line.to, 1);
  const ToolSolver solver(*screws, path, 0);
  JointPath joints(*solver.Solve(0, line.from.joints));
  (void)Follow(solver, 1, joints);  // it does, as there is a plan
  const LineLimits& limits = line.limits;
  const auto of_s = [&](double tool, double turn) {
    return std::min(tool / path.length_m(), turn / path.angle_rad());
  };
  nlohmann::json row = {
      {"name", name},
      {"duration_s", motion.duration_s()},
      {"limits",
       {{"speed", of_s(limits.speed_m_s, limits.turn_speed_rad_s)},
        {"acceleration", of_s(limits.acceleration_m_s2, limits.turn_acceleration_rad_s2)},
        {"jerk", of_s(limits.jerk_m_s3, limits.turn_jerk_rad_s3)}}}};
  for (const JointModel& joint : arm.joints()) {
    nlohmann::json& limit = row["joints"];
    limit["velocity"].push_back(limits.scale.velocity * joint.velocity_rad_s.value);
    limit["acceleration"].push_back(limits.scale.acceleration * joint.acceleration_rad_s2.value);
    limit["jerk"].push_back(limits.scale.jerk * joint.jerk_rad_s3.value);
  }
  for (const auto& [s, value, first, second, third] : PointsOf(joints)) {
    row["s"].push_back(s);
    row["dq"].push_back(first);
    row["ddq"].push_back(second);
    row["dddq"].push_back(third);
  }
  return row;
}

int WriteRows(int count, const std::vector<Arm>& arms) {
  unsigned seed = 20261125;
  for (int written = 0; written < count; ++seed) {
    const Arm& arm = arms[seed % arms.size()];
    // Not through singularities: there a line takes minutes, and the optimum hours.
    const auto kind = static_cast<LineKind>(seed / arms.size() % (kLineKinds - 1));
    const Line line = SeededLines(arm, seed).Next(kind);
    const auto motion = PlanLine(arm, line.from, line.to, line.limits);
    if (!motion) continue;
    const std::string name =
        arm.name() + " kind " + std::to_string(kind) + " seed " + std::to_string(seed);
    std::printf("%s\n", RowOf(arm, line, *motion, name).dump().c_str());
    ++written;
  }
  return 0;
}

}  // namespace
}  // namespace qal::bench

int main(int argc, char** argv) { return qal::bench::RowsMain(argc, argv, qal::bench::WriteRows); }
