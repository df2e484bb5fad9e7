#include "draft.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qal {

namespace {

// At each place as fast as its speed, and its bends without an acceleration, allow; and from place
// to place with what acceleration the joints' limits leave.
Draft Outline(const LimitedPath& path, double start_speed) {
  Draft draft;
  std::vector<double> acceleration;
  size_t section = 0;
  const auto add = [&](double s, size_t piece) {
    section = path.SectionAt(s, section);
    const LimitedRates rates(path.joints.At(s, piece), path.sections[section]);
    double speed = rates.most_speed();
    // More than any motion, where nothing moves with s.
    double most = 1e9;
    double jerk = 1e12;
    for (const LimitedRate& rate : rates) {
      const double first = std::fabs(rate.first);
      speed = std::min({speed, std::sqrt(rate.acceleration / std::fabs(rate.second)),
                        std::cbrt(rate.jerk / std::fabs(rate.third))});
      most = std::min(most, rate.acceleration / first);
      jerk = std::min(jerk, rate.jerk / first);
    }
    // From rest at the constant jerk: s = j t^3 / 6, v = j t^2 / 2.
    const double to_end = path.end() - s;
    const double from_rest = start_speed > 0 ? to_end : std::min(s - path.begin(), to_end);
    const double time_s = std::cbrt(6 * from_rest / jerk);
    draft.places.push_back(s);
    draft.speed.push_back(std::min(speed, jerk * time_s * time_s / 2));
    acceleration.push_back(most);
  };
  constexpr int kParts = 8;
  for (size_t piece = 0; piece < path.joints.size(); ++piece) {
    for (int i = 0; i < kParts; ++i) {
      const double s = PlaceIn(path.joints, piece, static_cast<double>(i) / kParts);
      add(s, piece);
    }
  }
  add(path.end(), path.joints.size() - 1);
  draft.speed.front() = start_speed;
  const auto limit = [&](size_t from, size_t to) {
    const double h = std::fabs(draft.places[to] - draft.places[from]);
    const double most = std::min(acceleration[from], acceleration[to]);
    const double square = draft.speed[from] * draft.speed[from] + 2 * most * h;
    draft.speed[to] = std::min(draft.speed[to], std::sqrt(square));
  };
  const size_t last = draft.places.size() - 1;
  for (size_t k = start_speed > 0 ? 1 : 2; k <= last; ++k) limit(k - 1, k);
  for (size_t k = last - 1; k > 1; --k) limit(k, k - 1);
  return draft;
}

// A draft over time: between its places the speed is linear in time, but quadratic from and to
// rest.
class TimedDraft {
 public:
  explicit TimedDraft(const Draft& draft) : draft_(draft), times_(draft.places.size(), 0.0) {
    const size_t last = times_.size() - 1;
    for (size_t k = 0; k < last; ++k) {
      const double h = draft.places[k + 1] - draft.places[k];
      const double speed = draft.speed[k] + draft.speed[k + 1];
      const bool rests = draft.speed[k] == 0 || draft.speed[k + 1] == 0;
      times_[k + 1] = times_[k] + (rests ? 3 : 2) * h / speed;
    }
  }

  double duration_s() const { return times_.back(); }

  /// Place and speed at a time; times are asked for in their order.
  std::pair<double, double> At(double time_s) {
    while (k_ + 2 < times_.size() && times_[k_ + 1] <= time_s) ++k_;
    const double part = (time_s - times_[k_]) / (times_[k_ + 1] - times_[k_]);
    const double left = 1 - part;
    const double from = draft_.places[k_];
    const double h = draft_.places[k_ + 1] - from;
    const double v0 = draft_.speed[k_];
    const double v1 = draft_.speed[k_ + 1];
    if (v0 == 0) return {from + h * part * part * part, v1 * part * part};
    if (v1 == 0) return {from + h * (1 - left * left * left), v0 * left * left};
    const double speed = v0 + part * (v1 - v0);
    return {from + h * part * (v0 + speed) / (v0 + v1), speed};
  }

 private:
  const Draft& draft_;
  std::vector<double> times_;
  size_t k_ = 0;
};

// Sees to it that a place is one of a draft's; `before` is one that has to stay.
void PutPlace(double s, double before, Draft& draft) {
  auto& [places, speed, half] = draft;
  const auto after = std::lower_bound(places.begin(), places.end(), s);
  const auto k = after - places.begin();
  if (k == 0 || after == places.end()) return;
  const double part = (s - *(after - 1)) / (*after - *(after - 1));
  const double here = speed[static_cast<size_t>(k - 1)] +
                      part * (speed[static_cast<size_t>(k)] - speed[static_cast<size_t>(k - 1)]);
  // A step of less than this part of the one that it is cut from gives way.
  constexpr double kLeast = 0.3;
  const bool is_end = after + 1 == places.end();
  if (part > 1 - kLeast && !is_end) {
    *after = s;
    speed[static_cast<size_t>(k)] = here;
  } else if (part < kLeast && k > 1 && *(after - 1) != before) {
    *(after - 1) = s;
    speed[static_cast<size_t>(k - 1)] = here;
  } else {
    places.insert(after, s);
    speed.insert(speed.begin() + k, here);
  }
}

// The draft by other places, `step_s` apart, and closer where the path's pieces are shorter: there
// the joints bend most.
Draft Spaced(const Draft& draft, const LimitedPath& limited, double step_s) {
  const JointPath& path = limited.joints;
  TimedDraft timed(draft);
  // Fewer would not show the phases of a short motion.
  constexpr double kLeast = 24;
  const double steps = std::ceil(timed.duration_s() / step_s);
  const auto count = static_cast<int>(std::clamp(steps, kLeast, kMostDraftSteps));
  const double interval_s = timed.duration_s() / count;
  std::vector<double> times;
  size_t piece = 0;
  size_t section = 0;
  double reached = draft.places.front();
  for (int i = 1; i <= count; ++i) {
    const double s = i < count ? timed.At(i * interval_s).first : draft.places.back();
    double shortest = path.length(piece);
    for (; piece + 1 < path.size() && path.begin(piece + 1) < s; ++piece) {
      shortest = std::min(shortest, path.length(piece + 1));
    }
    // Where the tool goes straight, and where it doesn't.
    constexpr double kPartsOfPiece[] = {3, 5};
    section = limited.SectionAt(s, section);
    const double parts_of_piece = kPartsOfPiece[limited.sections[section].straight ? 0 : 1];
    constexpr double kMostParts = 100;
    const auto parts = static_cast<int>(
        std::min(kMostParts, std::ceil(parts_of_piece * (s - reached) / shortest)));
    for (int part = 1; part <= parts; ++part) {
      times.push_back((i - 1 + static_cast<double>(part) / parts) * interval_s);
    }
    reached = s;
  }
  times.pop_back();
  TimedDraft again(draft);
  Draft spaced = {{draft.places.front()}, {draft.speed.front()}, {}};
  for (const double time_s : times) {
    const auto [place, speed] = again.At(time_s);
    spaced.places.push_back(place);
    spaced.speed.push_back(speed);
  }
  spaced.places.push_back(draft.places.back());
  spaced.speed.push_back(0);
  double before = spaced.places.front();
  for (const PathSection& each : limited.sections) {
    PutPlace(each.begin, before, spaced);
    before = each.begin;
  }
  for (size_t i = 1; i < spaced.speed.size(); ++i) {
    const double v0 = spaced.speed[i - 1];
    const double v1 = spaced.speed[i];
    spaced.half.push_back((v0 + v1) / (v0 == 0 || v1 == 0 ? 4 : 2));
  }
  return spaced;
}

}  // namespace

Draft DraftOf(const LimitedPath& path, double start_speed, double step_s) {
  return Spaced(Outline(path, start_speed), path, step_s);
}

}  // namespace qal
