#include "urdf_chain.h"

#include <tinyxml2.h>

#include <sstream>
#include <stdexcept>

namespace {

KDL::Vector ReadVector(const char* text) {
  std::istringstream stream(text);
  KDL::Vector v;
  if (!(stream >> v[0] >> v[1] >> v[2]))
    throw std::runtime_error(std::string("not a vector: ") + text);
  return v;
}

}  // namespace

KDL::Chain ReadUrdfChain(const std::string& path) {
  tinyxml2::XMLDocument document;
  if (document.LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) {
    throw std::runtime_error(document.ErrorStr());
  }
  KDL::Chain chain;
  for (const auto* joint = document.RootElement()->FirstChildElement("joint"); joint != nullptr;
       joint = joint->NextSiblingElement("joint")) {
    const auto* origin = joint->FirstChildElement("origin");
    const KDL::Vector rpy = ReadVector(origin->Attribute("rpy"));
    const KDL::Frame frame(KDL::Rotation::RPY(rpy[0], rpy[1], rpy[2]),
                           ReadVector(origin->Attribute("xyz")));
    const std::string type = joint->Attribute("type");
    if (type == "fixed") {
      chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), frame));
    } else if (type == "revolute") {
      const KDL::Vector axis = ReadVector(joint->FirstChildElement("axis")->Attribute("xyz"));
      chain.addSegment(
          KDL::Segment(KDL::Joint(frame.p, frame.M * axis, KDL::Joint::RotAxis), frame));
    } else {
      throw std::runtime_error("joint of type " + type);
    }
  }
  return chain;
}
