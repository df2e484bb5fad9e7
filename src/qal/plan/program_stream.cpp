#include "program_stream.h"

#include <utility>

#include "cycles.h"
#include "program_planner.h"

namespace qal {

struct [[gnu::visibility("hidden")]] ProgramStream::Held {
  Held(const Arm& arm, Program given)
      : program(std::move(given)), cycle_s(arm.cycle_s().value), planner(arm, program) {}

  // Takes blocks until one holds the time; the last one holds its end. False where there is none.
  bool Advance(double time_s) {
    while (!ended && (!block || time_s >= block->begin_s + block->duration_s)) {
      failure = planner.Next();
      ended = failure || planner.done();
      if (!ended) block = planner.Take();
    }
    return block.has_value();
  }

  Program program;
  double cycle_s;
  ProgramPlanner planner;
  std::optional<ProgramBlock> block;
  double next = 0;  // sample
  std::optional<ProgramFailure> failure;
  bool ended = false;     // there are no more blocks
  bool finished = false;  // nor samples
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
    const bool is_there = held_->Advance(time_s);
    held_->finished = held_->ended;
    if (!is_there) break;
    const ProgramBlock& block = *held_->block;
    samples.push_back(block.SampleAt(time_s - block.begin_s));
    samples.back().time_s = time_s;
    held_->next += 1;
  }
  if (samples.empty() && held_->failure) return *held_->failure;
  return samples;
}

}  // namespace qal
