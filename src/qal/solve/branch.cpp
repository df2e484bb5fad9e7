#include "branch.h"

#include <cmath>

#include "posture.h"
#include "solver_calls.h"

namespace qal {

namespace {

std::optional<Posture> PostureAt(const Arm& arm, const Joints& joints) {
  const auto tool = CallForward(arm, joints);
  const auto jacobian = Jacobian(arm, joints);
  if (!tool || !jacobian) return std::nullopt;
  return PostureOf(*jacobian, tool->position);
}

// Whether `Posture::forward` leads to the arm's front; the same wherever its joints are.
bool ForwardIsFront(const Arm& arm) {
  // Less is an offset that nobody made.
  constexpr double kNoOffsetM = 1e-3;
  const auto zero = PostureAt(arm, Joints{});
  if (!zero) return true;
  if (std::fabs(zero->offset_m) > kNoOffsetM) return zero->offset_m > 0;
  if (std::fabs(zero->shoulder_m) > kNoOffsetM) return zero->shoulder_m > 0;
  const Vector3 x = ToFrame(arm.base()).rotation * Vector3{{1, 0, 0}};
  return Dot(zero->forward, x) >= 0;
}

}  // namespace

std::optional<Branch> BranchOf(const Arm& arm, const Joints& joints) {
  const auto posture = PostureAt(arm, joints);
  if (!posture) return std::nullopt;
  const Vector3 from_base = posture->shoulder - ToVector(arm.base().position);
  // An axis 1 that points into the base turns the sense of both.
  const bool points_away = Dot(from_base, posture->upward) >= 0;
  const bool reaches_forward = posture->shoulder_m > 0;
  const bool forearm_falls = (posture->elbow_rad > 0) == points_away;
  return Branch{reaches_forward == ForwardIsFront(arm), forearm_falls == reaches_forward,
                posture->wrist_rad < 0};
}

std::string BranchName(const Branch& branch) {
  std::string name = branch.shoulder_front ? "shoulder front" : "shoulder rear";
  name += branch.elbow_up ? ", elbow up" : ", elbow down";
  return name + (branch.wrist_flip ? ", wrist flip" : ", no wrist flip");
}

}  // namespace qal
