#include "arm.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "../../kinematics/solve/arm_numbers.h"
#include "joint_model.h"
#include "mounted_solver.h"

namespace qal {

struct [[gnu::visibility("hidden")]] Arm::Held {
  static Result<Arm> Make(const Solver& solver, const ArmDescription& description,
                          const ArmSettings& settings);
  // Puts base and tool in place.
  Result<Arm> Mount()&&;

  std::string name;
  std::array<JointModel, 6> joints;
  Setting cycle_s;
  Transform base;
  Transform tool;
  Solver solver;
  std::shared_ptr<const MountedSolver> mounted;  // none: the solver's own base and tip
};

namespace {

constexpr double kAssumedCycleS = 0.005;

bool IsIdentity(const Transform& transform) {
  const Transform identity;
  const Vec3& p = transform.position;
  return std::equal(identity.rotation, identity.rotation + 9, transform.rotation) && p.x == 0 &&
         p.y == 0 && p.z == 0;
}

bool IsFrame(const Transform& transform) {
  const Frame frame = ToFrame(transform);
  const Vector3& p = frame.position;
  return IsRotation(frame.rotation) && std::isfinite(p[0]) && std::isfinite(p[1]) &&
         std::isfinite(p[2]);
}

// What the settings say of the reference arm: arms/reference.urdf, and its motors.
ArmSettings ReferenceSettings() {
  ArmSettings settings;
  settings.name = "reference";
  for (size_t j = 0; j < settings.joints.size(); ++j) {
    JointSettings& joint = settings.joints[j];
    joint.lower_rad = kReferenceNumbers.range[j].lower;
    joint.upper_rad = kReferenceNumbers.range[j].upper;
    joint.gear_ratio = kReferenceNumbers.gear_ratio[j];
    joint.motor_speed_rpm = kReferenceNumbers.full_speed_rpm[j];
  }
  settings.cycle_s = kReferenceNumbers.cycle_s;
  return settings;
}

}  // namespace

Result<Arm> Arm::Held::Make(const Solver& solver, const ArmDescription& description,
                            const ArmSettings& settings) {
  const std::string& name = settings.name.empty() ? description.name : settings.name;
  Held held = {name, {}, {}, settings.base, settings.tool, solver, nullptr};
  for (size_t j = 0; j < held.joints.size(); ++j) {
    Result<JointModel> joint =
        MakeJointModel(static_cast<int>(j), description.joints[j], settings.joints[j]);
    if (!joint) return joint.error();
    held.joints[j] = *std::move(joint);
  }
  held.cycle_s = {settings.cycle_s.value_or(kAssumedCycleS), settings.cycle_s.has_value()};
  if (const auto refused = ExpectPositive(-1, "cycle_s", held.cycle_s.value)) return *refused;
  return std::move(held).Mount();
}

Result<Arm> Arm::Held::Mount() && {
  if (!IsFrame(base)) return Error{Reason::kSetting, -1, 0, 0, "base"};
  if (!IsFrame(tool)) return Error{Reason::kSetting, -1, 0, 0, "tool"};
  mounted.reset();
  if (!IsIdentity(base) || !IsIdentity(tool)) {
    mounted = std::make_shared<const MountedSolver>(solver, base, tool);
  }
  return Arm(std::make_shared<const Held>(std::move(*this)));
}

Result<Arm> Arm::FromDescription(const ArmDescription& description, const ArmSettings& settings) {
  const Result<Solver> closed_form = Solver::ClosedForm(description);
  if (!closed_form) return closed_form.error();
  return Held::Make(*closed_form, description, settings);
}

Result<Arm> Arm::FromSolver(const Solver& solver, const ArmSettings& settings) {
  ArmDescription nothing_said;
  nothing_said.name =
      solver.path().empty() ? "arm" : std::filesystem::path(solver.path()).filename().string();
  return Held::Make(solver, nothing_said, settings);
}

Result<Arm> Arm::FromSolver(const Solver& solver, const ArmDescription& description,
                            const ArmSettings& settings) {
  return Held::Make(solver, description, settings);
}

Result<Arm> Arm::WithTool(const Transform& tool) const {
  Held held = *held_;
  held.tool = tool;
  return std::move(held).Mount();
}

Arm Arm::Watched(std::function<bool()> go_on) const {
  Held held = *held_;
  held.solver = held.solver.Watched(std::move(go_on));
  return *std::move(held).Mount();  // base and tool are frames already
}

Arm Arm::Reference() { return *FromSolver(Solver::Reference(), ReferenceSettings()); }

const std::string& Arm::name() const { return held_->name; }
const std::array<JointModel, 6>& Arm::joints() const { return held_->joints; }
Setting Arm::cycle_s() const { return held_->cycle_s; }
const Transform& Arm::base() const { return held_->base; }
const Transform& Arm::tool() const { return held_->tool; }
const Solver& Arm::solver() const { return held_->solver; }

const SolverFunctions& Arm::functions() const {
  if (held_->mounted != nullptr) return *held_->mounted;
  return held_->solver.functions();
}

}  // namespace qal
