#include "arguments.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "../../io/numbers.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/solve/arm_numbers.h"

namespace qal::tools {

using namespace io;

namespace {

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

// A given quaternion: normalised, by way of its largest component, so that nothing overflows.
Ori Normalised(const double* q, const std::string& where) {
  const double largest =
      std::max({std::fabs(q[0]), std::fabs(q[1]), std::fabs(q[2]), std::fabs(q[3])});
  // Below it a quaternion is a zero with rounding errors, not a direction.
  constexpr double kZeroNorm = 1e-9;
  if (largest < kZeroNorm) {
    throw UsageError(where + ": the quaternion is zero; qw qx qy qz of length 1 are expected");
  }
  const double w = q[0] / largest;
  const double x = q[1] / largest;
  const double y = q[2] / largest;
  const double z = q[3] / largest;
  const double norm = std::sqrt(w * w + x * x + y * y + z * z);
  // Six printed digits of a unit quaternion are not worth a word.
  constexpr double kWorthANote = 1e-6;
  if (std::fabs(largest * norm - 1.0) > kWorthANote) {
    Note(fmt::format("{}: the quaternion has the length {:.6g} and is normalised", where,
                     largest * norm));
  }
  return Ori(w / norm, x / norm, y / norm, z / norm);
}

}  // namespace

const char* const kPoseHelp =
    "pose of the tool in the base frame: x y z [m; --mm: mm] qw qx qy qz\n"
    "(a quaternion, w first, normalised if need be), or x y z with --rpy";
const char* const kRpyHelp =
    "orientation as roll pitch yaw [rad; --deg: deg]:\nR = Rz(yaw) Ry(pitch) Rx(roll)";

void Units::AddTo(CLI::App& command) {
  command.add_flag("--deg", deg_, "angles in degrees, given and in tables (default: rad)");
  command.add_flag("--mm", mm_, "lengths in millimetres, given and in tables (default: m)");
}

double Units::Radians(double angle) const { return deg_ ? angle / kDegreesPerRadian : angle; }

double Units::Angle(double radians) const { return deg_ ? radians * kDegreesPerRadian : radians; }

void Numbers::AddTo(CLI::App& command, const std::string& name, const std::string& shape,
                    const std::string& help) {
  name_ = name;
  // More than any option takes: a wrong number of them is answered in Read's words.
  constexpr int kMost = 64;
  command.add_option(name, texts_, help)->type_name(shape)->expected(1, kMost);
}

std::vector<std::string> Numbers::Split() const {
  std::vector<std::string> parts;
  for (std::string text : texts_) {
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream words(text);
    for (std::string word; words >> word;) parts.push_back(word);
  }
  return parts;
}

std::vector<std::string> Numbers::SplitExactly(size_t count, const std::string& expected) const {
  std::vector<std::string> parts = Split();
  if (parts.size() != count) {
    throw UsageError(fmt::format("{}: {} expected, {} given", name_, expected,
                                 parts.empty() ? "none" : std::to_string(parts.size())));
  }
  return parts;
}

std::vector<double> Numbers::Read(size_t count, const std::string& expected) const {
  const std::vector<std::string> parts = SplitExactly(count, expected);
  std::vector<double> values;
  for (const std::string& part : parts) {
    const std::string where =
        count == 1 ? name_ : fmt::format("{}, value {}", name_, values.size() + 1);
    values.push_back(ParseNumber(part, where));
  }
  return values;
}

double Numbers::ReadWithin(double least, double most) const {
  const double value = Read(1, "one number")[0];
  if (value < least || value > most) {
    throw UsageError(fmt::format("{}: {} is not from {} to {}", name_, value, least, most));
  }
  return value;
}

int Numbers::ReadWhole(int least, int most) const {
  return ParseWhole(SplitExactly(1, "one whole number")[0], name_, least, most);
}

Joints ReadJoints(const Numbers& joints, const Units& units) {
  const std::vector<double> given =
      joints.Read(6, fmt::format("six joint angles [{}]", units.angle()));
  Joints radians;
  std::transform(given.begin(), given.end(), radians.begin(),
                 [&units](double angle) { return units.Radians(angle); });
  return radians;
}

Joints ReadArmJoints(const Numbers& joints, const Units& units) {
  const Joints radians = ReadJoints(joints, units);
  for (size_t j = 0; j < radians.size(); ++j) {
    if (std::fabs(radians[j]) <= kJointRangeRad) continue;
    throw UsageError(fmt::format("{}, value {}: {} {} is outside the joint's range, -{} to {}",
                                 joints.name(), j + 1, units.Angle(radians[j]), units.angle(),
                                 units.Angle(kJointRangeRad), units.Angle(kJointRangeRad)));
  }
  return radians;
}

RoadPoint ReadPose(const Numbers& pose, const Numbers& rpy, const Units& units, const Ori* kept) {
  RoadPoint point;
  const bool whole = !rpy.given() && (kept == nullptr || pose.size() != 3);
  const std::vector<double> values =
      whole ? pose.Read(7, fmt::format("x y z [{}] qw qx qy qz, or x y z with --rpy{},",
                                       units.length(), kept == nullptr ? "" : ", or x y z alone,"))
            : pose.Read(3, fmt::format("x y z [{}] with --rpy", units.length()));
  point.position = Pos(units.Metres(values[0]), units.Metres(values[1]), units.Metres(values[2]));
  if (whole) {
    point.orientation = Normalised(&values[3], pose.name());
  } else if (rpy.given()) {
    std::vector<double> angles = rpy.Read(3, fmt::format("roll pitch yaw [{}]", units.angle()));
    for (double& angle : angles) angle = units.Radians(angle);
    Ikfunc::EulerAngleToQuaternion(point.orientation, angles.data());
  } else {
    point.orientation = *kept;
  }
  return point;
}

std::string ShieldNumber(const std::string& argument) {
  if (argument.size() < 2 || argument[0] != '-' ||
      std::isdigit(static_cast<unsigned char>(argument[1])) != 0)
    return argument;
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(argument.data(), argument.data() + argument.size(), value);
  return end == argument.data() ? argument : ' ' + argument;
}

}  // namespace qal::tools
