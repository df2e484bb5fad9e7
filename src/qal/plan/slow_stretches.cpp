#include "slow_stretches.h"

#include <algorithm>
#include <cmath>

#include "path_motion.h"

namespace qal {

namespace {

// A plan leaves some thousandths of a limit here and there.
constexpr double kReached = 0.985;

// What a moment in a block says of the tool's speed.
struct Look {
  double time_s;
  size_t step;
  double along;
  double speed_m_s;
  double part;          // of the limit of speed, of tool or turn, that is nearer; 1 without one
  NeededLimit nearest;  // of the others
};

Look LookAt(const ProgramBlock& block, double time_s) {
  const LimitedPath& path = block.made.path;
  const PathMoment moment = MomentAt(path, block.law, time_s);
  const size_t section = path.SectionAt(moment.s);
  Look look = {block.begin_s + time_s,
               block.made.stretches[section].step,
               block.made.AlongAt(moment.s, section),
               0,
               1,
               {}};
  look.nearest.part = 0;
  look.part = path.sections[section].tool == nullptr ? 1 : 0;
  for (const NeededLimit& need :
       NeedsAt(path.joints.At(moment.s), moment, path.sections[section])) {
    const bool is_speed = need.limit == Limit::kToolSpeed || need.limit == Limit::kTurnSpeed;
    if (need.limit == Limit::kToolSpeed && path.sections[section].tool != nullptr) {
      look.speed_m_s = need.part * path.sections[section].tool_limits.speed;
    }
    if (is_speed) {
      look.part = std::max(look.part, need.part);
    } else if (need.part > look.nearest.part) {
      look.nearest = need;
    }
  }
  return look;
}

// The looks of one run, between two stops.
class RunLooks {
 public:
  void Add(const Look& look) { looks_.push_back(look); }
  bool empty() const { return looks_.empty(); }

  void Finish(double look_s, std::vector<SlowStretch>& slow) {
    size_t first = 0;
    size_t last = looks_.size();
    // Starting and stopping are no slow stretches.
    while (first + 1 < last && looks_[first].part < kReached &&
           looks_[first + 1].part >= looks_[first].part) {
      ++first;
    }
    while (last > first + 1 && looks_[last - 1].part < kReached &&
           looks_[last - 2].part >= looks_[last - 1].part) {
      --last;
    }
    for (size_t i = first; i < last; ++i) {
      if (looks_[i].part >= kReached) continue;
      size_t end = i + 1;
      while (end < last && looks_[end].part < kReached && looks_[end].step == looks_[i].step) ++end;
      slow.push_back(Told(i, end, look_s));
      i = end - 1;
    }
    looks_.clear();
  }

 private:
  SlowStretch Told(size_t begin, size_t end, double look_s) const {
    const auto slower = [](const Look& a, const Look& b) { return a.part < b.part; };
    const auto first = looks_.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto slowest =
        std::min_element(first, looks_.begin() + static_cast<std::ptrdiff_t>(end), slower);
    const NeededLimit binds = BindsAt(static_cast<size_t>(slowest - looks_.begin()), begin, end);
    return {first->step,
            first->time_s - look_s / 2,
            looks_[end - 1].time_s + look_s / 2,
            slowest->speed_m_s,
            slowest->time_s,
            slowest->along,
            binds.limit,
            binds.joint};
  }

  // What it runs at there or next to there in the stretch; what it needs most where it runs at
  // nothing.
  NeededLimit BindsAt(size_t where, size_t begin, size_t end) const {
    NeededLimit most = looks_[where].nearest;
    for (size_t away = 0; most.part < kReached && away < end - begin; ++away) {
      if (where + away < end && looks_[where + away].nearest.part > most.part) {
        most = looks_[where + away].nearest;
      }
      if (where >= begin + away && looks_[where - away].nearest.part > most.part) {
        most = looks_[where - away].nearest;
      }
    }
    return most;
  }

  std::vector<Look> looks_;
};

}  // namespace

std::vector<SlowStretch> SlowStretchesOf(const std::vector<ProgramBlock>& blocks, double cycle_s) {
  std::vector<SlowStretch> slow;
  RunLooks run;
  for (const ProgramBlock& block : blocks) {
    if (!block.moves()) continue;
    constexpr double kMostLooks = 1e5;
    const double duration_s = block.law.duration_s();
    const auto looks = static_cast<int>(std::min(kMostLooks, std::ceil(duration_s / cycle_s)));
    const double look_s = duration_s / looks;
    for (int i = 0; i < looks; ++i) run.Add(LookAt(block, (i + 0.5) * look_s));
    if (block.stops) run.Finish(look_s, slow);
  }
  return slow;
}

}  // namespace qal
