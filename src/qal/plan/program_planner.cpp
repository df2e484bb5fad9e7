#include "program_planner.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "../model/rotations.h"
#include "../model/watched_solver.h"
#include "../solve/kinematics.h"
#include "cycles.h"
#include "fastest_law.h"
#include "joint_limits.h"
#include "load.h"
#include "mend.h"
#include "path_motion.h"

namespace qal {

bool ProgramBlock::IsOver(double time_s) const {
  // Where the law is longer than the block, it is by rounding.
  return !moves() || (stops && time_s >= std::min(law.duration_s(), duration_s));
}

MotionState ProgramBlock::At(double time_s) const {
  if (IsOver(time_s)) return {end.joints, {}, {}};
  return StateAt(made.path, MomentAt(made.path, law, std::max(time_s, 0.0)));
}

Pose ProgramBlock::PoseAt(double time_s) const { return SampleAt(time_s).pose; }

Sample ProgramBlock::SampleAt(double time_s) const {
  if (IsOver(time_s)) {
    return {time_s, end.joints, {}, {}, end.pose};
  }
  Sample sample = SampleOf(MomentAt(made.path, law, std::max(time_s, 0.0)));
  sample.time_s = time_s;
  return sample;
}

Sample ProgramBlock::SampleOf(const PathMoment& moment) const {
  const auto [joints, velocities, accelerations] = StateAt(made.path, moment);
  Sample sample = {0, joints, velocities, accelerations, end.pose};
  const PathSection& section = made.path.sections[made.path.SectionAt(moment.s)];
  const auto holds = [&](const WristPass& pass) {
    return pass.begin < moment.s && moment.s < pass.end;
  };
  const bool off = std::any_of(made.passes.begin(), made.passes.end(), holds);
  if (section.tool != nullptr) sample.pose = section.tool->PoseAt(moment.s - section.tool_begin);
  if (section.tool != nullptr && !off) return sample;
  if (const auto is = Forward(arm, joints)) {
    sample.pose = {is->position, SignedAs(is->orientation, sample.pose.orientation)};
  }
  return sample;
}

ProgramPlanner::ProgramPlanner(const Arm& arm, const Program& program)
    : arm_(arm), program_(program) {}

std::optional<ProgramFailure> ProgramPlanner::Next() {
  // One that stops is held back, since the last one of all is changed.
  while (!planned_ && (blocks_.empty() || (blocks_.size() == 1 && blocks_.front().stops))) {
    try {
      failure_ = PlanStep();
    } catch (const Interrupted&) {
      failure_ = {{Error{Reason::kInterrupted}}, std::min(next_, program_.steps.size() - 1)};
    }
    if (failure_) ComeToRest();
    planned_ = planned_ || failure_.has_value();
    if (planned_) EndInWholeCycles();
  }
  if (!blocks_.empty()) return std::nullopt;
  done_ = true;
  return failure_;
}

ProgramBlock ProgramPlanner::Take() {
  ProgramBlock block = std::move(blocks_.front());
  blocks_.pop_front();
  return block;
}

std::optional<ProgramFailure> ProgramPlanner::Begin() {
  begun_ = true;
  PlanFailure failure;
  const auto pose = Forward(arm_, program_.start);
  if (!pose) {
    failure.error = pose.error();
    return ProgramFailure{failure, 0};
  }
  state_ = {program_.start, *pose};
  begin_ = state_;
  failure.before = state_;
  if (auto refused = RefusedJoints(arm_, program_.start)) {
    failure.error = *std::move(refused);
    return ProgramFailure{failure, 0};
  }
  return std::nullopt;
}

std::optional<ProgramFailure> ProgramPlanner::PlanStep() {
  if (!begun_) {
    if (auto failure = Begin()) return failure;
  }
  if (run_) return PlanWindow();
  if (next_ == program_.steps.size()) {
    planned_ = true;
    return std::nullopt;
  }
  const ProgramStep& step = program_.steps[next_];
  if (IsMotion(step)) {
    run_ = std::make_unique<RunPath>(arm_, program_, next_, state_);
    return PlanWindow();
  }
  if (auto refused = StandStill(step)) return ProgramFailure{{*refused, 0, state_}, next_};
  ++next_;
  return std::nullopt;
}

std::optional<Error> ProgramPlanner::StandStill(const ProgramStep& step) {
  if (const auto* const wait = std::get_if<WaitStep>(&step)) {
    // A longer one's time has no digits left for its cycles.
    constexpr double kLongestWaitS = 1e6;
    const double duration_s = wait->duration_s;
    if (!(duration_s >= 0 && duration_s <= kLongestWaitS)) {
      return Error{Reason::kSetting, -1, duration_s, duration_s > 0 ? kLongestWaitS : 0,
                   "duration_s"};
    }
    Add({arm_, 0, duration_s, {}, {}, next_, state_});
    return std::nullopt;
  }
  const Result<Arm> arm = arm_.WithTool(std::get<ToolStep>(step).tool);
  if (!arm) return arm.error();
  const Result<Pose> pose = Forward(*arm, state_.joints);
  if (!pose) return pose.error();
  arm_ = *arm;
  state_.pose = *pose;
  return std::nullopt;
}

void ProgramPlanner::Add(ProgramBlock block) {
  if (block.moves()) block.duration_s = block.law.duration_s();
  block.begin_s = time_s_;
  time_s_ += block.duration_s;
  blocks_.push_back(std::move(block));
}

void ProgramPlanner::ComeToRest() {
  if (stopping_law_.size() == 0) return;
  const State end = {stopping_.path.joints.last().value, state_.pose};
  ProgramBlock block = {arm_, 0, 0, std::move(stopping_), std::move(stopping_law_), 0, end};
  if (const auto pose = Forward(arm_, end.joints)) block.end.pose = *pose;
  Add(std::move(block));
  stopping_law_ = {};
}

std::optional<ProgramFailure> ProgramPlanner::PlanWindow() {
  StepPath& made = run_->made();
  const size_t first = made.stretches.empty() ? run_->next_step() : made.stretches.front().step;
  while (!run_->done() && run_->next_step() < first + 2 * kLookAheadSteps) {
    if (auto failure = run_->Extend()) return failure;
  }
  next_ = run_->next_step();
  if (made.stretches.empty()) {  // no step of any length
    run_.reset();
    return std::nullopt;
  }
  const double cycle_s = arm_.cycle_s().value;
  made.path.go_on = WatchOf(arm_.solver());
  std::optional<TimeLaw> law;
  if (stopping_law_.size() > 0) {
    law = FastestLawFrom(made.path, stopping_law_, cycle_s);
    if (!law) {
      // Then it stops where it would have stopped anyway, had there been no more steps.
      made.CutBefore(stopping_.path.end());
      ComeToRest();
      return std::nullopt;
    }
  }
  if (!law) law = FastestLaw(made.path, cycle_s);
  stopping_law_ = {};
  if (run_->done()) {
    state_ = {made.path.joints.last().value, run_->end_pose()};
    Add({arm_, 0, 0, std::move(made), *std::move(law), 0, state_});
    run_.reset();
    return std::nullopt;
  }
  const size_t piece = PieceToLeave(made, *law);
  const PathMoment moment = law->At(law->begin_s(piece), piece);
  ProgramBlock block = {arm_, 0, 0, made, law->Before(piece), 0, state_, false};
  block.made.CutAfter(moment.s);
  Add(std::move(block));
  made.CutBefore(moment.s);
  stopping_ = made;
  stopping_law_ = law->From(piece);
  return std::nullopt;
}

// Where to leave a window's motion for that of the next window, which will begin there: on the last
// step that is settled, where it needs least of the limits.
size_t ProgramPlanner::PieceToLeave(const StepPath& made, const TimeLaw& law) const {
  const size_t settled = run_->next_step() - 1 - kLookAheadSteps;
  LoadMeter meter(made.path, law);
  double before = meter.Next().acceleration;
  size_t best = 0;
  double least = INFINITY;
  for (size_t piece = 1; piece < law.size(); ++piece) {
    const Load load = meter.Next();
    const double here = std::max(load.acceleration, load.jerk);
    const double both = std::max(before, here);
    before = here;
    const size_t step =
        made.stretches[made.path.SectionAt(law.At(law.begin_s(piece), piece).s)].step;
    if (step < settled) continue;
    if (step > settled && best > 0) break;
    if (both < least) {
      least = both;
      best = piece;
    }
  }
  return best;
}

void ProgramPlanner::EndInWholeCycles() {
  const double cycle_s = arm_.cycle_s().value;
  const double cycles = WholeCycles(time_s_, cycle_s);
  if (blocks_.empty() || time_s_ == TimeOf(cycles, cycle_s)) return;
  ProgramBlock& last = blocks_.back();
  const auto end_at = [&](double end_s) {
    last.duration_s = end_s - last.begin_s;
    time_s_ = end_s;
  };
  if (!last.moves()) return end_at(TimeOf(cycles, cycle_s));
  if (last.law.At(0).speed == 0) {
    const double slower = (TimeOf(cycles, cycle_s) - last.begin_s) / last.duration_s;
    if (slower > 1) last.law = last.law.Slower(slower);
    return end_at(TimeOf(cycles, cycle_s));
  }
  // In motion where it begins it can be slowed down by little at its end, or by a little more.
  constexpr int kMostCycles = 20;
  for (int more = 0; more < kMostCycles; ++more) {
    const double end_s = TimeOf(cycles + more, cycle_s);
    TimeLaw slower = SlowedTo(last.law, end_s - last.begin_s);
    if (SlowdownOf(last.made.path, slower) > 1 + kMended) continue;
    last.law = std::move(slower);
    return end_at(end_s);
  }
  Add({arm_, 0, TimeOf(cycles, cycle_s) - time_s_, {}, {}, next_, last.end});
}

}  // namespace qal
