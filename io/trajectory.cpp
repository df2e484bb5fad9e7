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
    const auto& [time_s, joints, pose, velocities, accelerations] = trajectory.samples[i];
    const auto check = [&, i](double number) {
      if (std::fabs(number) <= kLargestNumber) return;
      throw UsageError(fmt::format(
          "{}: {:g} is too large to tell a speed from; at most {:g} s, rad or m are expected",
          Place(trajectory, i), number, kLargestNumber));
    };
    check(time_s);
    std::for_each(joints.begin(), joints.end(), check);
    for (const auto& rates : {velocities, accelerations}) {
      if (rates) std::for_each(rates->begin(), rates->end(), check);
    }
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

FileTrajectory FromTrajectory(const Trajectory& trajectory) {
  FileTrajectory samples;
  samples.reserve(trajectory.size());
  for (const auto& [time_s, joints, velocities, accelerations, pose] : trajectory) {
    samples.push_back({time_s, joints, pose, velocities, accelerations});
  }
  return samples;
}

namespace {

Joints TakeJoints(const double*& values) {
  Joints joints;
  std::copy_n(values, joints.size(), joints.begin());
  values += joints.size();
  return joints;
}

Pose TakePose(const double*& values) {
  const double* const p = values;
  const double* const q = values + 3;
  if (std::all_of(q, q + 4, [](double component) { return component == 0; })) {
    throw UsageError("the quaternion is all zeros, no orientation");
  }
  values += 7;
  return {{p[0], p[1], p[2]}, {q[0], q[1], q[2], q[3]}};
}

}  // namespace

FileSample SampleOf(const double* values, const SampleParts& parts) {
  FileSample sample{*values, {}};
  ++values;
  sample.joints = TakeJoints(values);
  if (parts.pose) sample.pose = TakePose(values);
  if (parts.velocities) sample.velocities = TakeJoints(values);
  if (parts.accelerations) sample.accelerations = TakeJoints(values);
  return sample;
}

SampleParts PartsOf(const FileTrajectory& trajectory) {
  const auto all = [&trajectory](const auto& part) {
    return !trajectory.empty() &&
           std::all_of(trajectory.begin(), trajectory.end(),
                       [&part](const FileSample& sample) { return (sample.*part).has_value(); });
  };
  return {all(&FileSample::pose), all(&FileSample::velocities), all(&FileSample::accelerations)};
}

bool HaveRates(const FileTrajectory& trajectory) {
  const SampleParts parts = PartsOf(trajectory);
  return parts.velocities && parts.accelerations;
}

}  // namespace qal::io
