#include "urdf.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>

#include "error.h"
#include "numbers.h"
#include "urdf_document.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

Vec3 ReadAxis(const UrdfDocument& urdf, const UrdfJoint& joint) {
  const std::string& path = urdf.path();
  const XMLElement* element = OnlyChild(path, *joint.element, "axis");
  if (element == nullptr) return {1, 0, 0};  // as the format has it
  const Vec3 axis = urdf.Triple(*element, "xyz");
  const double length = std::hypot(axis.x, axis.y, axis.z);
  if (!(length > 1e-6)) {
    throw UsageError(fmt::format("{}: the axis of joint '{}' has no direction",
                                 Place(path, *element), joint.name));
  }
  const double scale = 1 / length;
  return {scale * axis.x, scale * axis.y, scale * axis.z};
}

void ReadLimits(const std::string& path, const UrdfJoint& joint, JointDescription& description) {
  description.continuous = joint.type == "continuous";
  const XMLElement* element = OnlyChild(path, *joint.element, "limit");
  if (element == nullptr) return;
  const auto limit = [&](const char* name) {
    const char* text = element->Attribute(name);
    const std::string where = fmt::format("{}, {}", Place(path, *element), name);
    return text == nullptr ? 0.0 : ParseNumber(text, where);  // 0 as the format has it
  };
  // 0 is what exporters write where nobody said a velocity.
  const double velocity = limit("velocity");
  if (velocity != 0) description.velocity_rad_s = velocity;
  if (description.continuous) return;
  const double lower = limit("lower");
  const double upper = limit("upper");
  if (lower > upper) {
    throw UsageError(fmt::format("{}: joint '{}': lower limit {} above upper limit {}",
                                 Place(path, *element), joint.name, FormatNumber(lower),
                                 FormatNumber(upper)));
  }
  description.lower_rad = lower;
  description.upper_rad = upper;
}

}  // namespace

ArmDescription ReadUrdf(const std::string& text, const std::string& path,
                        const ReadOptions& options) {
  const UrdfDocument urdf(text, path, options);
  ArmDescription arm;
  const char* name = urdf.robot().Attribute("name");
  arm.name = name != nullptr ? name : "arm";
  arm.base = urdf.base();
  arm.tip = urdf.tip();

  size_t count = 0;
  Transform frame;
  for (const UrdfJoint* joint : urdf.chain()) {
    frame = frame * urdf.Origin(*joint->element);
    if (joint->Fixed()) continue;
    JointDescription& description = arm.joints[count++];
    description.name = joint->name;
    description.origin = frame;
    description.axis = ReadAxis(urdf, *joint);
    ReadLimits(path, *joint, description);
    frame = {};
  }
  arm.tip_in_last = frame;
  return arm;
}

}  // namespace qal::io
