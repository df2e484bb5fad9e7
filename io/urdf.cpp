#include "urdf.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "error.h"
#include "numbers.h"
#include "units.h"
#include "urdf_tree.h"
#include "xml_check.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

Vec3 ReadTriple(const std::string& path, const XMLElement& element, const char* name) {
  std::istringstream stream(Attribute(path, element, name));
  std::vector<double> values;
  for (std::string word; stream >> word;) {
    values.push_back(ParseNumber(word, fmt::format("{}, {}", Place(path, element), name)));
  }
  if (values.size() != 3) {
    throw UsageError(fmt::format("{}: {} has {} numbers; 3 are expected", Place(path, element),
                                 name, values.size()));
  }
  return {values[0], values[1], values[2]};
}

Transform ReadOrigin(const std::string& path, const UrdfJoint& joint, const FileUnits& units) {
  Transform frame;
  const XMLElement* origin = OnlyChild(path, *joint.element, "origin");
  if (origin == nullptr) return frame;
  if (origin->Attribute("rpy") != nullptr) {
    frame = FromRollPitchYaw(
        units.Radians(ReadTriple(path, *origin, "rpy"), Place(path, *origin) + ", rpy"));
  }
  if (origin->Attribute("xyz") != nullptr) {
    frame.position = units.Metres(ReadTriple(path, *origin, "xyz"));
  }
  return frame;
}

Vec3 ReadAxis(const std::string& path, const UrdfJoint& joint) {
  const XMLElement* element = OnlyChild(path, *joint.element, "axis");
  if (element == nullptr) return {1, 0, 0};  // as the format has it
  const Vec3 axis = ReadTriple(path, *element, "xyz");
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

// Whether macros are used, in elements or in values. What xacro has made of them may still name its
// namespace, and macros in comments are nobody's.
class MacroFinder : public tinyxml2::XMLVisitor {
 public:
  bool VisitEnter(const XMLElement& element, const tinyxml2::XMLAttribute* attribute) override {
    found_ = found_ || std::string(element.Name()).rfind("xacro:", 0) == 0;
    for (; attribute != nullptr; attribute = attribute->Next()) {
      const std::string value = attribute->Value();
      found_ =
          found_ || value.find("${") != std::string::npos || value.find("$(") != std::string::npos;
    }
    return !found_;
  }
  bool found() const { return found_; }

 private:
  bool found_ = false;
};

void Parse(const std::string& text, const std::string& path, tinyxml2::XMLDocument& document) {
  try {
    CheckXml(text);
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}, {}", path, error.what()));
  }
  if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) {
    throw UsageError(fmt::format("{}, line {}: not well-formed XML ({})", path,
                                 document.ErrorLineNum(), document.ErrorName()));
  }
}

}  // namespace

ArmDescription ReadUrdf(const std::string& text, const std::string& path,
                        const ReadOptions& options) {
  tinyxml2::XMLDocument document;
  Parse(text, path, document);
  MacroFinder macros;
  (void)document.Accept(&macros);
  if (macros.found()) {
    throw UsageError(fmt::format("{}: a xacro file; run xacro on it and give its output", path));
  }
  const XMLElement* robot = document.RootElement();
  if (robot == nullptr || std::string(robot->Name()) != "robot") {
    throw UsageError(fmt::format("{}: no URDF: its root element is not <robot>", path));
  }
  if (const XMLElement* second = robot->NextSiblingElement()) {
    throw UsageError(
        fmt::format("{}: a second root element, <{}>", Place(path, *second), second->Name()));
  }
  const UrdfTree tree(*robot, path);
  ArmDescription arm;
  const char* name = robot->Attribute("name");
  arm.name = name != nullptr ? name : "arm";
  arm.base = tree.Base(options.base);
  arm.tip = tree.Tip(options.tip, arm.base);

  const FileUnits units(options);
  size_t count = 0;
  Transform frame;
  for (const UrdfJoint* joint : tree.Chain(arm.base, arm.tip)) {
    frame = frame * ReadOrigin(path, *joint, units);
    if (joint->Fixed()) continue;
    JointDescription& description = arm.joints[count++];
    description.name = joint->name;
    description.origin = frame;
    description.axis = ReadAxis(path, *joint);
    ReadLimits(path, *joint, description);
    frame = {};
  }
  arm.tip_in_last = frame;
  return arm;
}

}  // namespace qal::io
