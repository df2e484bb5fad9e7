#include "urdf_chain.h"

#include <tinyxml2.h>

#include <map>
#include <sstream>
#include <stdexcept>

namespace {

KDL::Vector ReadVector(const tinyxml2::XMLElement* element, const char* name,
                       const KDL::Vector& otherwise) {
  const char* text = element != nullptr ? element->Attribute(name) : nullptr;
  if (text == nullptr) return otherwise;
  std::istringstream stream(text);
  KDL::Vector v;
  if (!(stream >> v[0] >> v[1] >> v[2]))
    throw std::runtime_error(std::string("not a vector: ") + text);
  return v;
}

KDL::Segment ReadSegment(const tinyxml2::XMLElement& joint) {
  const auto* origin = joint.FirstChildElement("origin");
  const KDL::Vector rpy = ReadVector(origin, "rpy", KDL::Vector::Zero());
  const KDL::Frame frame(KDL::Rotation::RPY(rpy[0], rpy[1], rpy[2]),
                         ReadVector(origin, "xyz", KDL::Vector::Zero()));
  const std::string type = joint.Attribute("type");
  if (type == "fixed") return KDL::Segment(KDL::Joint(KDL::Joint::None), frame);
  if (type != "revolute" && type != "continuous") {
    throw std::runtime_error("joint of type " + type);
  }
  const KDL::Vector axis = ReadVector(joint.FirstChildElement("axis"), "xyz", KDL::Vector(1, 0, 0));
  return KDL::Segment(KDL::Joint(frame.p, frame.M * axis, KDL::Joint::RotAxis), frame);
}

}  // namespace

KDL::Chain ReadUrdfChain(const std::string& path, const std::string& tip) {
  tinyxml2::XMLDocument document;
  if (document.LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) {
    throw std::runtime_error(document.ErrorStr());
  }
  std::map<std::string, const tinyxml2::XMLElement*> by_child;
  for (const auto* joint = document.RootElement()->FirstChildElement("joint"); joint != nullptr;
       joint = joint->NextSiblingElement("joint")) {
    by_child[joint->FirstChildElement("child")->Attribute("link")] = joint;
  }
  std::vector<KDL::Segment> segments;  // from the tip on
  for (std::string link = tip; by_child.count(link) > 0;) {
    segments.push_back(ReadSegment(*by_child[link]));
    link = by_child[link]->FirstChildElement("parent")->Attribute("link");
  }
  KDL::Chain chain;
  for (auto segment = segments.rbegin(); segment != segments.rend(); ++segment) {
    chain.addSegment(*segment);
  }
  return chain;
}
