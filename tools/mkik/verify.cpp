#include "verify.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "../../io/error.h"
#include "../../src/qal/model/chain.h"
#include "../../src/qal/model/frames.h"

namespace qal::tools {

using namespace io;

namespace {

constexpr double kTolerance = 1e-9;
// Near a singularity the joints may differ while the pose is the same: a pose's rounding, 1e-16,
// moves a joint by up to its root.
constexpr double kJointToleranceRad = 1e-5;
// Of a polished or general arm's; one in a thousand.
constexpr int kMostMissed = 10;

double Largest(double a, double b) { return b <= a ? a : b; }  // NaN is larger than any

double Difference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = Largest(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = Largest(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

double Difference(const Joints& a, const Joints& b) {
  double largest = 0;
  for (size_t j = 0; j < a.size(); ++j) largest = Largest(largest, std::fabs(a[j] - b[j]));
  return largest;
}

void ExpectWithinTolerance(double difference, const char* what, const Joints& joints) {
  if (difference <= kTolerance) return;
  throw Failure(
      fmt::format("the model fails its check at joints {:.9g} rad: {} by {:.3g} ({} m or "
                  "matrix element are allowed)",
                  fmt::join(joints, " "), what, difference, kTolerance));
}

}  // namespace

Verification Verify(const ArmDescription& arm, const FittedModel& fitted) {
  constexpr double kRangeRad = 2.967;
  constexpr int kJointSets = 10000;
  // A thousandth of a second and less for each: not to take longer than the others by much.
  constexpr int kGeneralJointSets = 1000;
  Verification result = {fitted.member ? kJointSets : kGeneralJointSets, 0, 0, 0, {}, 0};
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> range(-kRangeRad, kRangeRad);
  for (int i = 0; i < result.joint_sets; ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    const auto forward = [&](const Joints& q) { return Forward(fitted.model, q); };
    const Frame target = fitted.IsDescribed() ? ToFrame(TipFrame(arm, joints)) : forward(joints);
    result.forward = Largest(result.forward, Difference(forward(joints), target));
    ExpectWithinTolerance(result.forward, "its pose differs from the described arm's", joints);

    const auto start = std::chrono::steady_clock::now();
    const closed_form::Solutions solutions = Solve(fitted.model, target);
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    result.solve_s += spent.count() / result.joint_sets;
    double nearest = 2 * kPi;
    for (const Joints& solution : solutions) {
      result.solutions = Largest(result.solutions, Difference(forward(solution), target));
      nearest = std::min(nearest, Difference(solution, joints));
    }
    ExpectWithinTolerance(result.solutions, "a solution misses the pose", joints);
    if (nearest <= kJointToleranceRad) continue;
    // A singularity that described and nominal arm have in different places may hide a solution.
    const bool may_miss = fitted.polished || !fitted.member;
    if (++result.missed > (may_miss ? kMostMissed : 0)) {
      throw Failure(
          fmt::format("the model fails its check: joints {:.9g} rad are not among the {} "
                      "solutions of their pose",
                      fmt::join(joints, " "), solutions.Count()));
    }
  }
  if (fitted.member) result.difference = DifferenceOf(*fitted.member, arm, kJointSets);
  return result;
}

}  // namespace qal::tools
