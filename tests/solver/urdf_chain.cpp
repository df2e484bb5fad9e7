#include "urdf_chain.h"

#include <tinyxml2.h>

#include <map>
#include <sstream>
#include <stdexcept>

namespace {

using Element = tinyxml2::XMLElement;

KDL::Vector ReadVector(const Element* element, const char* name, KDL::Vector v) {
  if (element == nullptr || element->Attribute(name) == nullptr) return v;
  std::istringstream stream(element->Attribute(name));
  if (stream >> v[0] >> v[1] >> v[2]) return v;
  throw std::runtime_error("not a vector: " + stream.str());
}

KDL::Segment ReadSegment(const Element& joint) {
  const Element* origin = joint.FirstChildElement("origin");
  const KDL::Vector rpy = ReadVector(origin, "rpy", KDL::Vector::Zero());
  const KDL::Frame frame(KDL::Rotation::RPY(rpy[0], rpy[1], rpy[2]),
                         ReadVector(origin, "xyz", KDL::Vector::Zero()));
  if (joint.Attribute("type", "fixed")) {
    return KDL::Segment(KDL::Joint(KDL::Joint::None), frame);
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
  std::map<std::string, const Element*> by_child;
  for (const Element* joint = document.RootElement()->FirstChildElement("joint"); joint != nullptr;
       joint = joint->NextSiblingElement("joint")) {
    by_child[joint->FirstChildElement("child")->Attribute("link")] = joint;
  }
  KDL::Chain chain;
  for (std::string link = tip; by_child.count(link) > 0;) {
    KDL::Chain longer(chain);
    chain = KDL::Chain();
    chain.addSegment(ReadSegment(*by_child[link]));
    chain.addChain(longer);
    link = by_child[link]->FirstChildElement("parent")->Attribute("link");
  }
  return chain;
}
