#ifndef QAL_IO_YAML_DOCUMENT_H_
#define QAL_IO_YAML_DOCUMENT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qal::io {

class YamlNode;

/// The one document of a YAML text of at most kLargestTrajectory, its nodes in one list: one with
/// an anchor is there once, however many aliases name it.
class YamlDocument {
 public:
  /// @throw UsageError "line N: REASON" when the text is no YAML, has a key twice, is nested more
  ///        than kDeepest deep, or has no or a second document; one with nothing in it, as below a
  ///        closing separator, is none
  explicit YamlDocument(std::string_view text);

  YamlNode root() const;

 private:
  friend class YamlNode;
  class Builder;

  enum class Kind : uint8_t { kScalar, kList, kMap };
  struct Entry {
    Kind kind;
    uint32_t line;
    uint32_t begin = 0;  // in text_ or children_
    uint32_t size = 0;
  };

  std::vector<Entry> nodes_;
  std::vector<uint32_t> children_;  // places in nodes_; of a map each key, then its value
  std::string text_;                // of the scalars, one after the other
  uint32_t root_ = 0;
};

/// A place in a YamlDocument, valid as long as that one.
class YamlNode {
 public:
  YamlNode(const YamlDocument& document, uint32_t node)
      : document_(&document), entry_(&document.nodes_[node]) {}

  /// The value at `key` of a map; nothing where there is none, or no map here.
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

  size_t line() const { return entry_->line; }
  /// @throw UsageError "line N: REASON"
  [[noreturn]] void Refuse(const std::string& reason) const;

 private:
  YamlNode Child(size_t place) const {
    return {*document_, document_->children_[entry_->begin + place]};
  }

  const YamlDocument* document_;
  const YamlDocument::Entry* entry_;
};

inline YamlNode YamlDocument::root() const { return {*this, root_}; }

}  // namespace qal::io

#endif  // QAL_IO_YAML_DOCUMENT_H_
