#include "yaml_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>

#include "error.h"

namespace qal::io {

namespace {

[[noreturn]] void RefuseLine(size_t line, const std::string& reason) {
  throw UsageError(fmt::format("line {}: {}", line, reason));
}

}  // namespace

// Reads the documents of a text one after the other.
class YamlDocument::Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {
    if (yaml_parser_initialize(&parser_) == 0) throw std::bad_alloc();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    yaml_parser_set_input_string(&parser_, bytes, text.size());
  }
  ~Parser() { yaml_parser_delete(&parser_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  // The next document; null when there is none.
  Pointer Load() {
    Pointer document(new yaml_document_t());
    if (yaml_parser_load(&parser_, document.get()) == 0) RefuseText();
    if (yaml_document_get_root_node(document.get()) == nullptr) return nullptr;
    return document;
  }

 private:
  [[noreturn]] void RefuseText() const {
    if (parser_.error == YAML_MEMORY_ERROR) throw std::bad_alloc();
    size_t line = parser_.problem_mark.line + 1;
    if (parser_.error == YAML_READER_ERROR) {
      // Bytes that are no text: the parser tells their place, but not their line.
      const std::string_view before = text_.substr(0, parser_.problem_offset);
      line = 1 + static_cast<size_t>(std::count(before.begin(), before.end(), '\n'));
    }
    RefuseLine(line, fmt::format("no valid YAML: {}", parser_.problem));
  }

  yaml_parser_t parser_;
  std::string_view text_;
};

YamlDocument::YamlDocument(std::string_view text) {
  Parser parser(text);
  document_ = parser.Load();
  if (document_ == nullptr) RefuseLine(1, "the file is empty");
  while (Pointer next = parser.Load()) {
    const YamlNode other(next.get(), yaml_document_get_root_node(next.get()));
    if (other.Scalar() != "") other.Refuse("a second document begins; one trajectory was expected");
  }
}

std::optional<YamlNode> YamlNode::Find(std::string_view key) const {
  std::optional<YamlNode> found;
  if (node_->type != YAML_MAPPING_NODE) return found;
  const auto& pairs = node_->data.mapping.pairs;
  for (const yaml_node_pair_t* pair = pairs.start; pair != pairs.top; ++pair) {
    const YamlNode name(document_, yaml_document_get_node(document_, pair->key));
    if (name.Scalar() != key) continue;
    if (found) name.Refuse(fmt::format("'{}' is a duplicate key", key));
    found = YamlNode(document_, yaml_document_get_node(document_, pair->value));
  }
  return found;
}

YamlNode YamlNode::At(std::string_view key) const {
  const std::optional<YamlNode> found = Find(key);
  if (!found) Refuse(fmt::format("no '{}' here", key));
  return *found;
}

size_t YamlNode::size() const {
  if (node_->type != YAML_SEQUENCE_NODE) return 0;
  const auto& items = node_->data.sequence.items;
  return static_cast<size_t>(items.top - items.start);
}

YamlNode YamlNode::operator[](size_t entry) const {
  return {document_, yaml_document_get_node(document_, node_->data.sequence.items.start[entry])};
}

std::optional<std::string_view> YamlNode::Scalar() const {
  if (node_->type != YAML_SCALAR_NODE) return std::nullopt;
  const auto& scalar = node_->data.scalar;
  return std::string_view(reinterpret_cast<const char*>(scalar.value), scalar.length);
}

void YamlNode::Refuse(const std::string& reason) const { RefuseLine(line(), reason); }

}  // namespace qal::io
