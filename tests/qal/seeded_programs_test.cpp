#include "../../bench/seeded_programs.h"

#include <gtest/gtest.h>
#include <qal/plan/sampled.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "seeded.h"

// Programs drawn from a seed, looked at from outside: by differences of what the motion says of
// itself, at 32 times the cycle's rate, and by the ways and corners that the program was drawn
// with.
namespace qal {
namespace {

using namespace bench;

constexpr double kNone = std::numeric_limits<double>::infinity();

// The largest value that was seen, when, and of what: joint 1 to 6, the tool, its turn.
struct Worst {
  double value = 0;
  double time_s = 0;
  size_t what = 0;
};
constexpr size_t kTool = 7;
constexpr size_t kTurn = 8;

// What a step may do: the arm's limits are scaled, the tool's its own.
LineLimits LimitsOf(const ProgramStep& step) {
  if (const auto* line = std::get_if<LineStep>(&step)) return line->limits;
  if (const auto* arc = std::get_if<ArcStep>(&step)) return arc->limits;
  LineLimits none = {kNone, kNone, kNone, kNone, kNone, kNone, {}, 0};
  if (const auto* joint = std::get_if<JointStep>(&step)) none.scale = joint->scale;
  return none;
}

// Differences are means over some moments; where two steps meet, the larger limit may be.
LineLimits Larger(const LineLimits& a, const LineLimits& b) {
  return {
      std::max(a.speed_m_s, b.speed_m_s),
      std::max(a.acceleration_m_s2, b.acceleration_m_s2),
      std::max(a.jerk_m_s3, b.jerk_m_s3),
      std::max(a.turn_speed_rad_s, b.turn_speed_rad_s),
      std::max(a.turn_acceleration_rad_s2, b.turn_acceleration_rad_s2),
      std::max(a.turn_jerk_rad_s3, b.turn_jerk_rad_s3),
      {std::max(a.scale.velocity, b.scale.velocity),
       std::max(a.scale.acceleration, b.scale.acceleration), std::max(a.scale.jerk, b.scale.jerk)},
      0};
}

std::optional<StepWay> WayOf(const SeededProgram& drawn, size_t step) {
  const Pose& from = drawn.corners[step].pose;
  const Pose& to = drawn.corners[step + 1].pose;
  const ProgramStep& of = drawn.program.steps[step];
  if (std::holds_alternative<LineStep>(of)) return StepWay::Line(from, to);
  const auto* arc = std::get_if<ArcStep>(&of);
  if (arc == nullptr) return std::nullopt;
  if (const auto* about = std::get_if<ArcAbout>(&arc->arc)) return StepWay::Arc(from, *about);
  return StepWay::Arc(from, std::get<ArcThrough>(arc->arc), to);
}

Zone ZoneOf(const ProgramStep& step) {
  if (const auto* line = std::get_if<LineStep>(&step)) return line->zone.value();
  if (const auto* arc = std::get_if<ArcStep>(&step)) return arc->zone.value();
  return std::get<JointStep>(step).zone.value();
}

double Farthest(const Joints& a, const Joints& b) {
  double most = 0;
  for (size_t j = 0; j < 6; ++j) most = std::max(most, std::fabs(a[j] - b[j]));
  return most;
}

// How far joints are from the straight way between two others.
double OffStraight(const Joints& from, const Joints& to, const Joints& joints) {
  double along = 0;
  double length = 0;
  for (size_t j = 0; j < 6; ++j) {
    along += (joints[j] - from[j]) * (to[j] - from[j]);
    length += (to[j] - from[j]) * (to[j] - from[j]);
  }
  const double part = length > 0 ? along / length : 0;
  Joints there;
  for (size_t j = 0; j < 6; ++j) there[j] = from[j] + part * (to[j] - from[j]);
  return Farthest(there, joints);
}

struct Findings {
  Worst velocity;  // multiples of the limits
  Worst acceleration;
  Worst jerk;
  Worst rates;       // disagreement of joints and rates
  Worst pose;        // of joints and pose [m, rad]
  Worst off_way;     // of the steps' own ways, outside of zones [m, rad]
  Worst joints_off;  // likewise of joint steps [rad]
  Worst zone;        // beyond the farthest distance from a corner [m, rad]
  Worst told;        // beyond what the motion says of that
  Worst deviation;   // likewise [m]
};

class Examiner {
 public:
  Examiner(const Arm& arm, const SeededProgram& drawn, const ProgramMotion& motion)
      : arm_(arm), drawn_(drawn), motion_(motion), step_s_(arm.cycle_s().value / 32) {
    for (size_t i = 0; i < drawn.program.steps.size(); ++i) {
      ways_.push_back(WayOf(drawn, i));
      const auto* tool = std::get_if<ToolStep>(&drawn.program.steps[i]);
      arms_.push_back(tool != nullptr ? *arm.WithTool(tool->tool) : i > 0 ? arms_.back() : arm);
    }
  }

  // Whether the joints are where the program was drawn with them. A way past a singularity may lead
  // them to another solution.
  bool GoesAsDrawn() const {
    constexpr double kOtherSolutionRad = 0.01;
    const auto& begins = motion_.step_begins_s();
    for (size_t step = 1; step <= begins.size(); ++step) {
      const double time_s = step < begins.size() ? begins[step] : motion_.duration_s();
      const MotionState state = motion_.At(time_s);
      const bool stops = Farthest(state.velocities, Joints{}) < 1e-9;
      const double off_rad = Farthest(state.joints, drawn_.corners[step].joints);
      if (stops && off_rad > kOtherSolutionRad) return false;
    }
    return true;
  }

  Findings Examine() {
    const auto count = static_cast<int64_t>(motion_.duration_s() / step_s_) + 3;
    for (int64_t i = 0; i <= count; ++i) {
      std::rotate(seen_, seen_ + 1, seen_ + 4);
      seen_[3] = Look(static_cast<double>(i) * step_s_);
      if (i == 0) std::fill(seen_, seen_ + 3, seen_[3]);
      LookAtJoints();
      if (i >= 3) LookAtTool();
      // At the end another tool may be mounted.
      if (i % 8 == 0 && seen_[3].sample.time_s < motion_.duration_s()) LookAtPath();
    }
    const Pose end = *Forward(arms_.back(), motion_.At(motion_.duration_s()).joints);
    See(found_.off_way, Distance(end.position, drawn_.corners.back().pose.position));
    return found_;
  }

 private:
  void See(Worst& worst, double value, size_t what = 0) const {
    if (value > worst.value) worst = {value, seen_[3].sample.time_s, what};
  }

  struct Seen {
    Sample sample;
    Pose pose;  // of the joints
    size_t step;
  };

  Seen Look(double time_s) const {
    const auto& begins = motion_.step_begins_s();
    const auto next = std::upper_bound(begins.begin() + 1, begins.end(), time_s);
    const size_t step = static_cast<size_t>(next - begins.begin()) - 1;
    const Sample sample = motion_.SampleAt(time_s);
    return {sample, *Forward(arms_[step], sample.joints), step};
  }

  LineLimits LimitsSince(const Seen& since) const {
    LineLimits limits = LimitsOf(drawn_.program.steps[since.step]);
    for (size_t step = since.step + 1; step <= seen_[3].step; ++step) {
      limits = Larger(limits, LimitsOf(drawn_.program.steps[step]));
    }
    return limits;
  }

  void LookAtJoints() {
    const LimitScale scale = LimitsSince(seen_[2]).scale;
    const Sample& before = seen_[2].sample;
    const Sample& now = seen_[3].sample;
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm_.joints()[j];
      const double jerk_limit = scale.jerk * joint.jerk_rad_s3.value;
      See(found_.velocity,
          std::fabs(now.velocities[j]) / (scale.velocity * joint.velocity_rad_s.value), j + 1);
      See(found_.acceleration,
          std::fabs(now.accelerations[j]) / (scale.acceleration * joint.acceleration_rad_s2.value),
          j + 1);
      See(found_.jerk,
          std::fabs(now.accelerations[j] - before.accelerations[j]) / step_s_ / jerk_limit, j + 1);
      // The mean of both ends' speeds is that of the joints but for jerk * step^2 / 12.
      const double mean = (now.velocities[j] + before.velocities[j]) / 2;
      See(found_.rates, std::fabs((now.joints[j] - before.joints[j]) / step_s_ - mean) /
                            (jerk_limit * step_s_ * step_s_ / 12 + 1e-5));
    }
  }

  // Differences of positions, and of the turns from one orientation to the next.
  void LookAtTool() {
    if (HoldsChange()) return;
    const LineLimits limits = LimitsSince(seen_[0]);
    Vec3 speed[3];
    Vec3 turn[3];
    for (int k = 0; k < 3; ++k) {
      const Pose& from = seen_[k].pose;
      const Pose& to = seen_[k + 1].pose;
      speed[k] = (1 / step_s_) * (to.position - from.position);
      turn[k] = (1 / step_s_) * TurnBetween(from.orientation, to.orientation);
    }
    const auto look = [&](size_t what, const Vec3* rate, double velocity, double acceleration,
                          double jerk) {
      const double second = 1 / step_s_;
      const double third = second * second;
      // Positions are rounded to 1e-15 m, what joints are on a path to as well.
      const double rounding = 8e-15 * third / step_s_;
      See(found_.velocity, Norm(rate[2]) / velocity, what);
      See(found_.acceleration, second * Norm(rate[2] - rate[1]) / acceleration, what);
      const double change = third * Norm(rate[2] - 2 * rate[1] + rate[0]);
      See(found_.jerk, std::max(0.0, change - rounding) / jerk, what);
    };
    look(kTool, speed, limits.speed_m_s, limits.acceleration_m_s2, limits.jerk_m_s3);
    look(kTurn, turn, limits.turn_speed_rad_s, limits.turn_acceleration_rad_s2,
         limits.turn_jerk_rad_s3);
  }

  // Whether the pose becomes that of another tool.
  bool HoldsChange() const {
    for (size_t step = seen_[0].step; step <= seen_[3].step; ++step) {
      if (std::holds_alternative<ToolStep>(drawn_.program.steps[step])) return true;
    }
    return false;
  }

  void LookAtPath() {
    const Sample& now = seen_[3].sample;
    const size_t step = seen_[3].step;
    const Pose& pose = seen_[3].pose;
    See(found_.pose, Distance(pose.position, now.pose.position));
    See(found_.pose, AngleBetween(pose.orientation, now.pose.orientation));
    for (const RoundedCorner& corner : motion_.corners()) {
      if (corner.begin_s <= now.time_s && now.time_s <= corner.end_s) return LookAtZone(corner);
    }
    if (ways_[step]) {
      const Pose there = ways_[step]->At(ways_[step]->PartNear(pose));
      See(found_.off_way, Distance(there.position, pose.position));
      See(found_.off_way, AngleBetween(there.orientation, pose.orientation));
      return;
    }
    if (joint_step_ != step) {
      joint_step_ = step;
      joints_seen_ = now.joints;
    }
    See(found_.joints_off, OffStraight(joints_seen_, drawn_.corners[step + 1].joints, now.joints));
  }

  void LookAtZone(const RoundedCorner& corner) {
    const Sample& now = seen_[3].sample;
    const State& at = drawn_.corners[corner.step + 1];
    const Zone zone = ZoneOf(drawn_.program.steps[corner.step]);
    const double distance = Distance(at.pose.position, now.pose.position);
    const double turn = AngleBetween(at.pose.orientation, now.pose.orientation);
    const double joints = Farthest(at.joints, now.joints);
    See(found_.zone,
        std::max({distance - zone.tool_m, turn - zone.turn_rad, joints - zone.joint_rad}));
    See(found_.told,
        std::max({distance - corner.radius_m, turn - corner.turn_rad, joints - corner.joint_rad}));
    const auto& before = ways_[corner.step];
    size_t next = corner.step + 1;
    while (ways_[next] && !ways_[next]->moves()) ++next;  // on the spot it is still the same corner
    const auto& after = ways_[next];
    if (!before || !after) return;
    const double first = before->PartNearest(now.pose);
    const double second = after->PartNearest(now.pose);
    const double off = std::min(Distance(before->At(first).position, now.pose.position),
                                Distance(after->At(second).position, now.pose.position));
    // It is told by places of the zone.
    See(found_.deviation, off - 1.05 * corner.deviation_m);
  }

  const Arm& arm_;
  const SeededProgram& drawn_;
  const ProgramMotion& motion_;
  const double step_s_;
  std::vector<std::optional<StepWay>> ways_;  // of each step
  std::vector<Arm> arms_;                     // with the tool that it has in each
  Seen seen_[4] = {};
  std::optional<size_t> joint_step_;  // that was seen last
  Joints joints_seen_ = {};           // and the first joints of it, out of its zones
  Findings found_;
};

void ExpectAtMost(const char* kind, const Worst& worst, double most) {
  EXPECT_LE(worst.value, most) << kind << " at " << worst.time_s << " s, of " << worst.what;
}

// @return whether it goes where it was drawn
bool ExpectKeepsAll(const Arm& arm, const SeededProgram& drawn, const ProgramMotion& motion) {
  Examiner examiner(arm, drawn, motion);
  const Findings found = examiner.Examine();
  ExpectAtMost("velocity", found.velocity, 1.001);
  ExpectAtMost("acceleration", found.acceleration, 1.001);
  ExpectAtMost("jerk", found.jerk, 1.001);
  ExpectAtMost("rates", found.rates, 1.01);
  ExpectAtMost("pose", found.pose, 1e-9);
  ExpectAtMost("off its way", found.off_way, 1e-9);
  ExpectAtMost("beyond the deviation", found.deviation, 1e-6);
  const double cycles = motion.duration_s() / arm.cycle_s().value;
  EXPECT_NEAR(cycles, std::round(cycles), 1e-9 * std::max(1.0, cycles));
  const Trajectory samples = *Sampled(arm, motion);
  EXPECT_EQ(samples.front().joints, drawn.program.start);
  for (const Sample& end : {samples.front(), samples.back()}) {
    EXPECT_EQ(end.velocities, Joints{});
    EXPECT_EQ(end.accelerations, Joints{});
  }
  if (!examiner.GoesAsDrawn()) return false;
  ExpectAtMost("joints off their way", found.joints_off, 1e-6);
  ExpectAtMost("beyond the zone", found.zone, 1e-9);
  ExpectAtMost("beyond what is told", found.told, 1e-5);
  return true;
}

TEST(SeededPrograms, KeepEveryLimitTheirWaysAndTheirZones) {
  const int programs = CountFromEnvironment("QAL_PROGRAMS", 12);
  int planned = 0;
  int elsewhere = 0;
  int count = 0;
  for (const Arm& arm : SeededArms()) {
    for (int i = 0; i < programs; ++i) {
      const unsigned seed = 20261125 + static_cast<unsigned>(i);
      SCOPED_TRACE(arm.name() + ", seed " + std::to_string(seed));
      const SeededProgram drawn = bench::SeededPrograms(arm, seed).Next();
      const auto motion = PlanProgram(arm, drawn.program);
      ++count;
      if (!motion) continue;
      ++planned;
      elsewhere += ExpectKeepsAll(arm, drawn, *motion) ? 0 : 1;
    }
  }
  EXPECT_GE(planned, 0.9 * count);
  EXPECT_LE(elsewhere, 0.05 * count);
}

}  // namespace
}  // namespace qal
