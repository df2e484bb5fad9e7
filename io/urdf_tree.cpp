#include "urdf_tree.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"
#include "messages.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

constexpr size_t kJoints = 6;

// Whether something behind the arm's joints moves otherwise than by turning: a gripper.
bool IsGripper(const UrdfChain& chain) {
  size_t turning = 0;
  for (const UrdfJoint* joint : chain) {
    if (turning >= kJoints && !joint->Turns() && !joint->Fixed()) return true;
    if (joint->Turns()) ++turning;
  }
  return false;
}

size_t TurningJoints(const UrdfChain& chain) {
  return static_cast<size_t>(
      std::count_if(chain.begin(), chain.end(), [](const UrdfJoint* j) { return j->Turns(); }));
}

}  // namespace

std::string Place(const std::string& path, const XMLElement& element) {
  return fmt::format("{}, line {}", path, element.GetLineNum());
}

std::string Attribute(const std::string& path, const XMLElement& element, const char* name) {
  const char* value = element.Attribute(name);
  if (value != nullptr) return value;
  throw UsageError(fmt::format("{}: <{}> has no {}", Place(path, element), element.Name(), name));
}

UrdfTree::UrdfTree(const XMLElement& robot, const std::string& path) : path_(path) {
  AddLinks(robot);
  AddJoints(robot);
}

void UrdfTree::AddLinks(const XMLElement& robot) {
  for (const auto* e = robot.FirstChildElement("link"); e; e = e->NextSiblingElement("link")) {
    const std::string name = Attribute(path_, *e, "name");
    if (!links_.insert(name).second) {
      throw UsageError(fmt::format("{}: a second link named '{}'", Place(path_, *e), name));
    }
  }
}

std::string UrdfTree::LinkOf(const XMLElement& joint, const char* end) const {
  const std::string name = Attribute(path_, joint, "name");
  const XMLElement* element = joint.FirstChildElement(end);
  if (element == nullptr) {
    throw UsageError(fmt::format("{}: joint '{}' has no <{}>", Place(path_, joint), name, end));
  }
  const std::string link = Attribute(path_, *element, "link");
  if (links_.count(link) == 0) {
    throw UsageError(
        fmt::format("{}: joint '{}': no link named '{}'", Place(path_, *element), name, link));
  }
  return link;
}

void UrdfTree::AddJoints(const XMLElement& robot) {
  for (const auto* e = robot.FirstChildElement("joint"); e; e = e->NextSiblingElement("joint")) {
    const UrdfJoint joint = {e, Attribute(path_, *e, "name"), Attribute(path_, *e, "type"),
                             LinkOf(*e, "parent"), LinkOf(*e, "child")};
    const auto [other, first] = by_child_.emplace(joint.child, joint);
    if (!first) {
      throw UsageError(fmt::format("{}: link '{}' has two parents, by joints '{}' and '{}'",
                                   Place(path_, *e), joint.child, other->second.name, joint.name));
    }
  }
}

void UrdfTree::ExpectLink(const std::string& link, const char* option) const {
  if (links_.count(link) > 0) return;
  throw UsageError(fmt::format("{}: no link named '{}' ({})", path_, link, option));
}

std::string UrdfTree::Base(const std::string& name) const {
  if (!name.empty()) {
    ExpectLink(name, "--base");
    return name;
  }
  std::vector<std::string> roots;
  for (const std::string& link : links_) {
    if (by_child_.count(link) == 0) roots.push_back(link);
  }
  if (links_.empty()) throw UsageError(fmt::format("{}: no links", path_));
  if (roots.empty()) {
    throw UsageError(fmt::format("{}: every link has a parent: the joints form a loop", path_));
  }
  if (roots.size() > 1) {
    throw UsageError(fmt::format("{}: {} links have no parent; --base names one of {}", path_,
                                 roots.size(), NamesText(roots)));
  }
  return roots[0];
}

// The joints on the way up from `tip` to `base`; none when it doesn't lead there.
UrdfChain UrdfTree::WayUp(const std::string& tip, const std::string& base) const {
  UrdfChain chain;
  std::string link = tip;
  while (link != base) {
    const auto joint = by_child_.find(link);
    if (joint == by_child_.end()) return {};
    if (chain.size() > by_child_.size()) {
      throw UsageError(fmt::format("{}: the joints form a loop at link '{}'", path_, link));
    }
    chain.insert(chain.begin(), &joint->second);
    link = joint->second.parent;
  }
  return chain;
}

std::string UrdfTree::Tip(const std::string& name, const std::string& base) const {
  if (!name.empty()) {
    ExpectLink(name, "--tip");
    return name;
  }
  std::map<std::string, size_t> turning;  // of each link that is no gripper's
  std::set<std::string> parents;
  size_t most = 0;
  for (const std::string& link : links_) {
    const UrdfChain chain = WayUp(link, base);
    if (chain.empty() || IsGripper(chain)) continue;
    turning[link] = TurningJoints(chain);
    parents.insert(chain.back()->parent);
    most = std::max(most, turning[link]);
  }
  std::vector<std::string> ends;
  for (const auto& [link, count] : turning) {
    if (parents.count(link) == 0 && count >= std::min(most, kJoints)) ends.push_back(link);
  }
  if (ends.empty()) throw UsageError(fmt::format("{}: no joints behind '{}'", path_, base));
  if (ends.size() == 1) return ends[0];
  for (const char* usual : {"tool0", "flange"}) {
    const auto found = turning.find(usual);
    if (found != turning.end() && found->second == kJoints) return usual;
  }
  throw UsageError(fmt::format("{}: the chain from '{}' has {} ends; --tip names one of {}", path_,
                               base, ends.size(), NamesText(ends)));
}

UrdfChain UrdfTree::Chain(const std::string& base, const std::string& tip) const {
  const UrdfChain chain = WayUp(tip, base);
  if (chain.empty()) {
    throw UsageError(fmt::format("{}: no chain of joints from '{}' to '{}'", path_, base, tip));
  }
  std::vector<std::string> names;
  for (const UrdfJoint* joint : chain) {
    if (joint->Fixed()) continue;
    if (!joint->Turns()) {
      throw UsageError(fmt::format(
          "{}: joint '{}' {}; only revolute and continuous joints are expected from '{}' to '{}'",
          Place(path_, *joint->element), joint->name,
          joint->Mimics() ? "mimics another one" : "is " + joint->type, base, tip));
    }
    names.push_back(joint->name);
  }
  if (names.size() != kJoints) {
    throw UsageError(fmt::format("{}: {} joints turn from '{}' to '{}'; six are expected{}", path_,
                                 names.size(), base, tip,
                                 names.empty() ? "" : ", not " + NamesText(names)));
  }
  return chain;
}

}  // namespace qal::io
