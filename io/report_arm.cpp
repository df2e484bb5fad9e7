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

template <typename Answer>
Answer AtZero(const LoadedArm& loaded, Result<Answer> answer) {
  if (answer) return *std::move(answer);
  throw Failure(fmt::format("{}: no pose with all joints at zero, by which the arm is drawn: {}",
                            loaded.file, ErrorText(answer.error())));
}

}  // namespace

Json ReportArmJson(const LoadedArm& loaded) {
  const Arm& arm = loaded.arm;
  const Pose tool = AtZero(loaded, Forward(arm, {}));
  const JacobianMatrix jacobian = AtZero(loaded, Jacobian(arm, {}));
  Json joints = Json::array();
  Json axes_json = Json::array();
  std::array<AxisLine, 6> axes;
  for (size_t j = 0; j < arm.joints().size(); ++j) {
    joints.push_back(JointJson(arm, j));
    const Line axis = AxisOf(jacobian, j, ToVector(tool.position));
    axes[j] = {FromVector(axis.point), FromVector(axis.direction)};
    axes_json.push_back(
        {{"point_m", VectorJson(axes[j].point)}, {"direction", VectorJson(axes[j].direction)}});
  }
  auto [bodies, notes] = ReportBodiesOf(loaded, axes);
  const Quat& q = tool.orientation;
  return {{"name", arm.name()},
          {"about", ArmHeading(loaded)},
          {"joints", std::move(joints)},
          {"axes", std::move(axes_json)},
          {"tool", {{"position_m", VectorJson(tool.position)}, {"wxyz", {q.w, q.x, q.y, q.z}}}},
          {"bodies", std::move(bodies)},
          {"notes", std::move(notes)}};
}

}  // namespace qal::io
