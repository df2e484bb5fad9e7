#ifndef QAL_BENCH_SEEDED_PROGRAMS_H_
#define QAL_BENCH_SEEDED_PROGRAMS_H_

#include <qal/solve/kinematics.h>

#include <optional>
#include <vector>

#include "program_ways.h"
#include "seeded_moves.h"

namespace qal::bench {

/// A program, and the corners that it was drawn with: where it starts, and where each step ends.
struct SeededProgram {
  Program program;
  std::vector<State> corners;  ///< poses by the tool that is mounted from there on
};

/// Draws programs of 2 to 20 steps of all kinds from a seed. The arm follows the tool's ways on its
/// own, without a jump of its joints; some have no plan all the same, for a singularity or between
/// the places that are looked at.
class SeededPrograms {
 public:
  SeededPrograms(const Arm& arm, unsigned seed) : arm_(arm), random_(seed) {}

  SeededProgram Next() {
    drawn_ = {};
    here_ = At(AnyJoints());
    drawn_.program.start = here_.joints;
    drawn_.corners.push_back(here_);
    const int count = 2 + random_.Of(19);
    while (static_cast<int>(drawn_.program.steps.size()) < count) AddStep();
    return drawn_;
  }

 private:
  static constexpr double kPi = 3.14159265358979323846;

  State At(const Joints& joints) const { return {joints, *Forward(arm_, joints)}; }

  Joints AnyJoints() {
    Joints joints;
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm_.joints()[j];
      joints[j] =
          random_(std::max(joint.lower_rad.value, -2.5), std::min(joint.upper_rad.value, 2.5));
    }
    return joints;
  }

  Vec3 Direction() {
    const Vec3 v = {random_(-1, 1), random_(-1, 1), random_(-1, 1)};
    return (1 / Norm(v)) * v;
  }

  LimitScale Scale() {
    constexpr double kScales[] = {1, 1, 0.5, 0.1};
    return {kScales[random_.Of(4)], kScales[random_.Of(4)], kScales[random_.Of(4)]};
  }

  LineLimits Limits() {
    constexpr double kSpeeds[] = {0.05, 0.25, 1, 3};
    LineLimits limits;
    limits.speed_m_s = kSpeeds[random_.Of(4)];
    limits.acceleration_m_s2 = random_.Decades(-0.3, 1);
    limits.jerk_m_s3 = limits.acceleration_m_s2 * random_.Decades(0.5, 1.5);
    limits.turn_speed_rad_s = 4 * limits.speed_m_s;
    limits.turn_acceleration_rad_s2 = 4 * limits.acceleration_m_s2;
    limits.turn_jerk_rad_s3 = 4 * limits.jerk_m_s3;
    limits.scale = Scale();
    return limits;
  }

  // Half of the corners have one: of any of the three kinds, or of several.
  std::optional<Zone> AnyZone() {
    const int kinds = random_.Of(14);
    if (kinds >= 8 || kinds == 0) return std::nullopt;
    Zone zone;
    if ((kinds & 1) != 0) zone.tool_m = random_.Decades(-4, -0.7);
    if ((kinds & 2) != 0) zone.turn_rad = random_.Decades(-3, 0);
    if ((kinds & 4) != 0) zone.joint_rad = random_.Decades(-3, 0);
    return zone;
  }

  void Add(const ProgramStep& step, const State& end) {
    here_ = end;
    drawn_.program.steps.push_back(step);
    drawn_.corners.push_back(end);
  }

  void AddStep() {
    const int kind = random_.Of(20);
    if (kind == 0) return Add(WaitStep{random_.Of(3) == 0 ? 0 : random_(0, 0.3)}, here_);
    if (kind == 1) return AddTool();
    // A tool's step has to be one that the arm can follow: some chances for it, of less and less
    // way.
    for (double most_m = 0.6; kind >= 7 && most_m > 1e-4; most_m /= 3) {
      if (kind < 14 ? AddLine(most_m) : kind < 17 ? AddArcThrough(most_m) : AddArcAbout(most_m)) {
        return;
      }
    }
    AddJointStep();
  }

  void AddTool() {
    ToolStep step;
    step.tool.position = {random_(-0.1, 0.1), random_(-0.1, 0.1), random_(0, 0.3)};
    const double angle_rad = random_(0, 3);
    const Quat turn = Turned({1, 0, 0, 0}, angle_rad * Direction());
    const auto [w, x, y, z] = turn;
    const double rotation[] = {
        1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
        2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
        2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y)};
    std::copy(std::begin(rotation), std::end(rotation), step.tool.rotation);
    arm_ = *arm_.WithTool(step.tool);
    Add(step, At(here_.joints));
  }

  void AddJointStep() {
    Joints to = AnyJoints();
    const double share = random_.Decades(-3, 0);
    for (size_t j = 0; j < 6; ++j) to[j] = here_.joints[j] + share * (to[j] - here_.joints[j]);
    const State end = At(to);
    if (random_.Of(3) == 0) {
      const auto nearest = Nearest(arm_, end.pose, here_.joints);
      if (nearest) return Add(JointStep{end.pose, Scale(), AnyZone()}, {nearest->joints, end.pose});
    }
    Add(JointStep{to, Scale(), AnyZone()}, end);
  }

  // The end of a step if the arm gets there on its own.
  std::optional<Joints> Follow(const StepWay& way) const {
    constexpr int kParts = 32;
    constexpr double kMostStepRad = 0.3;  // beyond, it is another solution
    Joints joints = here_.joints;
    for (int i = 1; i <= kParts; ++i) {
      const auto next = Nearest(arm_, way.At(static_cast<double>(i) / kParts), joints);
      if (!next) return std::nullopt;
      for (size_t j = 0; j < 6; ++j) {
        if (std::fabs(next->joints[j] - joints[j]) > kMostStepRad) return std::nullopt;
      }
      joints = next->joints;
    }
    return joints;
  }

  bool AddLine(double most_m) {
    Pose to = here_.pose;
    // Some only turn, some only move; a few do nothing.
    const int kind = random_.Of(12);
    const double way_m = most_m * random_.Decades(-2, 0);
    const double angle_rad = most_m * random_(0, 3);
    if (kind > 2) to.position = to.position + way_m * Direction();
    if (kind != 0 && kind != 3 && kind != 4) {
      to.orientation = Turned(to.orientation, angle_rad * Direction());
    }
    const auto joints = Follow(StepWay::Line(here_.pose, to));
    if (!joints) return false;
    const LineLimits limits = Limits();
    if (kind >= 10) {
      const State end = At(*joints);
      Add(LineStep{*joints, limits, AnyZone()}, end);
    } else {
      Add(LineStep{to, limits, AnyZone()}, {*joints, to});
    }
    return true;
  }

  // An arc from here.
  ArcAbout AnyArc(double most_m, double most_rad) {
    const Vec3 axis = Direction();
    const Vec3 out = Cross(axis, Direction());
    const double radius_m = most_m * random_.Decades(-2, -0.3);
    const double angle_rad = random_(0.1, most_rad);
    return {here_.pose.position + radius_m / Norm(out) * out, axis, angle_rad};
  }

  bool AddArcThrough(double most_m) {
    const StepWay circle = StepWay::Arc(here_.pose, AnyArc(most_m, 5.5));
    ArcThrough arc;
    arc.through = circle.At(random_(0.3, 0.7)).position;
    arc.turn = static_cast<ArcTurn>(random_.Of(3));
    Pose to = here_.pose;
    to.position = circle.At(1).position;
    const double angle_rad = most_m * random_(0, 3);
    to.orientation = Turned(to.orientation, angle_rad * Direction());
    const StepWay way = StepWay::Arc(here_.pose, arc, to);
    const auto joints = Follow(way);
    if (!joints) return false;
    arc.to = to;
    Add(ArcStep{arc, Limits(), AnyZone()}, {*joints, way.At(1)});
    return true;
  }

  bool AddArcAbout(double most_m) {
    ArcAbout arc = AnyArc(most_m, 7);
    arc.axis = random_(0.5, 2) * arc.axis;
    if (random_.Of(2) == 0) arc.angle_rad = -arc.angle_rad;
    if (random_.Of(8) == 0) arc.angle_rad = 2 * kPi;
    if (random_.Of(2) == 0) arc.turn = ArcTurn::kFixed;
    const StepWay way = StepWay::Arc(here_.pose, arc);
    const auto joints = Follow(way);
    if (!joints) return false;
    Add(ArcStep{arc, Limits(), AnyZone()}, {*joints, way.At(1)});
    return true;
  }

  Arm arm_;  // with the tool that is mounted
  Random random_;
  SeededProgram drawn_;
  State here_ = {};
};

}  // namespace qal::bench

#endif  // QAL_BENCH_SEEDED_PROGRAMS_H_
