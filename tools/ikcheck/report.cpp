#include "report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "../../io/numbers.h"

namespace qal::ikcheck {

namespace {

// What a library says may hold anything; a terminal takes control characters at their word.
std::string Printable(std::string text) {
  for (char& c : text) {
    if (c < ' ' || c > '~') c = c == '\n' ? ' ' : '?';
  }
  return text;
}

std::string Plain(const Json& value) {
  if (value.is_string()) return Printable(value.get<std::string>());
  if (!value.is_number_float()) return value.dump();
  const double number = value.get<double>();
  return number >= 1000 ? fmt::format("{:.0f}", number) : fmt::format("{:.3g}", number);
}

// A value's name in the text, and its unit, which follows the number.
std::pair<std::string, const char*> NameAndUnit(std::string key) {
  const bool angle = key.size() > 4 && key.rfind("_rad") == key.size() - 4;
  const bool length = key == "reach" || key == "largest_distance";
  if (angle) key.resize(key.size() - 4);
  std::replace(key.begin(), key.end(), '_', ' ');
  return {key, angle ? " rad" : length ? " m" : ""};
}

std::string Line(const std::string& label, const std::string& values) {
  return fmt::format("  {:30}  {}\n", label, values);
}

std::string RowLine(const Row& row) {
  std::vector<std::string> values;
  for (const auto& item : row.values.items()) {
    const auto [name, unit] = NameAndUnit(item.key());
    values.push_back(fmt::format("{} {}{}", name, Plain(item.value()), unit));
  }
  return Line(row.check, fmt::format("{}", fmt::join(values, ", ")));
}

using RowIterator = std::vector<Row>::const_iterator;

std::string Table(RowIterator from, RowIterator to) {
  const auto line = [&](const std::string& label, const auto& value_of) {
    std::vector<std::string> cells;
    for (const auto& column : from->values.items()) {
      const std::string name = NameAndUnit(column.key()).first;
      cells.push_back(
          fmt::format("{:>{}}", value_of(column.key(), name), std::max<size_t>(7, name.size())));
    }
    return Line(label, fmt::format("{}", fmt::join(cells, "  ")));
  };
  std::string text = line("", [](const auto&, const auto& name) { return name; });
  for (auto row = from; row != to; ++row) {
    text += line(row->check, [&](const auto& key, const auto&) { return Plain(row->values[key]); });
  }
  return text;
}

// Rows with the same values stand below each other as a table.
std::string Rows(const std::vector<Row>& rows) {
  const auto keys = [](const Row& row) {
    std::vector<std::string> names;
    for (const auto& item : row.values.items()) names.push_back(item.key());
    return names;
  };
  std::string text;
  bool in_table = false;
  for (auto from = rows.begin(), to = from; from != rows.end(); from = to) {
    to = std::find_if(from, rows.end(), [&](const Row& row) { return keys(row) != keys(*from); });
    const bool after_table = in_table;
    in_table = to - from > 1;
    if (in_table || after_table) text += '\n';
    text += in_table ? Table(from, to) : RowLine(*from);
  }
  return text;
}

std::string Numbers(const Case& shown) {
  std::string text;
  for (const auto& [name, values] : shown.numbers) {
    const char* unit = name == "eerot" ? "" : name == "eetrans" ? "[m]" : "[rad]";
    text += fmt::format("\n      {:8} {:5} {:.9g}", name, unit, fmt::join(values, ", "));
  }
  return text;
}

}  // namespace

bool Report::Tally::Count(size_t count, double how_bad) {
  // NaN is worse than any number.
  const bool worse = std::isnan(how_bad) ? !std::isnan(badness) : how_bad > badness;
  const bool keep = bad == 0 || worse;
  bad += count;
  if (keep) badness = how_bad;
  return keep;
}

Json Report::Packed() const {
  Json packed = {{"interface", interface}, {"stopped", stopped}};
  for (const Row& row : rows) packed["rows"].push_back({row.check, row.values});
  for (size_t i = 0; i < kFindingCount; ++i) {
    const auto& [judged, bad, badness, worst] = tallies_[i];
    // Names of a library's functions may be of any length and number.
    const std::string words = worst.words.substr(0, 4000);
    packed["tallies"].push_back({judged, bad, badness, words, worst.numbers});
  }
  return packed;
}

void Report::Add(const Json& packed) {
  interface.update(packed.at("interface"));
  packed.at("stopped").get_to(stopped);
  for (const Json& row : packed.value("rows", Json::array())) {
    rows.push_back({row.at(0).get<std::string>(), row.at(1)});
  }
  for (size_t i = 0; i < kFindingCount; ++i) {
    const Json& theirs = packed.at("tallies").at(i);
    tallies_[i].judged += theirs.at(0).get<size_t>();
    const auto bad = theirs.at(1).get<size_t>();
    if (bad == 0 || !tallies_[i].Count(bad, theirs.at(2).get<double>())) continue;
    tallies_[i].worst = {theirs.at(3), theirs.at(4)};
  }
}

bool Report::Found(Finding finding) const {
  const Finding cause = KindOf(finding).cause;
  if (Count(finding) == 0 || (cause != Finding::kCount && Count(cause) > 0)) return false;
  // Where most solutions lead elsewhere, by a frame or a joint's zero that is another one, that is
  // what keeps others from being found, and the arm from being the one described.
  constexpr Finding kOfAnother[] = {Finding::kUnsolved, Finding::kUnsolvedSingular,
                                    Finding::kMissedJoints, Finding::kMissedSingular,
                                    Finding::kOtherArm};
  return 2 * Count(Finding::kWrongSolution) <= Judged(Finding::kWrongSolution) ||
         std::count(std::begin(kOfAnother), std::end(kOfAnother), finding) == 0;
}

std::vector<Finding> Report::Findings() const {
  std::vector<Finding> findings;
  for (size_t i = 0; i < kFindingCount; ++i) {
    if (Found(static_cast<Finding>(i))) findings.push_back(static_cast<Finding>(i));
  }
  return findings;
}

bool Report::Sound() const {
  const std::vector<Finding> findings = Findings();
  return unfinished.empty() && stopped.empty() &&
         std::none_of(findings.begin(), findings.end(),
                      [](Finding finding) { return KindOf(finding).fault; });
}

bool Report::HasFindings() const { return !Findings().empty(); }

std::string Report::FindingText(Finding finding) const {
  const Tally& tally = tallies_[static_cast<size_t>(finding)];
  const FindingKind& kind = KindOf(finding);
  std::string text =
      fmt::format("  {} {}: {} of {}\n    expected: {}\n", kind.fault ? "fault" : "note", kind.name,
                  tally.bad, tally.judged, kind.expected);
  text += fmt::format("    {}: {}{}\n", tally.badness != 0 ? "worst" : "found",
                      Printable(tally.worst.words), Numbers(tally.worst));
  return text;
}

std::string Report::Summary() const {
  std::string names[2];
  for (const Finding finding : Findings()) {
    const FindingKind& kind = KindOf(finding);
    std::string& list = names[kind.fault ? 0 : 1];
    list += (list.empty() ? "" : ", ") + std::string(kind.name);
  }
  const std::string faults = !names[0].empty() ? "faults: " + names[0]
                             : Sound()         ? ""
                                               : "not checked to the end";
  const std::string notes = names[1].empty() ? "" : "notes: " + names[1];
  return faults + (faults.empty() || notes.empty() ? "" : "; ") + notes;
}

std::string Report::Text() const {
  std::string text = "ikcheck " + Printable(library) + '\n';
  text += arm.is_null()
              ? "not compared with an arm; --arm FILE names one\n"
              : fmt::format("compared with {} from {}\n", Plain(arm["name"]), Plain(arm["file"]));
  text += '\n';
  for (const auto& item : interface.items()) {
    text += Line(NameAndUnit(item.key()).first, Plain(item.value()));
  }
  if (!rows.empty()) text += Rows(rows) + '\n';
  for (const auto& [check, why] : unfinished) {
    text += fmt::format("  not finished: \"{}\", {}\n", check, Printable(why));
  }
  if (!stopped.empty()) text += "  stopped " + stopped + '\n';
  for (const Finding finding : Findings()) text += FindingText(finding);
  if (Sound() && !HasFindings()) text += "  sound, nothing found\n";
  return text;
}

Json Report::FindingJson(Finding finding) const {
  const Tally& tally = tallies_[static_cast<size_t>(finding)];
  const FindingKind& kind = KindOf(finding);
  Json json = {{"severity", kind.fault ? "fault" : "note"},
               {"name", kind.name},
               {"expected", kind.expected},
               {"count", tally.bad},
               {"of", tally.judged}};
  Json shown = Json::object();
  shown["words"] = tally.worst.words;
  for (const auto& [name, values] : tally.worst.numbers) {
    for (const double value : values) {
      // JSON has no numbers for these.
      shown[name].push_back(std::isfinite(value) ? Json(value) : Json(io::FormatNumber(value)));
    }
  }
  json["case"] = shown;
  return json;
}

// What a library says need not be UTF-8, which JSON has to be.
std::string Report::JsonText() const {
  return ToJson().dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json Report::ToJson() const {
  Json json = {{"library", library}, {"arm", arm}, {"sound", Sound()}, {"interface", interface}};
  json["checks"] = Json::array();
  for (const Row& row : rows) {
    json["checks"].push_back({{"check", row.check}});
    json["checks"].back().update(row.values);
  }
  json["unfinished"] = Json::array();
  for (const auto& [check, why] : unfinished) {
    json["unfinished"].push_back({{"check", check}, {"reason", why}});
  }
  json["stopped"] = stopped;
  json["findings"] = Json::array();
  for (const Finding finding : Findings()) json["findings"].push_back(FindingJson(finding));
  return json;
}

}  // namespace qal::ikcheck
