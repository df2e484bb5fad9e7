#include "program_stream.h"

#include <utility>

#include "cycles.h"
#include "program_planner.h"

namespace qal {

struct [[gnu::visibility("hidden")]] ProgramStream::Held {
  Held(const Arm& arm, Program given)
      : program(std::move(given)), cycle_s(arm.cycle_s().value), planner(arm, program) {}

  // Takes blocks until one holds the time; false at the end of the motion.
  Result<bool, ProgramFailure> Advance(double time_s) {
    while (!block || time_s >= block->begin_s + block->duration_s) {
      if (!ended) {
        if (auto failure = planner.Next()) return *std::move(failure);
        ended = planner.done();
      }
      if (ended) return block.has_value();
      block = planner.Take();
    }
    return true;
  }

  Program program;
  double cycle_s;
  ProgramPlanner planner;
  std::optional<ProgramBlock> block;
  double next = 0;  // sample
  bool ended = false;
  bool finished = false;
};

ProgramStream::ProgramStream(const Arm& arm, Program program)
    : held_(std::make_unique<Held>(arm, std::move(program))) {}
ProgramStream::~ProgramStream() = default;
ProgramStream::ProgramStream(ProgramStream&&) noexcept = default;
ProgramStream& ProgramStream::operator=(ProgramStream&&) noexcept = default;

size_t ProgramStream::planned_steps() const { return held_->planner.next_step(); }

Result<Trajectory, ProgramFailure> ProgramStream::Read(size_t most) {
  Trajectory samples;
  while (samples.size() < most && !held_->finished) {
    const double time_s = TimeOf(held_->next, held_->cycle_s);
    auto there = held_->Advance(time_s);
    if (!there) {
      // What was read before the failure is worth having.
      if (!samples.empty()) return samples;
      return there.error();
    }
    held_->finished = held_->ended;
    if (!*there) break;
    const ProgramBlock& block = *held_->block;
    samples.push_back(block.SampleAt(time_s - block.begin_s));
    samples.back().time_s = time_s;
    held_->next += 1;
  }
  return samples;
}

}  // namespace qal
