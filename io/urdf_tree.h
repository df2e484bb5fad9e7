#ifndef QAL_IO_URDF_TREE_H_
#define QAL_IO_URDF_TREE_H_

#include <tinyxml2.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace qal::io {

struct UrdfJoint {
  const tinyxml2::XMLElement* element;
  std::string name, type, parent, child;
  bool mimics;  // another one

  bool Fixed() const { return type == "fixed"; }
  bool Turns() const { return (type == "revolute" || type == "continuous") && !mimics; }
};

/// The joints from a base link to a tip link, in this order.
using UrdfChain = std::vector<const UrdfJoint*>;

/// A link, and the joint that leads to it; null: the base.
struct UrdfLink {
  std::string name;
  const UrdfJoint* joint;
};

/// Links and joints of a URDF, each name once, and no loop. What goes wrong is told as UsageError,
/// with file and line.
class UrdfTree {
 public:
  /// @param robot the root element, which has to outlive the tree
  UrdfTree(const tinyxml2::XMLElement& robot, const std::string& path);

  /// The link of this name, or if it is empty the one that has no parent.
  std::string Base(const std::string& name) const;

  /// The link of this name, or if it is empty the one where the chain of six joints from `base`
  /// ends: a gripper that moves otherwise than by turning is left aside, and of several ends the
  /// one called tool0 or flange is taken, as the field calls them.
  std::string Tip(const std::string& name, const std::string& base) const;

  /// The chain, with exactly six turning joints and otherwise fixed ones.
  UrdfChain Chain(const std::string& base, const std::string& tip) const;

  /// The base and every link behind it, whatever the joints, each after its parent.
  std::vector<UrdfLink> LinksFrom(const std::string& base) const;

 private:
  void AddLinks(const tinyxml2::XMLElement& robot);
  void AddJoints(const tinyxml2::XMLElement& robot);
  std::string LinkOf(const tinyxml2::XMLElement& joint, const char* end) const;
  void ExpectNoLoop() const;
  void ExpectLink(const std::string& link, const char* option) const;
  UrdfChain WayUp(const std::string& tip, const std::string& base) const;

  const std::string& path_;
  std::set<std::string> links_;
  std::map<std::string, UrdfJoint> by_child_;
  std::map<std::string, std::vector<const UrdfJoint*>> by_parent_;
};

/// "PATH, line N".
std::string Place(const std::string& path, const tinyxml2::XMLElement& element);

/// The attribute's text.
/// @throw UsageError when there is none
std::string Attribute(const std::string& path, const tinyxml2::XMLElement& element,
                      const char* name);

/// The element of this name in an element; null when there is none.
/// @throw UsageError when there are two
const tinyxml2::XMLElement* OnlyChild(const std::string& path, const tinyxml2::XMLElement& element,
                                      const char* name);

}  // namespace qal::io

#endif  // QAL_IO_URDF_TREE_H_
