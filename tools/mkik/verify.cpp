#include "verify.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <chrono>
#include <random>

#include "../../io/error.h"
#include "../../src/qal/model/chain.h"
#include "../../src/qal/model/frames.h"

namespace qal::tools {

using namespace io;

namespace {

constexpr double kTolerance = 1e-9;
// Of a polished or general arm's; one in a thousand.
constexpr int kMostMissed = 10;

void ExpectWithinTolerance(double difference, const char* what, const Joints& joints) {
  if (difference <= kTolerance) return;
  throw Failure(
      fmt::format("the model fails its check at joints {:.9g} rad: {} by {:.3g} ({} m or "
                  "matrix element are allowed)",
                  fmt::join(joints, " "), what, difference, kTolerance));
}

}  // namespace

PoseCheck CheckPose(const ArmDescription& arm, const FittedModel& fitted, const Joints& joints) {
  constexpr double kWrong = 1e-10;
  // Near a singularity the joints may differ while the pose is the same: a pose's rounding, 1e-16,
  // moves a joint by up to its root.
  constexpr double kSameJointsRad = 1e-5;
  const auto forward = [&](const Joints& q) {
    return fitted.IsDescribed() ? ToFrame(TipFrame(arm, q)) : Forward(fitted.model, q);
  };
  const Frame target = forward(joints);
  PoseCheck check;
  check.forward = LargestDifference(Forward(fitted.model, joints), target);
  const auto start = std::chrono::steady_clock::now();
  const closed_form::Solutions solutions = Solve(fitted.model, target);
  check.solve_s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  for (const Joints& solution : solutions) {
    const double error = LargestDifference(forward(solution), target);
    check.worst = Larger(check.worst, error);
    if (!(error <= kWrong)) ++check.wrong;
  }
  check.solutions = static_cast<int>(solutions.Count());
  check.found = solutions.Has(joints, kSameJointsRad);
  return check;
}

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
    const PoseCheck check = CheckPose(arm, fitted, joints);
    result.forward = Larger(result.forward, check.forward);
    ExpectWithinTolerance(result.forward, "its pose differs from the described arm's", joints);
    result.solutions = Larger(result.solutions, check.worst);
    ExpectWithinTolerance(result.solutions, "a solution misses the pose", joints);
    result.solve_s += check.solve_s / result.joint_sets;
    if (check.found) continue;
    // A singularity that described and nominal arm have in different places may hide a solution.
    const bool may_miss = fitted.polished || !fitted.member;
    if (++result.missed > (may_miss ? kMostMissed : 0)) {
      throw Failure(
          fmt::format("the model fails its check: joints {:.9g} rad are not among the {} "
                      "solutions of their pose",
                      fmt::join(joints, " "), check.solutions));
    }
  }
  if (fitted.member) result.difference = DifferenceOf(*fitted.member, arm, kJointSets);
  return result;
}

}  // namespace qal::tools
