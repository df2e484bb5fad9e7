#include "joint_move.h"

#include <cmath>
#include <optional>

#include "../solve/kinematics.h"
#include "axis_move.h"
#include "axis_transfer.h"
#include "joint_limits.h"
#include "joint_refusal.h"
#include "quadratic.h"

namespace qal {

namespace {

// How far outside of its range a joint may be [rad]: roundings of states that a motion was sampled
// at, and of motions to a limit.
constexpr double kAtRangeRad = 1e-11;

AxisState StateOf(const MotionState& state, size_t j) {
  return {state.joints[j], state.velocities[j], state.accelerations[j]};
}

// Whether a joint moves at either end.
bool IsMoving(const AxisState& from, const AxisState& to) {
  return std::fabs(from.velocity) + std::fabs(from.acceleration) + std::fabs(to.velocity) +
             std::fabs(to.acceleration) >
         0;
}

PlanFailure Failed(const Arm& arm, Error error, double along, const Joints& before) {
  PlanFailure failure{std::move(error), along, {before, {}}};
  if (const Result<Pose> pose = Forward(arm, before)) failure.before.pose = *pose;
  return failure;
}

// When a joint leaves its range, in a piece that goes there in one direction from `begin_s` to
// `end_s`.
double LeavesAt(const JointModel& model, const Cubic& piece, double begin_s, double end_s) {
  constexpr int kHalvings = 60;
  for (int i = 0; i < kHalvings; ++i) {
    const double middle_s = (begin_s + end_s) / 2;
    (Outside(model, piece.At(middle_s).position) > 0 ? end_s : begin_s) = middle_s;
  }
  return begin_s;
}

}  // namespace

class JointPlanner {
 public:
  JointPlanner(const Arm& arm, JointMotion& motion)
      : arm_(arm), models_(arm.joints()), motion_(motion) {}

  std::optional<PlanFailure> Plan(const JointLimits& limits) {
    const MotionState& from = motion_.from_;
    if (!AllFinite(from, motion_.to_)) return PlanFailure{NotFinite(from, motion_.to_)};
    if (auto refused = RefusedSetting(limits)) return Fail(*std::move(refused), 0);
    for (int j = 0; j < kJoints; ++j) {
      if (auto failure = Prepare(j, limits.scale)) return failure;
    }
    const double duration_s = CommonDuration(std::max(limits.duration_s, least_s_));
    if (!(duration_s <= kLongestMoveS)) {
      return Fail({Reason::kSetting, -1, duration_s, kLongestMoveS, "duration_s"}, 0);
    }
    motion_.duration_s_ = duration_s;
    for (size_t j = 0; j < kJoints; ++j) {
      const double begin = from.joints[j];
      AxisMotion& pieces = motion_.joints_[j];
      if (moving_[j]) {
        transfers_[j].AddPieces(duration_s, pieces);
      } else {
        AddPieces(SlowedPhases(phases_[j], duration_s), begin, motion_.to_.joints[j] - begin,
                  pieces);
      }
    }
    for (int j = 0; j < kJoints; ++j) {
      if (!moving_[static_cast<size_t>(j)]) continue;
      if (auto failure = LeavesRange(j)) return failure;
    }
    return std::nullopt;
  }

 private:
  PlanFailure Fail(Error error, double along) const {
    return Failed(arm_, std::move(error), along, motion_.from_.joints);
  }

  std::optional<PlanFailure> Prepare(int joint, const LimitScale& scale) {
    const auto j = static_cast<size_t>(joint);
    const JointModel& model = models_[j];
    const AxisState from = StateOf(motion_.from_, j);
    const AxisState to = StateOf(motion_.to_, j);
    for (const double along : {0, 1}) {
      const double end = along == 0 ? from.position : to.position;
      if (Outside(model, end) > kAtRangeRad) return Fail(OutOfRange(joint, model, end), along);
    }
    AxisLimits& limits = motion_.limits_[j];
    limits = ScaledLimits(model, scale);
    moving_[j] = IsMoving(from, to);
    if (!moving_[j]) {
      phases_[j] = FastestPhases(to.position - from.position, limits);
      least_s_ = std::max(least_s_, phases_[j].duration_s());
      return std::nullopt;
    }
    if (auto refused = RefusedRate(joint, from, to, limits)) {
      const bool at_end = refused->detail.find("end_") != std::string::npos;
      return Fail(*std::move(refused), at_end ? 1 : 0);
    }
    transfers_[j] = AxisTransfer(from, to, limits);
    return std::nullopt;
  }

  // The shortest duration from `duration_s` on, long enough for the joints between rests, that
  // every other joint can take as well.
  double CommonDuration(double duration_s) const {
    size_t agreed = 0;
    for (size_t j = 0; agreed < kJoints; j = (j + 1) % kJoints) {
      const double next_s = moving_[j] ? transfers_[j].NextDuration(duration_s) : duration_s;
      agreed = next_s > duration_s ? 1 : agreed + 1;
      duration_s = next_s;
    }
    return duration_s;
  }

  // When a joint leaves its range, and how far it gets outside.
  std::optional<PlanFailure> LeavesRange(int joint) const {
    const auto j = static_cast<size_t>(joint);
    const AxisMotion& pieces = motion_.joints_[j];
    double most = kAtRangeRad;
    double left_s = 0;
    double outermost = 0;
    for (int i = 0; i < pieces.size(); ++i) {
      const double piece_s = pieces.begin_s(i);
      const double end_s =
          (i + 1 < pieces.size() ? pieces.begin_s(i + 1) : motion_.duration_s_) - piece_s;
      const Cubic& piece = pieces.cubic(i);
      Times<3> turns;
      AddRoots({piece.velocity, piece.acceleration, piece.jerk / 2}, 0, end_s, turns);
      turns.Add(end_s);
      double before_s = 0;
      for (const double time_s : turns) {
        const double position = piece.At(time_s).position;
        const double outside = Outside(models_[j], position);
        if (outside > most) {
          if (most == kAtRangeRad) left_s = piece_s + LeavesAt(models_[j], piece, before_s, time_s);
          most = outside;
          outermost = position;
        }
        before_s = time_s;
      }
    }
    if (most == kAtRangeRad) return std::nullopt;
    return Failed(arm_, OutOfRange(joint, models_[j], outermost), left_s / motion_.duration_s_,
                  motion_.At(left_s).joints);
  }

  const Arm& arm_;
  const std::array<JointModel, kJoints>& models_;
  JointMotion& motion_;
  std::array<SevenPhases, kJoints> phases_;      // between rests
  std::array<AxisTransfer, kJoints> transfers_;  // otherwise
  std::array<bool, kJoints> moving_;             // which it is
  double least_s_ = 0;                           // for all between rests
};

MotionState JointMotion::At(double t_s) const {
  MotionState state = t_s >= duration_s_ ? to_ : from_;
  if (t_s > 0 && t_s < duration_s_) {
    for (size_t j = 0; j < kJoints; ++j) {
      const auto [position, velocity, acceleration] = joints_[j].At(t_s);
      state.joints[j] = position;
      state.velocities[j] = velocity;
      state.accelerations[j] = acceleration;
    }
  }
  return state;
}

Result<JointMotion, PlanFailure> PlanJoint(const Arm& arm, const MotionState& from,
                                           const MotionState& to, const JointLimits& limits) {
  // Planned where it is returned, since a motion is some kilobytes.
  Result<JointMotion, PlanFailure> planned(std::in_place, from, to, limits.scale);
  if (auto failure = JointPlanner(arm, *planned).Plan(limits)) planned = *std::move(failure);
  return planned;
}

}  // namespace qal
