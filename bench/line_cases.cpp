#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <memory>

#include "../src/kinematics/ikfunc.h"
#include "case.h"

namespace qal::bench {

namespace {

struct PlannedLine {
  State from;
  Pose to;
};

State StateOf(const RoadPoint& point) {
  State state = {{}, {}};
  std::copy(point.jointpos, point.jointpos + 6, state.joints.begin());
  return state;
}

// The workload's lines: 0.0979 m, most of which the reference arm's joints slow down.
struct Lines {
  explicit Lines(const Workload& work) {
    for (const Move& move : work.lines) {
      const State from = StateOf(move.start);
      const Pose start = *Forward(arm, from.joints);
      const auto& [x, y, z] = move.end.position;
      const PlannedLine line = {from, {{x, y, z}, start.orientation}};
      const auto trajectory = Plan(line);
      if (!trajectory) continue;
      lines.push_back(line);
      waypoints += trajectory->size();
      for (size_t i = 1; i < trajectory->size(); ++i)
        AddSolve((*trajectory)[i - 1], (*trajectory)[i]);
    }
  }
  Result<Trajectory, PlanFailure> Plan(const PlannedLine& line) const {
    const auto motion = PlanLine(arm, line.from, line.to);
    if (!motion) return motion.error();
    return Sampled(arm, *motion);
  }
  void AddSolve(const Sample& before, const Sample& sample) {
    RoadPoint point;
    const auto& [p, q] = sample.pose;
    point.position = Pos(p.x, p.y, p.z);
    point.orientation = Ori(q.w, q.x, q.y, q.z);
    std::copy(before.joints.begin(), before.joints.end(), point.jointpos);
    solves.push_back(point);
  }

  Arm arm = Arm::Reference();
  std::vector<PlannedLine> lines;
  std::vector<RoadPoint> solves;  // each with the joints of the waypoint before
  size_t waypoints = 0;
};

}  // namespace

void AddLines(const Workload& work, Cases& cases) {
  const auto lines = std::make_shared<const Lines>(work);
  cases.push_back({"line/limited", Kind::kOurs, lines->waypoints, [lines] {
                     size_t waypoints = 0;
                     for (const PlannedLine& line : lines->lines) {
                       const auto trajectory = lines->Plan(line);
                       if (trajectory) waypoints += trajectory->size();
                     }
                     return waypoints;
                   }});
  cases.push_back({"line/its solves", Kind::kOurs, lines->solves.size(), [lines] {
                     // As the ramped line bounds its steps [rad].
                     constexpr double kBoundRad = 0.518;
                     size_t solved = 0;
                     for (RoadPoint point : lines->solves) {
                       solved += Ikfunc::ArmJointIk(point, point.jointpos, kBoundRad) ? 1 : 0;
                     }
                     return solved;
                   }});
}

}  // namespace qal::bench
