#include "urdf_document.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <sstream>

#include "error.h"
#include "numbers.h"
#include "xml_check.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

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

void ExpectRobot(const tinyxml2::XMLDocument& xml, const std::string& path) {
  MacroFinder macros;
  (void)xml.Accept(&macros);
  if (macros.found()) {
    throw UsageError(fmt::format("{}: a xacro file; run xacro on it and give its output", path));
  }
  const XMLElement* robot = xml.RootElement();
  if (robot == nullptr || std::string(robot->Name()) != "robot") {
    throw UsageError(fmt::format("{}: no URDF: its root element is not <robot>", path));
  }
  if (const XMLElement* second = robot->NextSiblingElement()) {
    throw UsageError(
        fmt::format("{}: a second root element, <{}>", Place(path, *second), second->Name()));
  }
}

}  // namespace

UrdfDocument::UrdfDocument(const std::string& text, const std::string& path,
                           const ReadOptions& options)
    : path_(path), units_(options) {
  Parse(text, path, xml_);
  ExpectRobot(xml_, path);
  tree_.emplace(robot(), path);
  base_ = tree_->Base(options.base);
  tip_ = tree_->Tip(options.tip, base_);
  chain_ = tree_->Chain(base_, tip_);
}

std::vector<double> UrdfDocument::Numbers(const XMLElement& element, const char* name,
                                          size_t count) const {
  std::istringstream stream(Attribute(path_, element, name));
  std::vector<double> values;
  for (std::string word; stream >> word;) {
    values.push_back(ParseNumber(word, fmt::format("{}, {}", Place(path_, element), name)));
  }
  if (values.size() != count) {
    throw UsageError(fmt::format("{}: {} has {} numbers; {} are expected", Place(path_, element),
                                 name, values.size(), count));
  }
  return values;
}

Vec3 UrdfDocument::Triple(const XMLElement& element, const char* name) const {
  const std::vector<double> values = Numbers(element, name, 3);
  return {values[0], values[1], values[2]};
}

Transform UrdfDocument::Origin(const XMLElement& element) const {
  Transform frame;
  const XMLElement* origin = OnlyChild(path_, element, "origin");
  if (origin == nullptr) return frame;
  if (origin->Attribute("rpy") != nullptr) {
    frame =
        FromRollPitchYaw(units_.Radians(Triple(*origin, "rpy"), Place(path_, *origin) + ", rpy"));
  }
  if (origin->Attribute("xyz") != nullptr) frame.position = units_.Metres(Triple(*origin, "xyz"));
  return frame;
}

}  // namespace qal::io
