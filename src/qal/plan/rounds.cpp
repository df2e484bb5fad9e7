#include "rounds.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "../model/exceptions.h"
#include "law_states.h"

namespace qal {

namespace {

void Redraft(const TimeLaw& law, Draft& draft) {
  for (size_t k = 0; k < law.size(); ++k) {
    draft.speed[k] = law.At(law.begin_s(k), k).speed;
    draft.half[k] = law.At(law.begin_s(k) + law.length_s(k) / 2, k).speed;
  }
}

// Finds motions in rounds: each has a better draft, and margins where the limits were exceeded
// between the places.
class Rounds {
 public:
  Rounds(const LimitedPath& path, const PathState& start, Draft draft)
      : path_(path), start_(start), draft_(std::move(draft)), margin_(draft_.places.size() - 1) {}

  /// One more motion; nothing where the round finds none.
  std::optional<TimeLaw> Next() {
    std::vector<PathState> states;
    // The tangents at a fast motion leave too little to a slow one: where it is too fast the draft
    // is slowed down.
    for (int tries = 0; states.empty(); ++tries) {
      constexpr int kMostTries = 40;
      if (tries == kMostTries) return std::nullopt;
      if (path_.go_on && !path_.go_on()) throw Interrupted{};
      size_t dead_end = 0;
      states = FastestStates(path_, start_, draft_, margin_, dead_end);
      if (states.empty()) SlowDownAt(dead_end);
    }
    TimeLaw law = LawOf({draft_.places, std::move(states)});
    LoadMeter meter(path_, law);
    load_ = {};
    for (Margin& here : margin_) {
      const Load load = meter.Next();
      // Between places the limit of speed is exceeded by what a motion can be slowed down by as a
      // whole, as a rule.
      constexpr double kTooFast = 1.002;
      if (load.velocity > kTooFast && std::isfinite(load.velocity)) {
        here.velocity /= load.velocity;
      }
      here.acceleration = std::min(1.0, here.acceleration / load.acceleration);
      here.jerk = std::min(1.0, here.jerk / load.jerk);
      load_ = Larger(load_, load);
    }
    Redraft(law, draft_);
    return law;
  }

  /// How much slower the last motion has to be.
  double slowdown() const { return load_.Slowdown(); }

 private:
  void SlowDownAt(size_t place) {
    constexpr size_t kAround = 6;
    constexpr double kFactor = 0.75;
    const size_t from = place > kAround ? place - kAround : 0;
    const size_t to = std::min(place + kAround, draft_.half.size() - 1);
    for (size_t k = from; k <= to; ++k) {
      const double away = static_cast<double>(k > place ? k - place : place - k) / (kAround + 1);
      const double factor = kFactor + (1 - kFactor) * away * away;
      if (k > 0 || start_.square == 0) draft_.speed[k] *= factor;
      draft_.half[k] *= factor;
    }
  }

  const LimitedPath& path_;
  PathState start_;
  Draft draft_;
  std::vector<Margin> margin_;
  Load load_;
};

}  // namespace

std::optional<Driven> Drive(const LimitedPath& path, const PathState& start, Draft draft) {
  Rounds rounds(path, start, std::move(draft));
  std::optional<Driven> best;
  double best_s = INFINITY;
  constexpr int kMostRounds = 5;
  for (int round = 0; round < kMostRounds; ++round) {
    std::optional<TimeLaw> law = rounds.Next();
    if (!law) continue;
    const double duration_s = law->duration_s() * rounds.slowdown();
    const double gain = 1 - duration_s / best_s;
    if (gain > 0) {
      best_s = duration_s;
      best = {*std::move(law), rounds.slowdown()};
    }
    if (rounds.slowdown() < 1 + kRoundsEnough && gain < kRoundsEnough) break;
  }
  return best;
}

}  // namespace qal
