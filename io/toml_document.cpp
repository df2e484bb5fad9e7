#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "document.h"
#include "error.h"
#include "limits.h"

namespace qal::io {

using nlohmann::json;

namespace {

[[noreturn]] void RefuseLine(const std::string& path, size_t line, const std::string& reason) {
  throw UsageError(fmt::format("{}, line {}: {}", path, line, reason));
}

// The place behind a string that begins at `begin` with its quote, one or three of them; the end of
// the text when it isn't closed.
size_t EndOfString(const std::string& text, size_t begin) {
  const char quote = text[begin];
  const bool several_lines = text.compare(begin, 3, std::string(3, quote)) == 0;
  const std::string end(several_lines ? 3 : 1, quote);
  size_t place = begin + end.size();
  while (place < text.size() && text.compare(place, end.size(), end) != 0) {
    if (!several_lines && text[place] == '\n') return place;
    place += quote == '"' && text[place] == '\\' ? 2 : 1;
  }
  place += end.size();
  // Up to two quotes may stand right before the three that close.
  for (int i = 0; several_lines && i < 2 && place < text.size() && text[place] == quote; ++i)
    ++place;
  return place;
}

// Keeps from the parser what it would take much memory or recursion for: it knows no limit to the
// parts of a dotted key, each a table in the one before, nor to values. They are counted as they
// are written: brackets, dots, commas and equals signs outside strings and comments. In a text that
// isn't well-formed the parser stops where it isn't, so what is counted behind doesn't matter.
class TomlCheck {
 public:
  explicit TomlCheck(const std::string& text) : text_(text) {}

  // Takes what begins at a place; the place behind it.
  size_t Step(size_t place) {
    const char sign = text_[place];
    if (sign == '"' || sign == '\'') return EndOfString(text_, place);
    if (sign == '#') return std::min(text_.find('\n', place), text_.size());
    if (std::strchr(".,=[{", sign) != nullptr) ExpectCount(++values_);
    if (sign == '.') ExpectDepth(++dots_);
    if (sign == '[' || sign == '{') ExpectDepth(++open_);
    if ((sign == ']' || sign == '}') && open_ > 0) --open_;
    if (std::strchr(",=[]{}\n", sign) != nullptr) dots_ = 0;
    return place + 1;
  }

 private:
  const std::string& text_;
  size_t values_ = 0;
  size_t open_ = 0;
  size_t dots_ = 0;  // of one key so far
};

// Makes the tree of a document and notes the lines of its values.
class Reader {
 public:
  explicit Reader(Document& document) : document_(document) {}

  // A value and what is in it, into its place in the tree.
  void Take(const toml::node& node, size_t depth, json& value) {  // NOLINT(misc-no-recursion): 64
    const auto line = node.source().begin.line;
    if (depth > 0) document_.lines[&value] = line;
    if (const toml::table* table = node.as_table()) {
      Enter(line, depth);
      value = json::object();
      for (const auto& [key, entry] : *table) {
        Take(entry, depth + 1, value[std::string(key.str())]);
      }
    } else if (const toml::array* array = node.as_array()) {
      Enter(line, depth);
      value = json::array();
      value.get_ref<json::array_t&>().resize(array->size());  // once: lines are by place
      for (size_t i = 0; i < array->size(); ++i) Take((*array)[i], depth + 1, value[i]);
    } else {
      value = Scalar(node);
    }
  }

 private:
  void Enter(size_t line, size_t depth) const {
    try {
      ExpectDepth(depth);
    } catch (const UsageError& error) {
      RefuseLine(document_.path, line, error.what());
    }
  }

  static json Scalar(const toml::node& node) {
    if (const auto* text = node.as_string()) return text->get();
    if (const auto* whole = node.as_integer()) return whole->get();
    if (const auto* number = node.as_floating_point()) return number->get();
    if (const auto* flag = node.as_boolean()) return flag->get();
    return "a date or a time";  // no file of ours has one
  }

  Document& document_;
};

toml::table Parse(const std::string& text, const std::string& path, const std::string& expected) {
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& error) {
    const bool named = std::filesystem::path(path).extension() == ".toml";
    RefuseLine(path, error.source().begin.line,
               fmt::format("not well-formed TOML ({}){}", error.description(),
                           named ? "" : "; " + expected + " is expected"));
  }
}

}  // namespace

Document ParseToml(const std::string& text, const std::string& path, const std::string& expected) {
  try {
    TomlCheck check(text);
    LookThrough(text, [&](size_t place) { return check.Step(place); });
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}, {}", path, error.what()));
  }
  Document document(path, json());
  Reader(document).Take(Parse(text, path, expected), 0, document.root);
  return document;
}

}  // namespace qal::io
