#include "urdf_tree.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"
#include "messages.h"

namespace qal::io {

namespace {

using tinyxml2::XMLElement;

constexpr size_t kJoints = 6;

// A link on the way from the base.
struct ReachedLink {
  std::string name;
  size_t turning;  // joints before it that turn
  bool gripper;    // something behind the arm's joints moves otherwise than by turning
};

ReachedLink Behind(const ReachedLink& parent, const UrdfJoint& joint) {
  const bool slides = !joint.Turns() && !joint.Fixed();
  return {joint.child, parent.turning + (joint.Turns() ? 1 : 0),
          parent.gripper || (parent.turning >= kJoints && slides)};
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

const XMLElement* OnlyChild(const std::string& path, const XMLElement& element, const char* name) {
  const XMLElement* child = element.FirstChildElement(name);
  const XMLElement* second = child == nullptr ? nullptr : child->NextSiblingElement(name);
  if (second == nullptr) return child;
  throw UsageError(
      fmt::format("{}: a second <{}> in <{}>", Place(path, *second), name, element.Name()));
}

UrdfTree::UrdfTree(const XMLElement& robot, const std::string& path) : path_(path) {
  AddLinks(robot);
  AddJoints(robot);
  ExpectNoLoop();
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
  const XMLElement* element = OnlyChild(path_, joint, end);
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
  std::set<std::string> names;
  for (const auto* e = robot.FirstChildElement("joint"); e; e = e->NextSiblingElement("joint")) {
    const UrdfJoint joint = {e,
                             Attribute(path_, *e, "name"),
                             Attribute(path_, *e, "type"),
                             LinkOf(*e, "parent"),
                             LinkOf(*e, "child"),
                             OnlyChild(path_, *e, "mimic") != nullptr};
    if (!names.insert(joint.name).second) {
      throw UsageError(fmt::format("{}: a second joint named '{}'", Place(path_, *e), joint.name));
    }
    const auto [entry, first] = by_child_.emplace(joint.child, joint);
    if (!first) {
      throw UsageError(fmt::format("{}: link '{}' has two parents, by joints '{}' and '{}'",
                                   Place(path_, *e), joint.child, entry->second.name, joint.name));
    }
    by_parent_[joint.parent].push_back(&entry->second);
  }
}

// A link that can't be reached from one without a parent is on a loop or behind one.
void UrdfTree::ExpectNoLoop() const {
  std::set<std::string> reached;
  std::vector<std::string> next;
  for (const std::string& link : links_) {
    if (by_child_.count(link) == 0) next.push_back(link);
  }
  while (!next.empty()) {
    const std::string link = next.back();
    next.pop_back();
    reached.insert(link);
    const auto joints = by_parent_.find(link);
    if (joints == by_parent_.end()) continue;
    for (const UrdfJoint* joint : joints->second) next.push_back(joint->child);
  }
  const auto lost = std::find_if(links_.begin(), links_.end(),
                                 [&](const std::string& link) { return reached.count(link) == 0; });
  if (lost == links_.end()) return;
  std::string link = *lost;
  for (size_t i = 0; i < links_.size(); ++i) link = by_child_.at(link).parent;  // up onto the loop
  throw UsageError(fmt::format("{}: the joints form a loop at link '{}'", path_, link));
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
    chain.push_back(&joint->second);
    link = joint->second.parent;
  }
  std::reverse(chain.begin(), chain.end());
  return chain;
}

std::string UrdfTree::Tip(const std::string& name, const std::string& base) const {
  if (!name.empty()) {
    ExpectLink(name, "--tip");
    return name;
  }
  std::map<std::string, size_t> turning;  // of each link that is no gripper's
  std::set<std::string> parents;          // of these
  size_t most = 0;
  std::vector<ReachedLink> next = {{base, 0, false}};
  while (!next.empty()) {
    const ReachedLink link = next.back();
    next.pop_back();
    const auto joints = by_parent_.find(link.name);
    if (joints == by_parent_.end()) continue;
    for (const UrdfJoint* joint : joints->second) {
      const ReachedLink behind = Behind(link, *joint);
      next.push_back(behind);
      if (behind.gripper) continue;
      turning[behind.name] = behind.turning;
      parents.insert(link.name);
      most = std::max(most, behind.turning);
    }
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
          joint->mimics ? "mimics another one" : "is " + joint->type, base, tip));
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

std::vector<UrdfLink> UrdfTree::LinksFrom(const std::string& base) const {
  std::vector<UrdfLink> links = {{base, nullptr}};
  for (size_t i = 0; i < links.size(); ++i) {
    const auto joints = by_parent_.find(links[i].name);
    if (joints == by_parent_.end()) continue;
    for (const UrdfJoint* joint : joints->second) links.push_back({joint->child, joint});
  }
  return links;
}

}  // namespace qal::io
