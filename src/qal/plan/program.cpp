#include "program.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cycles.h"
#include "path_motion.h"
#include "program_planner.h"
#include "slow_stretches.h"

namespace qal {

struct [[gnu::visibility("hidden")]] ProgramMotion::Held {
  std::vector<ProgramBlock> blocks;
  double cycle_s = 0;
  double duration_s = 0;
  State start = {};
  std::vector<double> step_begins_s = {};
  std::vector<RoundedCorner> corners = {};

  // The block at a time, the later one where two meet; none without blocks.
  const ProgramBlock* BlockAt(double time_s) const;
};

namespace {

// When a law is at a place.
double TimeAt(const TimeLaw& law, double s) {
  double before = 0;
  double after = law.duration_s();
  for (int i = 0; i < 60; ++i) {
    const double middle = (before + after) / 2;
    (law.At(middle).s < s ? before : after) = middle;
  }
  return after;
}

std::vector<double> StepBegins(const std::vector<ProgramBlock>& blocks, size_t steps,
                               double duration_s) {
  constexpr double kUnknown = -1;
  std::vector<double> begins(steps, kUnknown);
  for (const ProgramBlock& block : blocks) {
    if (!block.moves()) {
      if (block.step < steps) begins[block.step] = block.begin_s;
      continue;
    }
    const StepPath& made = block.made;
    for (size_t i = 0; i < made.stretches.size(); ++i) {
      double& begin = begins[made.stretches[i].step];
      if (begin != kUnknown) continue;
      begin = block.begin_s + (i == 0 ? 0 : TimeAt(block.law, made.path.sections[i].begin));
    }
  }
  // The others take no time.
  double next = duration_s;
  for (size_t i = steps; i-- > 0;) {
    if (begins[i] == kUnknown) begins[i] = next;
    next = begins[i];
  }
  return begins;
}

}  // namespace

const ProgramBlock* ProgramMotion::Held::BlockAt(double time_s) const {
  const auto after =
      std::upper_bound(blocks.begin(), blocks.end(), time_s,
                       [](double time, const ProgramBlock& block) { return time < block.begin_s; });
  if (blocks.empty()) return nullptr;
  return after == blocks.begin() ? &blocks.front() : &*(after - 1);
}

double ProgramMotion::duration_s() const { return held_->duration_s; }
const std::vector<double>& ProgramMotion::step_begins_s() const { return held_->step_begins_s; }
const std::vector<RoundedCorner>& ProgramMotion::corners() const { return held_->corners; }

MotionState ProgramMotion::At(double time_s) const {
  const ProgramBlock* const block = held_->BlockAt(time_s);
  if (block == nullptr || time_s < 0) return {held_->start.joints, {}, {}};
  return block->At(time_s - block->begin_s);
}

Sample ProgramMotion::SampleAt(double time_s) const {
  const ProgramBlock* const block = held_->BlockAt(time_s);
  if (block == nullptr || time_s < 0) {
    return {time_s, held_->start.joints, {}, {}, held_->start.pose};
  }
  Sample sample = block->SampleAt(time_s - block->begin_s);
  sample.time_s = time_s;
  return sample;
}

Pose ProgramMotion::PoseAt(double time_s) const { return SampleAt(time_s).pose; }

std::vector<Binding> ProgramMotion::bindings() const {
  BindingMeter meter;
  for (const ProgramBlock& block : held_->blocks) {
    if (block.moves())
      LookThrough(block.made.path, block.law, block.begin_s, held_->cycle_s, meter);
  }
  return meter.Told(held_->duration_s);
}

std::vector<SlowStretch> ProgramMotion::slow_stretches() const {
  return SlowStretchesOf(held_->blocks, held_->cycle_s);
}

const std::vector<ProgramBlock>& BlocksOf(const ProgramMotion& motion) {
  return motion.held_->blocks;
}

Result<ProgramMotion, ProgramFailure> PlanProgram(const Arm& arm, const Program& program,
                                                  const std::function<void(size_t)>& progress) {
  ProgramMotion::Held held;
  held.cycle_s = arm.cycle_s().value;
  ProgramPlanner planner(arm, program);
  for (;;) {
    if (auto failure = planner.Next()) return *std::move(failure);
    if (planner.done()) break;
    held.blocks.push_back(planner.Take());
    if (progress) progress(planner.next_step());
  }
  held.start = planner.start();
  if (!held.blocks.empty()) {
    const ProgramBlock& last = held.blocks.back();
    held.duration_s = last.begin_s + last.duration_s;
  }
  held.step_begins_s = StepBegins(held.blocks, program.steps.size(), held.duration_s);
  for (const ProgramBlock& block : held.blocks) {
    for (const PlacedCorner& corner : block.made.corners) {
      const auto at = [&](double s) {
        const ProgramBlock& there =
            s <= block.made.path.end() || &block == &held.blocks.back() ? block : *(&block + 1);
        return there.begin_s + TimeAt(there.law, s);
      };
      held.corners.push_back({corner.step, at(corner.begin), at(corner.end), corner.farthest.tool_m,
                              corner.farthest.turn_rad, corner.farthest.joint_rad,
                              corner.deviation_m});
    }
  }
  return ProgramMotion(std::make_shared<const ProgramMotion::Held>(std::move(held)));
}

}  // namespace qal
