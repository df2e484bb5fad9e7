#include "yaml_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "error.h"
#include "limits.h"
#include "yaml_events.h"

namespace qal::io {

namespace {

[[noreturn]] void RefuseLine(size_t line, const std::string& reason) {
  throw UsageError(fmt::format("line {}: {}", line, reason));
}

std::string_view TextOf(const yaml_char_t* text, size_t length) {
  return {reinterpret_cast<const char*>(text), length};
}

std::string NameOf(const yaml_char_t* anchor) {
  return anchor == nullptr ? "" : reinterpret_cast<const char*>(anchor);
}

}  // namespace

// Adds a text's events to the document's nodes.
class YamlDocument::Builder {
 public:
  Builder(std::string_view text, YamlDocument& document) : events_(text), document_(document) {}

  // The next document of the text; false when there is none.
  bool Build() {
    names_.clear();
    for (;;) {
      const yaml_event_t& event = events_.Next();
      switch (event.type) {
        case YAML_SCALAR_EVENT:
          AddScalar(event);
          break;
        case YAML_ALIAS_EVENT:
          AddAlias(event);
          break;
        case YAML_SEQUENCE_START_EVENT:
          Open(Kind::kList, event, event.data.sequence_start.anchor);
          break;
        case YAML_MAPPING_START_EVENT:
          Open(Kind::kMap, event, event.data.mapping_start.anchor);
          break;
        case YAML_SEQUENCE_END_EVENT:
        case YAML_MAPPING_END_EVENT:
          Close();
          break;
        case YAML_DOCUMENT_END_EVENT:
          document_.root_ = pending_.back();
          pending_.clear();
          return true;
        case YAML_STREAM_END_EVENT:
          return false;
        default:
          break;
      }
    }
  }

 private:
  struct Opened {
    uint32_t node;
    size_t first;  // of its children in pending_
  };

  void Add(Kind kind, const yaml_event_t& event, const yaml_char_t* anchor) {
    const auto node = static_cast<uint32_t>(document_.nodes_.size());
    document_.nodes_.push_back({kind, static_cast<uint32_t>(event.start_mark.line + 1)});
    pending_.push_back(node);
    if (anchor != nullptr) names_[NameOf(anchor)] = node;
  }

  void AddScalar(const yaml_event_t& event) {
    const auto& scalar = event.data.scalar;
    Add(Kind::kScalar, event, scalar.anchor);
    Entry& entry = document_.nodes_.back();
    entry.begin = static_cast<uint32_t>(document_.text_.size());
    entry.size = static_cast<uint32_t>(scalar.length);
    document_.text_ += TextOf(scalar.value, scalar.length);
  }

  void AddAlias(const yaml_event_t& event) {
    const std::string name = NameOf(event.data.alias.anchor);
    const auto named = names_.find(name);
    if (named == names_.end()) {
      RefuseLine(event.start_mark.line + 1, fmt::format("nothing is named '{}' before", name));
    }
    pending_.push_back(named->second);
  }

  void Open(Kind kind, const yaml_event_t& event, const yaml_char_t* anchor) {
    Add(kind, event, anchor);
    opened_.push_back({pending_.back(), pending_.size()});
    try {
      ExpectDepth(opened_.size());
    } catch (const UsageError& error) {
      RefuseLine(event.start_mark.line + 1, error.what());
    }
  }

  // What is pending since the list or map was opened is in it.
  void Close() {
    const auto [node, first] = opened_.back();
    opened_.pop_back();
    Entry& entry = document_.nodes_[node];
    entry.begin = static_cast<uint32_t>(document_.children_.size());
    entry.size = static_cast<uint32_t>(pending_.size() - first);
    const auto from = pending_.begin() + static_cast<std::ptrdiff_t>(first);
    document_.children_.insert(document_.children_.end(), from, pending_.end());
    pending_.erase(from, pending_.end());
    if (entry.kind == Kind::kMap) ExpectDifferentKeys(entry);
  }

  void ExpectDifferentKeys(const Entry& map) {
    keys_.clear();
    for (size_t i = 0; i < map.size; i += 2) {
      const YamlNode key(document_, document_.children_[map.begin + i]);
      if (const auto text = key.Scalar()) keys_.emplace_back(*text, key.line());
    }
    std::sort(keys_.begin(), keys_.end());
    const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
    const auto found = std::adjacent_find(keys_.begin(), keys_.end(), same);
    if (found == keys_.end()) return;
    RefuseLine(std::next(found)->second, fmt::format("'{}' is a duplicate key", found->first));
  }

  YamlEvents events_;
  YamlDocument& document_;
  std::map<std::string, uint32_t> names_;
  std::vector<Opened> opened_;
  std::vector<uint32_t> pending_;  // nodes whose list or map is not yet closed
  std::vector<std::pair<std::string_view, size_t>> keys_;  // of one map, with their lines
};

YamlDocument::YamlDocument(std::string_view text) {
  Builder builder(text, *this);
  if (!builder.Build()) RefuseLine(1, "the file is empty");
  const uint32_t first = root_;
  while (builder.Build()) {
    if (root().Scalar() != "") {
      root().Refuse("a second document begins; one trajectory was expected");
    }
  }
  root_ = first;
}

std::optional<YamlNode> YamlNode::Find(std::string_view key) const {
  if (entry_->kind != YamlDocument::Kind::kMap) return std::nullopt;
  for (size_t i = 0; i < entry_->size; i += 2) {
    if (Child(i).Scalar() == key) return Child(i + 1);
  }
  return std::nullopt;
}

YamlNode YamlNode::At(std::string_view key) const {
  const std::optional<YamlNode> found = Find(key);
  if (!found) Refuse(fmt::format("no '{}' here", key));
  return *found;
}

size_t YamlNode::size() const {
  return entry_->kind == YamlDocument::Kind::kList ? entry_->size : 0;
}

YamlNode YamlNode::operator[](size_t entry) const { return Child(entry); }

std::optional<std::string_view> YamlNode::Scalar() const {
  if (entry_->kind != YamlDocument::Kind::kScalar) return std::nullopt;
  return std::string_view(document_->text_).substr(entry_->begin, entry_->size);
}

void YamlNode::Refuse(const std::string& reason) const { RefuseLine(line(), reason); }

}  // namespace qal::io
