#include "axis_transfer.h"

#include <cmath>

namespace qal {

namespace {

// The pieces of an acceleration, in the units of an AxisTask.
struct Pieces {
  int size = 0;
  double time[AxisMotion::kMostPieces];
  double acceleration[AxisMotion::kMostPieces];
  double jerk[AxisMotion::kMostPieces];

  void Add(double piece_time, double begin, double change) {
    time[size] = piece_time;
    acceleration[size] = begin;
    jerk[size++] = change;
  }
};

// The pieces of a profile; `sign` -1: of a mirrored one.
Pieces Only(const AccelerationProfile& profile, double sign) {
  Pieces pieces;
  for (int i = 0; i < profile.size; ++i) {
    pieces.Add(profile.time[i], sign * profile.acceleration[i], sign * profile.jerk[i]);
  }
  return pieces;
}

// `weight` of the farthest motion and the rest of the nearest one, which is given mirrored.
Pieces BlendProfiles(const AccelerationProfile& farthest, const AccelerationProfile& nearest,
                     double weight) {
  Pieces pieces;
  int f = 0;
  int n = 0;
  double into_f = 0;  // how much of a piece has passed
  double into_n = 0;
  while (f < farthest.size && n < nearest.size) {
    const double left_f = farthest.time[f] - into_f;
    const double left_n = nearest.time[n] - into_n;
    const double time = std::min(left_f, left_n);
    pieces.Add(time,
               weight * (farthest.acceleration[f] + into_f * farthest.jerk[f]) -
                   (1 - weight) * (nearest.acceleration[n] + into_n * nearest.jerk[n]),
               weight * farthest.jerk[f] - (1 - weight) * nearest.jerk[n]);
    into_f += time;
    into_n += time;
    if (left_f <= left_n) {
      ++f;
      into_f = 0;
    }
    if (left_n <= left_f) {
      ++n;
      into_n = 0;
    }
  }
  return pieces;
}

// When each piece begins. Times are laid from both ends, and the longest piece between them takes
// what is rounded: the others are read no longer than they are, so that no rate goes on beyond its
// limit, however many digits the duration takes.
void LayTimes(const Pieces& pieces, double time_s, double duration_s, double* begin_s) {
  constexpr double kDigit = 0x1p-52;
  const int longest =
      static_cast<int>(std::max_element(pieces.time, pieces.time + pieces.size) - pieces.time);
  begin_s[0] = 0;
  for (int i = 0; i < longest; ++i) {
    const double next = (begin_s[i] + pieces.time[i] * time_s) * (1 - kDigit);
    begin_s[i + 1] = std::max(begin_s[i], next);
  }
  double end = duration_s;
  for (int i = pieces.size - 1; i > longest; --i) {
    end = std::min(end, (end - pieces.time[i] * time_s) * (1 + kDigit));
    begin_s[i] = end;
  }
}

// Two states as a task, in units of this acceleration and this time.
AxisTask TaskOf(const AxisState& from, const AxisState& to, const AxisLimits& limits,
                double acceleration, double time_s) {
  const double velocity = acceleration * time_s;
  const double length = velocity * time_s;
  // A state that is a rounding beyond a limit has that for its limit.
  const double top =
      std::max({limits.velocity, std::fabs(from.velocity), std::fabs(to.velocity),
                std::fabs(UnavoidableVelocity(from, limits.jerk)),
                std::fabs(UnavoidableVelocity({0, to.velocity, -to.acceleration}, limits.jerk))});
  constexpr double kPositionDigits = 1e-13;
  return {from.velocity / velocity,
          from.acceleration / acceleration,
          to.velocity / velocity,
          to.acceleration / acceleration,
          (to.position - from.position) / length,
          top / velocity,
          kPositionDigits * std::max(std::fabs(from.position), std::fabs(to.position)) / length};
}

}  // namespace

double UnavoidableVelocity(const AxisState& state, double jerk) {
  return state.velocity + state.acceleration * std::fabs(state.acceleration) / 2 / jerk;
}

AxisTransfer::AxisTransfer(const AxisState& from, const AxisState& to, const AxisLimits& limits)
    // A state that is a rounding beyond a limit has that for its limit.
    : from_(from),
      acceleration_(std::max(
          {limits.acceleration, std::fabs(from.acceleration), std::fabs(to.acceleration)})),
      time_s_(acceleration_ / limits.jerk),
      task_(TaskOf(from, to, limits, acceleration_, time_s_)),
      farthest_(task_),
      nearest_(task_.Mirrored()) {}

double AxisTransfer::NextDuration(double duration_s) const {
  const double begin = duration_s / time_s_;
  // The acceleration has to change from the start's to the end's.
  double time = std::max(begin, std::fabs(task_.end_acceleration - task_.start_acceleration));
  constexpr int kMostStretches = 16;
  for (int i = 0; i < kMostStretches; ++i) {
    const double next = nearest_.NextTime(farthest_.NextTime(time));
    if (next == time) break;
    time = next;
  }
  return time == begin ? duration_s : std::max(duration_s, time * time_s_);
}

void AxisTransfer::AddPieces(double duration_s, AxisMotion& motion) const {
  const double time = duration_s / time_s_;
  const double to_farthest = farthest_.Farthest(time) - task_.distance;
  const double to_nearest = nearest_.Farthest(time) + task_.distance;
  const double resolution = farthest_.Resolution(time);
  Pieces pieces;
  if (to_farthest <= resolution) {
    pieces = Only(farthest_.FarthestProfile(time), 1);
  } else if (to_nearest <= resolution) {
    pieces = Only(nearest_.FarthestProfile(time), -1);
  } else {
    pieces = BlendProfiles(farthest_.FarthestProfile(time), nearest_.FarthestProfile(time),
                           to_nearest / (to_nearest + to_farthest));
  }
  if (pieces.size == 0) {  // a duration of 0
    return motion.Add(0, {from_.position, from_.velocity, from_.acceleration, 0});
  }
  double begin_s[AxisMotion::kMostPieces] = {};
  LayTimes(pieces, time_s_, duration_s, begin_s);
  AxisState at = from_;
  for (int i = 0; i < pieces.size; ++i) {
    const Cubic cubic = {at.position, at.velocity, acceleration_ * pieces.acceleration[i],
                         acceleration_ / time_s_ * pieces.jerk[i]};
    motion.Add(begin_s[i], cubic);
    at = cubic.At(pieces.time[i] * time_s_);
  }
}

}  // namespace qal
