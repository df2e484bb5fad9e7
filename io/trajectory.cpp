#include "trajectory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "error.h"
#include "limits.h"

namespace qal::io {

std::string Place(const LocatedTrajectory& trajectory, size_t sample) {
  if (trajectory.lines.empty()) return fmt::format("sample {}", sample);
  return fmt::format("sample {} (line {})", sample, trajectory.lines[sample]);
}

void ExpectMeasurable(const LocatedTrajectory& trajectory) {
  for (size_t i = 0; i < trajectory.samples.size(); ++i) {
    const auto& [time_s, joints, pose] = trajectory.samples[i];
    const auto check = [&, i](double number) {
      if (std::fabs(number) <= kLargestNumber) return;
      throw UsageError(fmt::format(
          "{}: {:g} is too large to tell a speed from; at most {:g} s, rad or m are expected",
          Place(trajectory, i), number, kLargestNumber));
    };
    check(time_s);
    std::for_each(joints.begin(), joints.end(), check);
    if (!pose) continue;
    const auto& [p, q] = *pose;
    for (const double number : {p.x, p.y, p.z, q.w, q.x, q.y, q.z}) check(number);
  }
}

FileTrajectory FromStates(const std::vector<State>& states, double cycle_s) {
  const double cycle_ms = cycle_s * 1000.0;
  FileTrajectory trajectory;
  trajectory.reserve(states.size());
  for (const State& state : states) {
    // Not multiplied by seconds: 0.005 is not exact, and its error would show in the digits.
    const double time_s = static_cast<double>(trajectory.size()) * cycle_ms / 1000.0;
    trajectory.push_back({time_s, state.joints, state.pose});
  }
  return trajectory;
}

FileSample SampleOf(const double* values, bool pose) {
  FileSample sample{values[0], {}, {}};
  std::copy(values + 1, values + 7, sample.joints.begin());
  if (!pose) return sample;
  const double* q = values + 10;
  if (std::all_of(q, q + 4, [](double component) { return component == 0; })) {
    throw UsageError("the quaternion is all zeros, no orientation");
  }
  sample.pose = Pose{{values[7], values[8], values[9]}, {q[0], q[1], q[2], q[3]}};
  return sample;
}

bool HavePoses(const FileTrajectory& trajectory) {
  return !trajectory.empty() && std::all_of(trajectory.begin(), trajectory.end(),
                                            [](const FileSample& s) { return s.pose.has_value(); });
}

}  // namespace qal::io
