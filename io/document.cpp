#include "document.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "error.h"
#include "numbers.h"

namespace qal::io {

using nlohmann::json;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A value and what is in it; notes the lines.
json FromToml(const toml::node& node, const std::string& keys, Document& document) {
  document.lines[keys] = node.source().begin.line;
  if (const toml::table* table = node.as_table()) {
    json object = json::object();
    for (const auto& [key, value] : *table) {
      object[std::string(key.str())] =
          FromToml(value, fmt::format("{}/{}", keys, key.str()), document);
    }
    return object;
  }
  if (const toml::array* array = node.as_array()) {
    json list = json::array();
    for (const toml::node& value : *array) {
      list.push_back(FromToml(value, fmt::format("{}/{}", keys, list.size()), document));
    }
    return list;
  }
  if (const auto* text = node.as_string()) return text->get();
  if (const auto* whole = node.as_integer()) return whole->get();
  if (const auto* number = node.as_floating_point()) return number->get();
  if (const auto* flag = node.as_boolean()) return flag->get();
  return "a date or a time";  // no file of ours has one
}

std::string ValueText(const json& value) {
  return value.is_number() ? FormatNumber(value.get<double>()) : value.dump();
}

}  // namespace

Content ContentOf(std::string_view text) {
  if (text.substr(0, 4) ==
      "\x7F"
      "ELF")
    return Content::kLibrary;
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos && text[first] == '<') return Content::kXml;
  if (first != std::string_view::npos && text[first] == '{') return Content::kJson;
  return Content::kToml;
}

std::string Document::Place(const std::string& keys) const {
  const auto line = lines.find(keys);
  return line == lines.end() ? path : fmt::format("{}, line {}", path, line->second);
}

Document ParseToml(const std::string& text, const std::string& path) {
  try {
    Document document = {path, {}, {}};
    document.root = FromToml(toml::parse(text), "", document);
    document.lines.erase("");  // the whole file's
    return document;
  } catch (const toml::parse_error& error) {
    const bool named = std::filesystem::path(path).extension() == ".toml";
    throw UsageError(fmt::format(
        "{}, line {}: not well-formed TOML ({}){}", path, error.source().begin.line,
        error.description(), named ? "" : "; a URDF, TOML, JSON or a solver library is expected"));
  }
}

Document ParseJson(const std::string& text, const std::string& path) {
  try {
    return {path, json::parse(text), {}};
  } catch (const json::parse_error& error) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    throw UsageError(fmt::format("{}, line {}: not well-formed JSON", path,
                                 1 + std::count(text.begin(), end, '\n')));
  } catch (const json::out_of_range&) {
    throw UsageError(fmt::format("{}: a number is too large", path));
  }
}

Fields::Fields(const Document& document, const std::string& keys, const std::string& label)
    : document_(&document),
      keys_(keys),
      label_(label),
      object_(&document.root.at(json::json_pointer(keys))) {
  if (!object_->is_object()) Refuse("", "a table is expected");
}

void Fields::Expect(const std::vector<std::string>& keys) const {
  for (const auto& entry : object_->items()) {
    if (std::find(keys.begin(), keys.end(), entry.key()) != keys.end()) continue;
    throw UsageError(fmt::format(
        "{}{}: unknown entry '{}'; expected are {}", document_->Place(keys_ + '/' + entry.key()),
        label_.empty() ? "" : ", " + label_, entry.key(), fmt::join(keys, ", ")));
  }
}

std::string Fields::Text(const std::string& key, const std::string& otherwise) const {
  if (!Has(key)) return otherwise;
  if (!at(key).is_string()) Refuse(key, ValueText(at(key)) + " is no text");
  return at(key).get<std::string>();
}

double Fields::Finite(const json& value, const std::string& key) const {
  if (!value.is_number() || !std::isfinite(value.get<double>())) {
    Refuse(key, ValueText(value) + " is not a finite number");
  }
  return value.get<double>();
}

double Fields::Number(const std::string& key, std::optional<double> otherwise) const {
  if (Has(key)) return Finite(at(key), key);
  if (!otherwise) Refuse("", key + " is missing");
  return *otherwise;
}

std::vector<double> Fields::Numbers(const std::string& key, size_t count) const {
  const json& list = at(key);
  if (!list.is_array() || list.size() != count) {
    Refuse(key, fmt::format("{} numbers are expected", count));
  }
  std::vector<double> numbers;
  for (const json& value : list) numbers.push_back(Finite(value, key));
  return numbers;
}

Vec3 Fields::Triple(const std::string& key) const {
  if (!Has(key)) return {0, 0, 0};
  const std::vector<double> numbers = Numbers(key, 3);
  return {numbers[0], numbers[1], numbers[2]};
}

Fields Fields::Object(const std::string& key) const {
  return {*document_, keys_ + '/' + key, label_.empty() ? key : label_ + ", " + key};
}

Fields Fields::Entry(const std::string& key, size_t entry) const {
  return {*document_, fmt::format("{}/{}/{}", keys_, key, entry),
          fmt::format("{} {}", key, entry + 1)};
}

std::string Fields::Where(const std::string& key) const {
  std::string where = document_->Place(key.empty() ? keys_ : keys_ + '/' + key);
  for (const std::string& part : {label_, key}) {
    if (!part.empty()) where += ", " + part;
  }
  return where;
}

void Fields::Refuse(const std::string& key, const std::string& reason) const {
  throw UsageError(fmt::format("{}: {}", Where(key), reason));
}

}  // namespace qal::io
