#ifndef QAL_BENCH_SEEDED_LINES_H_
#define QAL_BENCH_SEEDED_LINES_H_

#include <qal/model/rotations.h>
#include <qal/plan/line.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace qal::bench {

/// A line to plan.
struct Line {
  State from;
  Pose to;
  LineLimits limits;
};

enum LineKind { kAnywhere, kPastWrist, kStraight, kTurn, kPastShoulder, kAlongRim, kThroughWrist };
constexpr int kLineKinds = 7;

/// Draws lines of every kind from a seed, some of which have no plan.
class SeededLines {
 public:
  SeededLines(const Arm& arm, unsigned seed) : arm_(arm), engine_(seed) {}

  Line Next(LineKind kind) {
    Line line;
    constexpr double kSpeeds[] = {0.05, 0.25, 1, 3};
    constexpr double kScales[] = {1, 1, 0.5, 0.1};
    line.limits.speed_m_s = kSpeeds[engine_() % 4];
    line.limits.turn_speed_rad_s = 4 * line.limits.speed_m_s;
    const double scale = kScales[engine_() % 4];
    line.limits.scale = {scale, scale, scale};

    const Joints joints = MiddleOf(kind);
    const Pose middle = *Forward(arm_, joints);
    const Vec3 turn_axis = Direction();
    const double angle = kind == kStraight ? 0 : std::pow(10, Between(-4, 0.4));
    double length = kind == kTurn ? 0 : std::pow(10, Between(-5, -0.2));
    Vec3 direction = Direction();
    Vec3 centre = middle.position;
    if (kind == kPastShoulder) {  // 5 mm beside axis 1
      const double side = Between(0, 2 * kPi);
      centre = {0.005 * std::cos(side), 0.005 * std::sin(side), centre.z};
      direction = {-std::sin(side), std::cos(side), 0};
      length = Between(0.1, 0.6);
    }
    if (kind == kAlongRim) {  // level, and at right angles to the radius
      const double radius = std::hypot(centre.x, centre.y);
      direction = {-centre.y / radius, centre.x / radius, 0};
    }
    const auto at = [&](double part) {
      const double half = part * angle / 2;
      const double s = std::sin(half);
      const Quat turn = {std::cos(half), s * turn_axis.x, s * turn_axis.y, s * turn_axis.z};
      const double by = part * length;
      return Pose{
          {centre.x + by * direction.x, centre.y + by * direction.y, centre.z + by * direction.z},
          turn * middle.orientation};
    };
    const Pose start = at(-0.5);
    line.to = at(0.5);
    const auto solved = Nearest(arm_, start, joints);
    line.from = solved ? *solved : State{joints, middle};
    return line;
  }

 private:
  static constexpr double kPi = 3.14159265358979323846;

  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }

  Vec3 Direction() {
    const Vec3 v = {Between(-1, 1), Between(-1, 1), Between(-1, 1)};
    const double length = std::hypot(v.x, v.y, v.z);
    return {v.x / length, v.y / length, v.z / length};
  }

  // The joints in the middle of a line.
  Joints MiddleOf(LineKind kind) {
    Joints joints;
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm_.joints()[j];
      joints[j] =
          Between(std::max(joint.lower_rad.value, -3.0), std::min(joint.upper_rad.value, 3.0));
    }
    constexpr double kNear = 0.1 * kPi / 180;
    if (kind == kPastWrist) joints[4] = (joints[4] < 0 ? -kNear : kNear) * Between(1, 2);
    if (kind == kThroughWrist) joints[4] = Between(-kNear, kNear);
    if (kind == kAlongRim) {  // the elbow nearly stretched
      const double from = joints[2];
      double least = 10;
      for (int i = 0; i < 128; ++i) {
        Joints tried = joints;
        tried[2] = std::remainder(from + i * 2 * kPi / 128, 2 * kPi);
        const auto distances = DistanceToSingularities(arm_, tried);
        if (!distances || !(distances->elbow_rad < least)) continue;
        least = distances->elbow_rad;
        joints = tried;
      }
    }
    return joints;
  }

  const Arm& arm_;
  std::mt19937 engine_;
};

}  // namespace qal::bench

#endif  // QAL_BENCH_SEEDED_LINES_H_
