#include "waypoints.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "agreement.h"
#include "solver_check.h"

namespace qal::tools {

using namespace io;

Pose PoseOf(const RoadPoint& point) {
  const auto& [p, o] = std::tie(point.position, point.orientation);
  return {{p.x, p.y, p.z}, {o.w, o.x, o.y, o.z}};
}

Trajectory FromWaypoints(const std::vector<RoadPoint>& points) {
  constexpr double kCycleS = 0.005;
  std::vector<State> states;
  for (const RoadPoint& point : points) {
    State state = {{}, PoseOf(point)};
    std::copy(point.jointpos, point.jointpos + 6, state.joints.begin());
    states.push_back(state);
  }
  return FromStates(states, kCycleS);
}

RoadPoint PointAt(const Trajectory& trajectory, size_t sample) {
  try {
    return AtJoints(trajectory[sample].joints);
  } catch (const Failure& failure) {
    throw Failure(fmt::format("sample {}: {}", sample, failure.what()));
  }
}

double Distance(const Pos& from, const Pos& to) {
  return std::hypot(to.x - from.x, to.y - from.y, to.z - from.z);
}

Arm SolverArm() {
  const Result<Solver> solver = Solver::Load(SolverPath());
  if (!solver) throw UsageError(SolverPath() + ": " + ErrorText(solver.error()));
  ArmSettings settings;
  for (size_t j = 0; j < 6; ++j) settings.joints[j].gear_ratio = j < 3 ? 363 : 303;
  return Arm::FromSolver(*solver, settings).value();
}

}  // namespace qal::tools
