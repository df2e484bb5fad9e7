#ifndef QAL_IO_YAML_DOCUMENT_H_
#define QAL_IO_YAML_DOCUMENT_H_

#include <yaml.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qal::io {

/// A place in a YamlDocument, valid as long as that one.
class YamlNode {
 public:
  YamlNode(yaml_document_t* document, yaml_node_t* node) : document_(document), node_(node) {}

  /// The value at `key` of a map; nothing where there is none, or no map here.
  /// @throw UsageError when a key is a duplicate
  std::optional<YamlNode> Find(std::string_view key) const;
  /// The same where it has to be there.
  /// @throw UsageError when it is not
  YamlNode At(std::string_view key) const;

  /// Number of entries of a list; 0 for anything else.
  size_t size() const;
  /// An entry of a list, below size().
  YamlNode operator[](size_t entry) const;

  /// The text of a scalar; nothing for a list or a map.
  std::optional<std::string_view> Scalar() const;

  size_t line() const { return node_->start_mark.line + 1; }
  /// @throw UsageError "line N: REASON"
  [[noreturn]] void Refuse(const std::string& reason) const;

 private:
  yaml_document_t* document_;
  yaml_node_t* node_;
};

/// The one document of a YAML text.
class YamlDocument {
 public:
  /// @throw UsageError "line N: REASON" when the text is no YAML, or has no or a second document;
  ///        one with nothing in it, as below a closing separator, is none
  explicit YamlDocument(std::string_view text);

  YamlNode root() { return {document_.get(), yaml_document_get_root_node(document_.get())}; }

 private:
  struct Delete {
    void operator()(yaml_document_t* document) const {
      yaml_document_delete(document);
      delete document;
    }
  };
  using Pointer = std::unique_ptr<yaml_document_t, Delete>;
  class Parser;

  Pointer document_;
};

}  // namespace qal::io

#endif  // QAL_IO_YAML_DOCUMENT_H_
