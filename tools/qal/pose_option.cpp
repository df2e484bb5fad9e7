#include "pose_option.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/messages.h"

namespace qal::tools {

using namespace io;

namespace {

// A given quaternion: normalised, by way of its largest component, so that nothing overflows.
Quat Normalised(const double* q, const std::string& where) {
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
  // One of length 1 but for rounding stays to the bit, so that what is printed reads back as it
  // was.
  constexpr double kRounding = 1e-15;
  if (std::fabs(largest * norm - 1.0) <= kRounding) return {q[0], q[1], q[2], q[3]};
  return {w / norm, x / norm, y / norm, z / norm};
}

Quat ReadRpy(const NumberOption& rpy, const Units& units) {
  std::vector<double> angles = rpy.Read(3, fmt::format("roll pitch yaw [{}]", units.angle()));
  for (size_t i = 0; i < angles.size(); ++i) {
    angles[i] = units.Radians(angles[i]);
    units.NoteAngle(angles[i], rpy.Where(i));
  }
  return FromRollPitchYawAngles({angles[0], angles[1], angles[2]});
}

Joints ParseJoints(const NumberOption& joints, const Units& units) {
  const std::vector<double> given =
      joints.Read(6, fmt::format("six joint angles [{}]", units.angle()));
  Joints radians;
  std::transform(given.begin(), given.end(), radians.begin(),
                 [&units](double angle) { return units.Radians(angle); });
  return radians;
}

void NoteJoints(const NumberOption& option, const Joints& joints, const Units& units) {
  for (size_t j = 0; j < joints.size(); ++j) {
    if (*units.AngleHint(joints[j]) == '\0') continue;
    return units.NoteAngle(joints[j], option.Where(j));  // once is enough
  }
}

}  // namespace

Joints ReadJoints(const NumberOption& joints, const Units& units) {
  const Joints radians = ParseJoints(joints, units);
  NoteJoints(joints, radians, units);
  return radians;
}

Joints ReadArmJoints(const NumberOption& joints, const Units& units, const Arm& arm) {
  const Joints radians = ParseJoints(joints, units);
  for (size_t j = 0; j < radians.size(); ++j) {
    const auto& [name, lower, upper, velocity, acceleration, jerk, gear] = arm.joints()[j];
    if (radians[j] >= lower.value && radians[j] <= upper.value) continue;
    throw UsageError(fmt::format(
        "{}: {:.9g} {} is outside the joint's range, {:.9g} to {:.9g}{}{}", joints.Where(j),
        units.Angle(radians[j]), units.angle(), units.Angle(lower.value), units.Angle(upper.value),
        lower.described && upper.described ? "" : " (assumed)", units.AngleHint(radians[j])));
  }
  NoteJoints(joints, radians, units);
  return radians;
}

State StateAt(const Arm& arm, const Joints& joints) {
  const Result<Pose> pose = Forward(arm, joints);
  if (!pose) throw Failure(ErrorText(pose.error()));
  return {joints, *pose};
}

Vec3 ReadVector(const NumberOption& vector, const Units& units, const std::string& expected) {
  const std::vector<double> given = vector.Read(3, expected);
  const Vec3 metres = {units.Metres(given[0]), units.Metres(given[1]), units.Metres(given[2])};
  units.NoteLength(std::max({std::fabs(metres.x), std::fabs(metres.y), std::fabs(metres.z)}),
                   vector.name());
  return metres;
}

Pose ReadPose(const NumberOption& pose, const NumberOption& rpy, const Units& units,
              const Quat* kept) {
  if (rpy.given() || (kept != nullptr && pose.size() == 3)) {
    const Vec3 position =
        ReadVector(pose, units, fmt::format("x y z [{}] with --rpy", units.length()));
    return {position, rpy.given() ? ReadRpy(rpy, units) : *kept};
  }
  const std::vector<double> values =
      pose.Read(7, fmt::format("x y z [{}] qw qx qy qz, or x y z with --rpy{},", units.length(),
                               kept == nullptr ? "" : ", or x y z alone,"));
  const Vec3 position = {units.Metres(values[0]), units.Metres(values[1]), units.Metres(values[2])};
  units.NoteLength(std::max({std::fabs(position.x), std::fabs(position.y), std::fabs(position.z)}),
                   pose.name());
  return {position, Normalised(&values[3], pose.name())};
}

}  // namespace qal::tools
