#ifndef QAL_BENCH_PLANS_H_
#define QAL_BENCH_PLANS_H_

#include <algorithm>
#include <vector>

#include "../src/kinematics/ikfunc.h"
#include "workload.h"

namespace qal::bench {

/// Settings of the synchronised joint moves: percent of 3000 rpm, and rpm/s.
constexpr int kRunSpeed = 50;
constexpr int kRunAcceleration = 10000;

/// A count as the library returns it, 0 for its failures.
inline size_t Count(int count) { return static_cast<size_t>(std::max(count, 0)); }

// Each plans one trajectory into storage of its own and returns its number of waypoints, 0 when the
// library refuses.
size_t RampedLine(const Move& line, int speed);
size_t PrecisionLine(const Move& line, size_t waypoints, double precision);
size_t FirstPhase(const Move& line, float jerk);  ///< of an S-curve line
size_t JointRamp(const Move& move, int speed);
size_t Trapezoid(const Move& move);

/// How many waypoints `Trapezoid` makes.
size_t RunCycles(const Move& move);

}  // namespace qal::bench

#endif  // QAL_BENCH_PLANS_H_
