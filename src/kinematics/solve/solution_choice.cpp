#include "solution_choice.h"

#include <algorithm>
#include <limits>

namespace qal {

namespace {

/// Judges where only admissible solutions count: two joints side by side, and without a branch on
/// them, as they come in no order that the processor could predict.
class Admission {
 public:
  Admission(const double* reference, double step_bound, const JointRange (&ranges)[kJointCount])
      : step_bound_{step_bound, step_bound} {
    for (int i = 0; i < kPairs; ++i) {
      const JointRange(&range)[2] = {ranges[2 * i], ranges[2 * i + 1]};
      reference_[i] = Pair{reference[2 * i], reference[2 * i + 1]};
      lower_[i] = Pair{range[0].lower, range[1].lower};
      upper_[i] = Pair{range[0].upper, range[1].upper};
    }
  }

  /// The judgement of `Judge`.
  /// @param distance out: of an admissible solution
  bool operator()(const double* solution, double& distance) const {
    Flags refused = {};
    distance = 0.0;
    for (int i = 0; i < kPairs; ++i) {
      const Pair joints = {solution[2 * i], solution[2 * i + 1]};
      const Pair difference = joints - reference_[i];
      // NOLINTNEXTLINE(*-reinterpret-cast): the same bits, without the sign
      const Pair move = reinterpret_cast<Pair>(reinterpret_cast<Flags>(difference) & kUnsigned);
      refused |= (joints < lower_[i]) | (joints > upper_[i]) | (move > step_bound_);
      distance = distance + move[0] + move[1];
    }
    return (refused[0] | refused[1]) == 0;
  }

 private:
  static constexpr int kPairs = kJointCount / 2;
  static_assert(kJointCount % 2 == 0);
  using Pair [[gnu::vector_size(16)]] = double;
  using Flags [[gnu::vector_size(16)]] = long long;  // -1 for true, 0 for false

  static constexpr long long kUnsigned = std::numeric_limits<long long>::max();

  Pair reference_[kPairs];
  Pair lower_[kPairs];
  Pair upper_[kPairs];
  Pair step_bound_;
};

}  // namespace

bool WriteNearest(const SolutionList& solutions, const double* reference, double step_bound,
                  const JointRange (&ranges)[kJointCount], RoadPoint& point) {
  const Admission admits(reference, step_bound, ranges);
  // Each solution's joints are copied, to the second place if it isn't nearer.
  double nearest[2][kJointCount];
  bool found = false;
  double nearest_distance = 0.0;  // also the mark of "none yet", as every caller counts on
  solutions.ForEach([&](const double* joints) {
    double distance = 0.0;
    const bool admissible = admits(joints, distance);
    const bool nearer = admissible & ((nearest_distance == 0.0) | (distance < nearest_distance));
    nearest_distance = nearer ? distance : nearest_distance;
    found |= nearer;
    std::copy(joints, joints + kJointCount, nearest[1 - static_cast<int>(nearer)]);
  });
  if (!found) return false;
  std::copy(nearest[0], nearest[0] + kJointCount, point.jointpos);
  point.ik_flag = true;
  return true;
}

void NudgeTowardsZero(double* joints) {
  constexpr double kNudgeRad = 1e-5;
  for (int j = 0; j < kJointCount; ++j) {
    // NaN is not above 0 and takes the addition.
    joints[j] = joints[j] > 0.0 ? joints[j] - kNudgeRad : joints[j] + kNudgeRad;
  }
}

}  // namespace qal
