#include "playback.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "cycles.h"
#include "played_run.h"
#include "sampled.h"

namespace qal {

struct [[gnu::visibility("hidden")]] Playback::Held {
  Held(const ProgramMotion& played, double from_s)
      : motion(played),
        runs(RunsOf(motion)),
        cycle_s(CycleOf(motion)),
        player(PlayerOf(runs, motion, std::max(from_s, 0.0))) {}

  Sample Now();

  ProgramMotion motion;
  std::vector<PlayedRun> runs;
  double cycle_s;
  Player player;
  double factor = 1;
  bool stopped = false;
  bool begun = false;
  double cycles = 0;
};

Sample Playback::Held::Now() {
  if (player.stands()) {
    Sample sample = motion.SampleAt(player.planned_s());
    sample.velocities = {};
    sample.accelerations = {};
    return sample;
  }
  return runs[player.block()].SampleOf(player.Ahead(0).path);
}

Playback::Playback(std::unique_ptr<Held> held) : held_(std::move(held)) {}
Playback::Playback(const ProgramMotion& motion, double from_s)
    : held_(std::make_unique<Held>(motion, from_s)) {}
Playback::~Playback() = default;
Playback::Playback(Playback&& other) noexcept = default;
Playback& Playback::operator=(Playback&& other) noexcept = default;

Playback Playback::FromRest(const ProgramMotion& motion, double planned_s) {
  auto held = std::make_unique<Held>(motion, planned_s);
  held->player.Stand();
  return Playback(std::move(held));
}

void Playback::Stop() { held_->stopped = true; }
void Playback::Resume() { held_->stopped = false; }
void Playback::Override(double factor) { held_->factor = factor > 0 ? std::min(factor, 1.0) : 0; }

Sample Playback::Next() {
  Held& held = *held_;
  held.player.SetPace(held.stopped ? 0 : held.factor);
  if (held.begun) {
    held.player.Decide();
    held.player.Advance();
    ++held.cycles;
  }
  held.begun = true;
  Sample sample = held.Now();
  sample.time_s = TimeOf(held.cycles, held.cycle_s);
  return sample;
}

bool Playback::at_rest() const { return held_->player.at_rest(); }
bool Playback::done() const { return held_->player.done(); }
double Playback::planned_s() const { return held_->player.planned_s(); }

namespace {

// Plays until an end, whose sample is the last.
template <class IsEnd>
Result<Trajectory, PlanFailure> Played(Playback& playback, const IsEnd& is_end) {
  Trajectory samples;
  for (;;) {
    samples.push_back(playback.Next());
    if (is_end(samples.back())) return samples;
    const auto count = static_cast<double>(samples.size());
    if (count >= kMostSamples) {
      return PlanFailure{{Reason::kTooManyPoints, -1, count + 1, kMostSamples}};
    }
  }
}

std::optional<PlanFailure> Refused(double time_s) {
  if (std::isfinite(time_s)) return std::nullopt;
  return PlanFailure{{Reason::kNotFinite, -1, time_s, 0}};
}

}  // namespace

Result<Stopped, PlanFailure> Stop(const ProgramMotion& motion, double at_s) {
  if (auto refused = Refused(at_s)) return *refused;
  Playback playback(motion, at_s);
  playback.Stop();
  auto trajectory = Played(playback, [&](const Sample&) { return playback.at_rest(); });
  if (!trajectory) return trajectory.error();
  return Stopped{*std::move(trajectory), playback.planned_s()};
}

Result<Trajectory, PlanFailure> Resume(const ProgramMotion& motion, double planned_s) {
  if (auto refused = Refused(planned_s)) return *refused;
  Playback playback = Playback::FromRest(motion, planned_s);
  return Played(playback, [&](const Sample&) { return playback.done(); });
}

Result<Trajectory, PlanFailure> Override(const ProgramMotion& motion,
                                         const std::function<double(double)>& factor) {
  Playback playback(motion);
  playback.Override(factor(0));
  return Played(playback, [&](const Sample& sample) {
    playback.Override(factor(sample.time_s));
    return playback.done();
  });
}

}  // namespace qal
