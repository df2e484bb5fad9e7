#include "load.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// A vector's derivatives by time, as multiples of limits of their lengths.
Load LoadOf(const Vector3& first, const Vector3& second, const Vector3& third,
            const PathMoment& moment, double speed, double acceleration, double jerk) {
  const auto& [s, v, a, j] = moment;
  return {Length(v * first) / speed, Length((v * v) * second + a * first) / acceleration,
          Length((v * v * v) * third + (3 * v * a) * second + j * first) / jerk};
}

}  // namespace

Load ToolLoad(const ToolRates& tool, const PathMoment& moment, const ToolLimits& limits) {
  return LoadOf(tool.velocity, tool.acceleration, tool.jerk, moment, limits.speed,
                limits.acceleration, limits.jerk);
}

Load TurnLoad(const ToolRates& tool, const PathMoment& moment, const ToolLimits& limits) {
  return LoadOf(tool.turn, tool.turn_acceleration, tool.turn_jerk, moment, limits.turn_speed,
                limits.turn_acceleration, limits.turn_jerk);
}

Load LoadAt(const PathPoint& joints, const PathMoment& moment, const PathSection& section) {
  const auto [velocities, accelerations, jerks] = RatesOf(joints, moment);
  Load load = {std::fabs(moment.speed) / section.speed,
               std::fabs(moment.acceleration) / section.acceleration,
               std::fabs(moment.jerk) / section.jerk};
  // What is needed between two looks is a little more than at them, where the path bends most.
  const double between = section.straight ? 1.0003 : 1.001;
  const double jerk_between = section.straight ? 1.0003 : 1.003;
  for (size_t j = 0; j < 6; ++j) {
    load.velocity = std::max(load.velocity, std::fabs(velocities[j]) / section.joint_velocity[j]);
    load.acceleration = std::max(
        load.acceleration, between * std::fabs(accelerations[j]) / section.joint_acceleration[j]);
    load.jerk = std::max(load.jerk, jerk_between * std::fabs(jerks[j]) / section.joint_jerk[j]);
  }
  if (section.straight || section.tool == nullptr) return load;
  const ToolRates tool = section.ToolAt(joints.s);
  Load of_tool = Larger(ToolLoad(tool, moment, section.tool_limits),
                        TurnLoad(tool, moment, section.tool_limits));
  of_tool.acceleration *= between;
  of_tool.jerk *= jerk_between;
  return Larger(load, of_tool);
}

JointRates RatesOf(const PathPoint& joints, const PathMoment& moment) {
  const auto& [s, v, a, jerk] = moment;
  JointRates rates;
  for (size_t j = 0; j < 6; ++j) {
    const double first = joints.first[j];
    const double second = joints.second[j];
    rates[0][j] = first * v;
    rates[1][j] = second * v * v + first * a;
    rates[2][j] = joints.third[j] * v * v * v + 3 * second * v * a + first * jerk;
  }
  return rates;
}

double Load::Slowdown() const {
  return Larger(Larger(1.0, velocity), Larger(std::sqrt(acceleration), std::cbrt(jerk)));
}

Load Larger(const Load& a, const Load& b) {
  return {Larger(a.velocity, b.velocity), Larger(a.acceleration, b.acceleration),
          Larger(a.jerk, b.jerk)};
}

Load LoadMeter::At(double time_s) const {
  const PathMoment moment = law_.At(time_s, piece_);
  Load load = LoadAt(here_, moment, path_.sections[section_]);
  // No motion goes back: there is no making this one slower.
  constexpr double kRounding = 1e-12;
  if (moment.speed < -kRounding) load.velocity = INFINITY;
  return load;
}

namespace {

// The top of the parabola through three values at equal distances, where it is between them;
// otherwise the middle one.
double Peak(double before, double here, double after) {
  const double slope = after - before;
  // Nothing less than the limit is of interest.
  if (here + std::fabs(slope) / 4 <= 1) return here;
  const double bend = 2 * here - before - after;
  if (!(bend > 0 && std::fabs(slope) < 2 * bend)) return here;
  return here + slope * slope / (8 * bend);
}

}  // namespace

Load LoadMeter::MoveTo(double from_s, double to_s, Load& most) {
  Load here;
  // A law that is faster than its numbers can tell is none.
  constexpr double kShortestS = 1e-9;
  constexpr double kMostChange = 0.15;
  const bool bends = !path_.sections[section_].straight;
  const double least_s = (to_s - from_s) / 16;
  double speed = law_.At(from_s, piece_).speed;
  double step_s = to_s - from_s;
  for (double at_s = from_s; at_s < to_s;) {
    const double next_s = step_s < to_s - at_s ? at_s + step_s : to_s;
    const PathMoment moment = law_.At(next_s, piece_);
    const double s = std::clamp(moment.s, path_.begin(), path_.end());
    const size_t there = path_.joints.PieceAt(s, path_piece_);
    const double most_part = bends ? 0.15 : 0.5;
    const bool passes =
        there > path_piece_ + 1 || std::fabs(s - here_.s) > most_part * path_.joints.length(there);
    // Where a motion nearly stops its rates change as fast as its speed does.
    const double change = std::fabs(moment.speed - speed);
    const bool turns = bends && change > kMostChange * speed && step_s > least_s;
    if ((passes && step_s > kShortestS) || turns) {
      step_s /= 2;
      continue;
    }
    speed = moment.speed;
    path_piece_ = there;
    here_ = path_.joints.At(s, there);
    // A step that ends where sections meet is in the one before.
    while (IsBeyond(s) && next_s < law_.begin_s(piece_) + law_.length_s(piece_)) ++section_;
    here = At(next_s);
    most = Larger(most, here);
    at_s = next_s;
    step_s *= 2;
  }
  return here;
}

// Whether a place is in a later section, but for rounding.
bool LoadMeter::IsBeyond(double s) const {
  constexpr double kRounding = 1e-13;
  if (section_ + 1 == path_.sections.size()) return false;
  return s + kRounding * (path_.end() - path_.begin()) >= path_.sections[section_ + 1].begin;
}

// Whether the jerk of the law's piece is constant, nearly.
bool LoadMeter::IsSteady() const {
  const double begin_s = law_.begin_s(piece_);
  const double before = law_.At(begin_s, piece_).jerk;
  const double after = law_.At(begin_s + law_.length_s(piece_), piece_).jerk;
  constexpr double kNearly = 0.05;
  return std::fabs(before - after) <= kNearly * (std::fabs(before) + std::fabs(after));
}

Load LoadMeter::Next() {
  // Within a piece nothing jumps, and what bends does so over some of its lengths.
  constexpr int kLooks = 4;
  constexpr int kLooksWhereItBends = 8;
  const double begin_s = law_.begin_s(piece_);
  while (IsBeyond(here_.s)) ++section_;
  const bool bends = !path_.sections[section_].straight;
  const bool has_peaks = bends || !IsSteady();
  const int looks = bends ? kLooksWhereItBends : kLooks;
  const double look_s = law_.length_s(piece_) / looks;
  Load before = At(begin_s);
  Load here = before;
  Load most = before;
  for (int i = 0; i < looks; ++i) {
    const Load after = MoveTo(begin_s + i * look_s, begin_s + (i + 1) * look_s, most);
    if (!has_peaks) continue;
    if (i > 0) {
      const double peak = Peak(before.acceleration, here.acceleration, after.acceleration);
      most.acceleration = std::max(most.acceleration, peak);
      most.jerk = std::max(most.jerk, Peak(before.jerk, here.jerk, after.jerk));
    }
    before = here;
    here = after;
  }
  ++piece_;
  return most;
}

}  // namespace qal
