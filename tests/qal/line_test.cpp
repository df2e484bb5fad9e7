#include <gtest/gtest.h>
#include <qal/model/rotations.h>
#include <qal/plan/line.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "../../io/loaded_arm.h"

namespace qal {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180;

double FromEnvironment(const char* name, double otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::atof(text);
}

// The reference arm, two others, and those that QAL_LINE_ARMS names besides.
std::vector<Arm> Arms() {
  const std::string folder = QAL_ARMS_DIR;
  std::vector<std::string> files = {folder + "/foundry_spherical.urdf",
                                    folder + "/laboratory_offset.urdf"};
  const char* const more = std::getenv("QAL_LINE_ARMS");
  std::istringstream names(more == nullptr ? "" : more);
  for (std::string name; names >> name;) files.push_back(name);
  std::vector<Arm> arms = {Arm::Reference()};
  for (const std::string& file : files) arms.push_back(io::ReadArm(file).arm);
  return arms;
}

struct Line {
  State from;
  Pose to;
  LineLimits limits;
};

// Lines of every kind, some of which have no plan.
class Draw {
 public:
  explicit Draw(const Arm& arm, unsigned seed) : arm_(arm), engine_(seed) {}

  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }

  Line Next(int kind) {
    Line line;
    const double scale[] = {1, 1, 0.5, 0.1};
    const double speeds[] = {0.05, 0.25, 1, 3};
    line.limits.speed_m_s = speeds[engine_() % 4];
    line.limits.turn_speed_rad_s = 4 * line.limits.speed_m_s;
    const double factor = scale[engine_() % 4];
    line.limits.scale = {factor, factor, factor};
    Joints joints;
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm_.joints()[j];
      joints[j] =
          Between(std::max(joint.lower_rad.value, -3.0), std::min(joint.upper_rad.value, 3.0));
    }
    double length = std::pow(10, Between(-5, -0.2));
    if (kind == 1) joints[4] = Between(-1, 1) * 0.1 * kDegree;
    const auto middle = Forward(arm_, joints);
    Vec3 direction = {Between(-1, 1), Between(-1, 1), Between(-1, 1)};
    Vec3 turn = {Between(-1, 1), Between(-1, 1), Between(-1, 1)};
    double angle = kind == 2 ? 0 : std::pow(10, Between(-4, 0.4));
    if (kind == 3) length = 0;
    Pose start = *middle;
    Pose end = *middle;
    if (kind == 4) {  // past axis 1, 5 mm beside it
      const double z = middle->position.z;
      const double side = Between(0, 2 * kPi);
      const double c = std::cos(side);
      const double s = std::sin(side);
      length = Between(0.1, 0.6);
      start.position = {0.005 * c - length / 2 * s, 0.005 * s + length / 2 * c, z};
      end.position = {0.005 * c + length / 2 * s, 0.005 * s - length / 2 * c, z};
    } else {
      const double size = std::hypot(direction.x, direction.y, direction.z);
      const auto moved = [&](double by) {
        const Vec3& p = middle->position;
        return Vec3{p.x + by * direction.x / size, p.y + by * direction.y / size,
                    p.z + by * direction.z / size};
      };
      start.position = moved(-length / 2);
      end.position = moved(length / 2);
      const auto turned = [&](double by) {
        const double t = std::hypot(turn.x, turn.y, turn.z);
        const double s = std::sin(by / 2) / t;
        return Quat{std::cos(by / 2), s * turn.x, s * turn.y, s * turn.z} * middle->orientation;
      };
      start.orientation = turned(-angle / 2);
      end.orientation = turned(angle / 2);
    }
    const auto solved = Nearest(arm_, start, joints);
    line.from = solved ? *solved : State{joints, *middle};
    line.to = end;
    return line;
  }

 private:
  const Arm& arm_;
  std::mt19937 engine_;
};

// By how much a motion exceeds its limits, seen from outside: by differences of what it says of
// itself, at 32 times the cycle's rate.
struct Findings {
  double velocity = 0;  // multiples of the limits
  double acceleration = 0;
  double jerk = 0;
  double position_m = 0;  // off the line
  double orientation_rad = 0;
  double rates = 0;  // disagreement of joints and rates
};

Findings Examine(const Arm& arm, const Line& line, const LineMotion& motion) {
  Findings found;
  const double step_s = arm.cycle_s().value / 32;
  const auto count = static_cast<int64_t>(motion.duration_s() / step_s) + 1;
  const Pose start = motion.PoseAt(0);
  const double length = motion.length_m();
  const double angle = motion.angle_rad();
  const LineLimits& limits = line.limits;
  const auto worst = [](double& most, double value) { most = std::max(most, std::fabs(value)); };
  double s[4] = {0, 0, 0, 0};
  MotionState before = motion.At(0);
  for (int64_t i = 1; i <= count + 2; ++i) {
    const double time_s = static_cast<double>(i) * step_s;
    const MotionState state = motion.At(time_s);
    std::rotate(s, s + 1, s + 4);
    s[3] = motion.AlongAt(time_s);
    const double speed = (s[3] - s[2]) / step_s;
    const double acceleration = (s[3] - 2 * s[2] + s[1]) / (step_s * step_s);
    const double jerk = (s[3] - 3 * s[2] + 3 * s[1] - s[0]) / (step_s * step_s * step_s);
    worst(found.velocity, length * speed / limits.speed_m_s);
    worst(found.velocity, angle * speed / limits.turn_speed_rad_s);
    worst(found.acceleration, length * acceleration / limits.acceleration_m_s2);
    worst(found.acceleration, angle * acceleration / limits.turn_acceleration_rad_s2);
    // Three differences of s leave a rounding of 1e-16 / step^3.
    if (i >= 3) {
      const double rounding = 8e-16 / (step_s * step_s * step_s);
      const double sure = std::max(0.0, std::fabs(jerk) - rounding);
      worst(found.jerk, length * sure / limits.jerk_m_s3);
      worst(found.jerk, angle * sure / limits.turn_jerk_rad_s3);
    }
    for (size_t j = 0; j < 6; ++j) {
      const JointModel& joint = arm.joints()[j];
      worst(found.velocity,
            state.velocities[j] / (limits.scale.velocity * joint.velocity_rad_s.value));
      worst(found.acceleration,
            state.accelerations[j] / (limits.scale.acceleration * joint.acceleration_rad_s2.value));
      const double change = (state.accelerations[j] - before.accelerations[j]) / step_s;
      const double jerk_limit = limits.scale.jerk * joint.jerk_rad_s3.value;
      worst(found.jerk, change / jerk_limit);
      // The mean of both ends' speeds is that of the joints but for jerk * step^2 / 12.
      const double mean = (state.velocities[j] + before.velocities[j]) / 2;
      worst(found.rates, ((state.joints[j] - before.joints[j]) / step_s - mean) /
                             (jerk_limit * step_s * step_s / 12 + 1e-6));
    }
    before = state;
    if (i % 8 != 0) continue;
    const auto pose = Forward(arm, state.joints);
    const Vec3& p = start.position;
    const Vec3& e = line.to.position;
    const double along = s[3];
    const Vec3 there = {p.x + along * (e.x - p.x), p.y + along * (e.y - p.y),
                        p.z + along * (e.z - p.z)};
    worst(found.position_m, Distance(there, pose->position));
    worst(found.orientation_rad,
          AngleBetween(start.orientation, pose->orientation) - along * angle);
    worst(found.orientation_rad,
          AngleBetween(line.to.orientation, pose->orientation) - (1 - along) * angle);
  }
  return found;
}

TEST(PlanLine, KeepsEveryLimitBetweenSamplesAndTheLine) {
  const auto lines = static_cast<int>(FromEnvironment("QAL_LINES", 60));
  std::map<Reason, int> outcomes;
  for (const Arm& arm : Arms()) {
    for (int i = 0; i < lines; ++i) {
      const unsigned seed =
          static_cast<unsigned>(FromEnvironment("QAL_SEED", 20261125)) + static_cast<unsigned>(i);
      SCOPED_TRACE(arm.name() + ", seed " + std::to_string(seed));
      Draw draw(arm, seed);
      const Line line = draw.Next(static_cast<int>((seed - 20261125) % 5));
      const auto motion = PlanLine(arm, line.from, line.to, line.limits);
      ++outcomes[motion ? Reason::kNone : motion.error().error.reason];
      if (!motion) continue;
      const Findings found = Examine(arm, line, *motion);
      EXPECT_LE(found.velocity, 1.001);
      EXPECT_LE(found.acceleration, 1.001);
      EXPECT_LE(found.jerk, 1.001);
      EXPECT_LE(found.position_m, 1e-9);
      EXPECT_LE(found.orientation_rad, 1e-9);
      EXPECT_LE(found.rates, 1.01);
      // Else the motion could be faster.
      EXPECT_GE(std::max({found.velocity, found.acceleration, found.jerk}), 0.9);
    }
  }
  EXPECT_GE(outcomes[Reason::kNone], 2 * lines);
  for (const Reason reason : {Reason::kOutOfReach, Reason::kJointRange, Reason::kSingularity}) {
    EXPECT_GE(outcomes[reason], 1);
  }
}

}  // namespace
}  // namespace qal
