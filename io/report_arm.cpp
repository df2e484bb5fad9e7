#include "report_arm.h"

#include <fmt/format.h>
#include <qal/solve/kinematics.h>
#include <qal/solve/solver_calls.h>

#include <cmath>

#include "error.h"
#include "error_text.h"
#include "finite_differences.h"
#include "report_bodies.h"

namespace qal::io {

namespace {

Json VectorJson(const Vec3& v) { return {v.x, v.y, v.z}; }

Json JointJson(const Arm& arm, size_t j) {
  const JointModel& joint = arm.joints()[j];
  const bool motor_described = joint.velocity_rad_s.described && joint.gear_ratio.described;
  const struct {
    const char* key;
    Setting setting;
  } settings[] = {
      {"lower_rad", joint.lower_rad},
      {"upper_rad", joint.upper_rad},
      {"velocity_rad_s", joint.velocity_rad_s},
      {"acceleration_rad_s2", joint.acceleration_rad_s2},
      {"jerk_rad_s3", joint.jerk_rad_s3},
      {"motor_rpm_per_rad_s", {MotorRpm(arm, j, 1), joint.gear_ratio.described}},
      {"motor_speed_rpm", {joint.motor_speed_rpm(), motor_described}},
  };
  Json json = {{"name", joint.name}};
  Json assumed = Json::array();
  for (const auto& [key, setting] : settings) {
    json[key] = std::isfinite(setting.value) ? Json(setting.value) : Json();
    if (!setting.described) assumed.push_back(key);
  }
  json["assumed"] = assumed;
  return json;
}

}  // namespace

Result<ArmAtZero> AtZero(const Arm& arm) {
  const Result<Pose> tool = Forward(arm, {});
  if (!tool) return tool.error();
  const Result<JacobianMatrix> jacobian = Jacobian(arm, {});
  if (!jacobian) return jacobian.error();
  ArmAtZero at_zero = {{}, *tool};
  for (size_t j = 0; j < at_zero.axes.size(); ++j) {
    const Line axis = AxisOf(*jacobian, j, ToVector(tool->position));
    at_zero.axes[j] = {FromVector(axis.point), FromVector(axis.direction)};
  }
  return at_zero;
}

Json AtZeroJson(const ArmAtZero& arm) {
  Json axes = Json::array();
  for (const AxisLine& axis : arm.axes) {
    axes.push_back(
        {{"point_m", VectorJson(axis.point)}, {"direction", VectorJson(axis.direction)}});
  }
  const Quat& q = arm.tool.orientation;
  return {
      {"axes", std::move(axes)},
      {"tool", {{"position_m", VectorJson(arm.tool.position)}, {"wxyz", {q.w, q.x, q.y, q.z}}}}};
}

Json ReportArmJson(const LoadedArm& loaded) {
  const Arm& arm = loaded.arm;
  const Result<ArmAtZero> at_zero = AtZero(arm);
  if (!at_zero) {
    throw Failure(fmt::format("{}: no pose with all joints at zero, by which the arm is drawn: {}",
                              loaded.file, ErrorText(at_zero.error())));
  }
  Json joints = Json::array();
  for (size_t j = 0; j < arm.joints().size(); ++j) joints.push_back(JointJson(arm, j));
  auto [bodies, notes] = ReportBodiesOf(loaded, at_zero->axes);
  Json json = {{"name", arm.name()}, {"about", ArmHeading(loaded)}, {"joints", std::move(joints)}};
  json.update(AtZeroJson(*at_zero));
  json["bodies"] = std::move(bodies);
  json["notes"] = std::move(notes);
  return json;
}

}  // namespace qal::io
