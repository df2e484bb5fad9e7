#ifndef QAL_BENCH_SEEDED_MOVES_H_
#define QAL_BENCH_SEEDED_MOVES_H_

#include <qal/plan/joint_move.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>

namespace qal::bench {

/// Random numbers from a seed.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double operator()(double low, double high) {
    return std::uniform_real_distribution<>(low, high)(engine_);
  }
  double Decades(double low, double high) { return std::pow(10, (*this)(low, high)); }
  int Of(int count) { return static_cast<int>((*this)(0, count)); }

 private:
  std::mt19937_64 engine_;
};

/// An arm whose joints turn without end.
template <class LimitsOfJoint>
Arm EndlessArm(LimitsOfJoint limits_of_joint) {
  ArmDescription description;
  ArmSettings settings;
  for (size_t j = 0; j < 6; ++j) {
    const auto [velocity, acceleration, jerk] = limits_of_joint(j);
    description.joints[j].continuous = true;
    settings.joints[j].velocity_rad_s = velocity;
    settings.joints[j].acceleration_rad_s2 = acceleration;
    settings.joints[j].jerk_rad_s3 = jerk;
  }
  return *Arm::FromSolver(Arm::Reference().solver(), description, settings);
}

/// One with limits from gentle to wild.
inline Arm RandomArm(Random& random) {
  return EndlessArm([&](size_t) {
    return AxisLimits{random.Decades(-1, 1), random.Decades(-1, 2), random.Decades(0, 4)};
  });
}

inline AxisLimits LimitsOf(const Arm& arm, size_t j) {
  const JointModel& joint = arm.joints()[j];
  return {joint.velocity_rad_s.value, joint.acceleration_rad_s2.value, joint.jerk_rad_s3.value};
}

/// Whether a state can be braked (`sign` 1) or come from (-1) within the limits.
inline bool IsAllowed(const AxisState& state, const AxisLimits& limits, double sign) {
  const double a = state.acceleration;
  return std::fabs(state.velocity + sign * a * std::fabs(a) / 2 / limits.jerk) <= limits.velocity;
}

/// At rest, at a limit, or anything that is allowed.
inline AxisState RandomState(Random& random, const AxisLimits& limits, double position,
                             double sign) {
  const int kind = random.Of(5);
  if (kind < 2) return {position, 0, 0};
  const double side = random.Of(2) == 0 ? -1 : 1;
  if (kind == 2) return {position, side * limits.velocity, 0};
  for (double most = limits.acceleration;; most *= 0.7) {
    const double a = most * (kind == 3 ? side : random(-1, 1));
    const AxisState state = {position, limits.velocity * random(-1, 1), a};
    if (IsAllowed(state, limits, sign)) return state;
  }
}

/// A move to plan.
struct SeededMove {
  MotionState from, to;
};

inline void Set(MotionState& state, size_t j, const AxisState& axis) {
  state.joints[j] = axis.position;
  state.velocities[j] = axis.velocity;
  state.accelerations[j] = axis.acceleration;
}

/// Moves of every kind: tiny, huge, none, between states at rest, at limits and anything else.
inline SeededMove RandomMove(Random& random, const Arm& arm) {
  SeededMove move;
  for (size_t j = 0; j < 6; ++j) {
    const AxisLimits limits = LimitsOf(arm, j);
    const double begin = random(-3, 3);
    // The scale of what it takes to stop.
    const double stop = limits.velocity *
                        (limits.velocity / limits.acceleration + limits.acceleration / limits.jerk);
    const double ways[] = {0, random.Decades(-12, -3), random(-3, 3), random(-1, 1) * stop};
    const AxisState from = RandomState(random, limits, begin, 1);
    AxisState to = RandomState(random, limits, begin + ways[random.Of(4)], -1);
    if (random.Of(50) == 0 && IsAllowed(from, limits, -1)) to = from;
    if (random.Of(200) == 0) to.position = random(-1e6, 1e6);
    Set(move.from, j, from);
    Set(move.to, j, to);
  }
  return move;
}

/// Lets only the first joints of a move turn.
inline void KeepJoints(SeededMove& move, size_t count) {
  for (MotionState* state : {&move.from, &move.to}) {
    for (Joints* numbers : {&state->joints, &state->velocities, &state->accelerations}) {
      std::fill(numbers->begin() + static_cast<std::ptrdiff_t>(count), numbers->end(), 0.0);
    }
  }
}

}  // namespace qal::bench

#endif  // QAL_BENCH_SEEDED_MOVES_H_
