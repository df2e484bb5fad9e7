#include "urdf.h"

#include <fmt/format.h>

#include <sstream>
#include <vector>

#include "../../io/error.h"
#include "../../io/numbers.h"
#include "units.h"
#include "urdf_tree.h"

namespace qal::tools {

using namespace io;

namespace {

using tinyxml2::XMLElement;

Vector3 ReadTriple(const std::string& path, const XMLElement& element, const char* name) {
  std::istringstream stream(Attribute(path, element, name));
  std::vector<double> values;
  for (std::string word; stream >> word;) {
    values.push_back(ParseNumber(word, fmt::format("{}, {}", Place(path, element), name)));
  }
  if (values.size() != 3) {
    throw UsageError(fmt::format("{}: {} has {} numbers; 3 are expected", Place(path, element),
                                 name, values.size()));
  }
  return {{values[0], values[1], values[2]}};
}

Frame ReadOrigin(const std::string& path, const UrdfJoint& joint, FileUnits& units) {
  Frame frame = kIdentity;
  const XMLElement* origin = joint.element->FirstChildElement("origin");
  if (origin == nullptr) return frame;
  if (origin->Attribute("xyz") != nullptr) {
    const Vector3 xyz = ReadTriple(path, *origin, "xyz");
    frame.position = {{units.Metres(xyz[0]), units.Metres(xyz[1]), units.Metres(xyz[2])}};
  }
  if (origin->Attribute("rpy") != nullptr) {
    const Vector3 rpy = ReadTriple(path, *origin, "rpy");
    const std::string where = Place(path, *origin) + ", rpy";
    frame.rotation = FromRollPitchYaw({{units.Radians(rpy[0], where), units.Radians(rpy[1], where),
                                        units.Radians(rpy[2], where)}});
  }
  return frame;
}

Vector3 ReadAxis(const std::string& path, const UrdfJoint& joint) {
  const XMLElement* element = joint.element->FirstChildElement("axis");
  if (element == nullptr) return {{1, 0, 0}};  // as the format has it
  const Vector3 axis = ReadTriple(path, *element, "xyz");
  const double length = Length(axis);
  if (!(length > 1e-6)) {
    throw UsageError(fmt::format("{}: the axis of joint '{}' has no direction",
                                 Place(path, *element), joint.name));
  }
  return (1 / length) * axis;
}

std::optional<JointLimits> ReadLimits(const std::string& path, const UrdfJoint& joint) {
  const XMLElement* element = joint.element->FirstChildElement("limit");
  if (element == nullptr || joint.type == "continuous") return std::nullopt;
  const auto limit = [&](const char* name) {
    const char* text = element->Attribute(name);
    const std::string where = fmt::format("{}, {}", Place(path, *element), name);
    return text == nullptr ? 0.0 : ParseNumber(text, where);  // 0 as the format has it
  };
  const JointLimits limits = {limit("lower"), limit("upper")};
  if (limits.lower > limits.upper) {
    throw UsageError(fmt::format("{}: joint '{}': lower limit {} above upper limit {}",
                                 Place(path, *element), joint.name, FormatNumber(limits.lower),
                                 FormatNumber(limits.upper)));
  }
  return limits;
}

}  // namespace

Arm ReadUrdf(const std::string& text, const std::string& path, const ReadOptions& options) {
  tinyxml2::XMLDocument document;
  if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) {
    throw UsageError(fmt::format("{}, line {}: not well-formed XML ({})", path,
                                 document.ErrorLineNum(), document.ErrorName()));
  }
  const XMLElement* robot = document.RootElement();
  if (robot == nullptr || std::string(robot->Name()) != "robot") {
    throw UsageError(fmt::format("{}: no URDF: its root element is not <robot>", path));
  }
  const UrdfTree tree(*robot, path);
  Arm arm;
  const char* name = robot->Attribute("name");
  arm.name = name != nullptr ? name : "arm";
  arm.base = tree.Base(options.base);
  arm.tip = tree.Tip(options.tip, arm.base);

  FileUnits units(options);
  size_t count = 0;
  Frame frame = kIdentity;
  for (const UrdfJoint* joint : tree.Chain(arm.base, arm.tip)) {
    frame = frame * ReadOrigin(path, *joint, units);
    if (joint->Fixed()) continue;
    arm.joints[count++] = {joint->name, frame, ReadAxis(path, *joint), ReadLimits(path, *joint)};
    frame = kIdentity;
  }
  arm.tip_in_last = frame;
  arm.rounded_angles = units.rounded_angles();
  return arm;
}

}  // namespace qal::tools
