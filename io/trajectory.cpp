#include "trajectory.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"

namespace qal::io {

std::string Place(const LocatedTrajectory& trajectory, size_t sample) {
  if (trajectory.lines.empty()) return fmt::format("sample {}", sample);
  return fmt::format("sample {} (line {})", sample, trajectory.lines[sample]);
}

Trajectory FromStates(const std::vector<State>& states, double cycle_s) {
  const double cycle_ms = cycle_s * 1000.0;
  Trajectory trajectory;
  trajectory.reserve(states.size());
  for (const State& state : states) {
    // Not multiplied by seconds: 0.005 is not exact, and its error would show in the digits.
    const double time_s = static_cast<double>(trajectory.size()) * cycle_ms / 1000.0;
    trajectory.push_back({time_s, state.joints, state.pose});
  }
  return trajectory;
}

Sample SampleOf(const double* values, bool pose) {
  Sample sample{values[0], {}, {}};
  std::copy(values + 1, values + 7, sample.joints.begin());
  if (!pose) return sample;
  const double* q = values + 10;
  if (std::all_of(q, q + 4, [](double component) { return component == 0; })) {
    throw UsageError("the quaternion is all zeros, no orientation");
  }
  sample.pose = Pose{{values[7], values[8], values[9]}, {q[0], q[1], q[2], q[3]}};
  return sample;
}

bool HavePoses(const Trajectory& trajectory) {
  return !trajectory.empty() && std::all_of(trajectory.begin(), trajectory.end(),
                                            [](const Sample& s) { return s.pose.has_value(); });
}

}  // namespace qal::io
