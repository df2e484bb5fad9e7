#ifndef QAL_BENCH_WORKLOAD_H_
#define QAL_BENCH_WORKLOAD_H_

#include <array>
#include <cstddef>
#include <vector>

#include "../src/core/roadpoint.h"

namespace qal::bench {

/// Waypoints of a trajectory, about; the ramped line has as many exactly.
constexpr size_t kLineWaypoints = 500;

constexpr double kJogStep = 1e-3;  ///< [m] or [rad]

using Joints = std::array<double, 6>;

/// A pose as the solver takes it.
struct SolverPose {
  double position[3];
  double rotation[9];
};

/// The arm's joints, and a target 1 mm away from where they have it.
struct Step {
  Joints from;
  SolverPose solver_target;
  RoadPoint target;  // joints: `from`
  RoadPoint start;   // the pose of `from`
};

struct Move {
  RoadPoint start;
  RoadPoint end;
};

/// What the cases work on, the same in every run: random, so that neither caches nor branch
/// predictors learn it, and reachable.
struct Workload {
  std::vector<Joints> joints;  // anywhere in the joint range
  std::vector<Step> steps;     // not next to a singularity, where a joint turns without bound
  std::vector<Move> lines;     // 0.0979 m straight, likewise: a ramp of speed 10 has 500 waypoints
  std::vector<Move> moves;     // between joints, joint 1 leading with 1.02 rad
};

/// @param poses number of joints and of steps; lines and moves have about as many waypoints
Workload MakeWorkload(size_t poses);

}  // namespace qal::bench

#endif  // QAL_BENCH_WORKLOAD_H_
