#include "sampled.h"

#include <algorithm>
#include <cmath>

#include "../solve/kinematics.h"
#include "cycles.h"

namespace qal {

namespace {

PlanFailure TooMany(double cycles) {
  return {{Reason::kTooManyPoints, -1, cycles + 1, kMostSamples}};
}

Result<Trajectory, PlanFailure> Played(const Arm& arm, const JointMotion& motion, size_t cycles) {
  Trajectory samples;
  samples.reserve(cycles + 1);
  for (size_t i = 0; i <= cycles; ++i) {
    const double time_s = TimeOf(static_cast<double>(i), arm.cycle_s().value);
    const auto [joints, velocities, accelerations] = i < cycles ? motion.At(time_s) : motion.to();
    const Result<Pose> pose = Forward(arm, joints);
    if (!pose) {
      const double along = static_cast<double>(i) / static_cast<double>(cycles);
      PlanFailure failure{pose.error(), along};
      if (!samples.empty()) failure.before = {samples.back().joints, samples.back().pose};
      return failure;
    }
    samples.push_back({time_s, joints, velocities, accelerations, *pose});
  }
  return samples;
}

}  // namespace

Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const JointMotion& motion) {
  const double cycle_s = arm.cycle_s().value;
  double cycles = WholeCycles(motion.duration_s(), cycle_s);
  if (cycles >= kMostSamples) return TooMany(cycles);
  if (motion.duration_s() >= TimeOf(cycles, cycle_s)) {
    return Played(arm, motion, static_cast<size_t>(cycles));
  }
  for (;;) {
    const auto slower =
        PlanJoint(arm, motion.from(), motion.to(), {motion.scale(), TimeOf(cycles, cycle_s)});
    if (!slower) return slower.error();
    if (slower->duration_s() == TimeOf(cycles, cycle_s)) {
      return Played(arm, *slower, static_cast<size_t>(cycles));
    }
    // It can't take as long as that, but longer.
    cycles = std::max(cycles + 1, WholeCycles(slower->duration_s(), cycle_s));
    if (cycles >= kMostSamples) return TooMany(cycles);
  }
}

Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const LineMotion& motion) {
  const double cycle_s = arm.cycle_s().value;
  const double cycles = WholeCycles(motion.duration_s(), cycle_s);
  if (cycles >= kMostSamples) return TooMany(cycles);
  const LineMotion played = motion.InDuration(TimeOf(cycles, cycle_s));
  const auto last = static_cast<size_t>(cycles);
  Trajectory samples;
  samples.reserve(last + 1);
  for (size_t i = 0; i <= last; ++i) {
    const double time_s = TimeOf(static_cast<double>(i), cycle_s);
    // The motion may be longer than that by its rounding.
    const double played_s = i < last ? time_s : played.duration_s();
    samples.push_back(played.SampleAt(played_s));
    samples.back().time_s = time_s;
  }
  return samples;
}

Result<Trajectory, PlanFailure> Sampled(const Arm& arm, const ProgramMotion& motion) {
  const double cycle_s = arm.cycle_s().value;
  const double cycles = WholeCycles(motion.duration_s(), cycle_s);
  if (cycles >= kMostSamples) return TooMany(cycles);
  const auto last = static_cast<size_t>(cycles);
  Trajectory samples;
  samples.reserve(last + 1);
  for (size_t i = 0; i <= last; ++i) {
    samples.push_back(motion.SampleAt(TimeOf(static_cast<double>(i), cycle_s)));
  }
  return samples;
}

}  // namespace qal
