#include "document.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "../solver/closed_form/angles.h"
#include "error.h"
#include "json_text.h"
#include "numbers.h"

namespace qal::io {

using nlohmann::json;

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

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

std::string Document::Place(const json& value) const {
  const auto line = lines.find(&value);
  return line == lines.end() ? path : fmt::format("{}, line {}", path, line->second);
}

Document ParseJson(const std::string& text, const std::string& path) {
  try {
    return {path, ParseJsonText(text)};
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("{}, {}", path, error.what()));
  }
}

double AngleUnit(const std::string& key) {
  return key.find("_deg") == std::string::npos ? 1 : closed_form::kPi / 180;
}

Fields::Fields(const Document& document, const json& value, const std::string& label)
    : document_(&document), object_(&value), label_(label) {
  if (!object_->is_object()) Refuse("", "a table is expected");
}

void Fields::Expect(const std::vector<std::string>& keys) const {
  for (const auto& entry : object_->items()) {
    if (std::find(keys.begin(), keys.end(), entry.key()) != keys.end()) continue;
    throw UsageError(
        fmt::format("{}{}: unknown entry '{}'; expected are {}", document_->Place(entry.value()),
                    label_.empty() ? "" : ", " + label_, entry.key(), fmt::join(keys, ", ")));
  }
}

std::vector<std::string> Fields::Keys() const {
  std::vector<std::string> keys;
  for (const auto& entry : object_->items()) keys.push_back(entry.key());
  return keys;
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
  return Numbers(at(key), key, count);
}

std::vector<double> Fields::Numbers(const json& list, const std::string& key, size_t count) const {
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

std::vector<Vec3> Fields::Triples(const std::string& key) const {
  if (!at(key).is_array()) Refuse(key, "a list of lists of 3 numbers is expected");
  std::vector<Vec3> triples;
  for (const json& list : at(key)) {
    const std::vector<double> numbers = Numbers(list, key, 3);
    triples.push_back({numbers[0], numbers[1], numbers[2]});
  }
  return triples;
}

std::string Fields::AngleKey(const std::string& radians) const {
  std::string degrees = radians;
  const size_t unit = degrees.find("_rad");
  if (unit != std::string::npos) degrees.replace(unit, 4, "_deg");
  if (unit == std::string::npos || !Has(degrees)) return Has(radians) ? radians : "";
  if (Has(radians)) Refuse(degrees, "given in radians as well; one of them is expected");
  return degrees;
}

Fields Fields::Object(const std::string& key) const {
  return {*document_, at(key), label_.empty() ? key : label_ + ", " + key};
}

Fields Fields::Entry(const std::string& key, size_t entry) const {
  return Entry(key, entry, fmt::format("{} {}", key, entry + 1));
}

Fields Fields::Entry(const std::string& key, size_t entry, const std::string& label) const {
  return {*document_, at(key).at(entry), label};
}

size_t Fields::Entries(const std::string& key) const {
  if (!at(key).is_array()) Refuse(key, "a list of tables is expected");
  return at(key).size();
}

unsigned Fields::line() const {
  const auto line = document_->lines.find(object_);
  return line == document_->lines.end() ? 0 : line->second;
}

std::string Fields::Where(const std::string& key) const {
  std::string where = document_->Place(Has(key) ? at(key) : *object_);
  for (const std::string& part : {label_, key}) {
    if (!part.empty()) where += ", " + part;
  }
  return where;
}

void Fields::Refuse(const std::string& key, const std::string& reason) const {
  throw UsageError(fmt::format("{}: {}", Where(key), reason));
}

}  // namespace qal::io
