#ifndef QAL_IO_URDF_DOCUMENT_H_
#define QAL_IO_URDF_DOCUMENT_H_

#include <qal/model/description.h>
#include <tinyxml2.h>

#include <optional>
#include <string>
#include <vector>

#include "description.h"
#include "units.h"
#include "urdf_tree.h"

namespace qal::io {

/// A URDF's text as links and joints, with the chain of the arm in it.
class UrdfDocument {
 public:
  /// @param path    what messages call the text; has to outlive this, as the options
  /// @throw UsageError as ParseDescription
  UrdfDocument(const std::string& text, const std::string& path, const ReadOptions& options);

  const std::string& path() const { return path_; }
  const FileUnits& units() const { return units_; }
  const tinyxml2::XMLElement& robot() const { return *xml_.RootElement(); }
  const UrdfTree& tree() const { return *tree_; }
  const std::string& base() const { return base_; }
  const std::string& tip() const { return tip_; }
  const UrdfChain& chain() const { return chain_; }

  /// The frame that <origin> says of an element; without one, the frame that it stands in.
  Transform Origin(const tinyxml2::XMLElement& element) const;
  /// The numbers in an attribute.
  /// @throw UsageError when there are not `count`
  std::vector<double> Numbers(const tinyxml2::XMLElement& element, const char* name,
                              size_t count) const;
  Vec3 Triple(const tinyxml2::XMLElement& element, const char* name) const;

 private:
  const std::string& path_;
  FileUnits units_;
  tinyxml2::XMLDocument xml_;
  std::optional<UrdfTree> tree_;
  std::string base_, tip_;
  UrdfChain chain_;
};

}  // namespace qal::io

#endif  // QAL_IO_URDF_DOCUMENT_H_
