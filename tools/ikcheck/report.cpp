#include "report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/numbers.h"

namespace qal::ikcheck {

namespace {

constexpr size_t kLabelWidth = 30;
constexpr size_t kValueWidth = 7;

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

// The text's name of a value, and its unit, which follows the number.
const std::pair<const char*, const char*> kUnits[] = {
    {"reach", " m"}, {"largest_distance", " m"}, {"largest_angle_rad", " rad"}};
std::string Unit(const std::string& key) {
  for (const auto& [name, unit] : kUnits) {
    if (key == name) return unit;
  }
  return "";
}
std::string Label(std::string key) {
  if (key.size() > 4 && key.rfind("_rad") == key.size() - 4) key.resize(key.size() - 4);
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

bool SameKeys(const Json& a, const Json& b) {
  return a.size() == b.size() &&
         std::equal(a.items().begin(), a.items().end(), b.items().begin(),
                    [](const auto& x, const auto& y) { return x.key() == y.key(); });
}

std::string Header(const Json& values) {
  std::string line = fmt::format("  {:{}}", "", kLabelWidth);
  for (const auto& item : values.items())
    line += fmt::format("  {:>{}}", Label(item.key()), kValueWidth);
  return line + '\n';
}

std::string TableLine(const Row& row) {
  std::string line = fmt::format("  {:{}}", row.check, kLabelWidth);
  for (const auto& item : row.values.items()) {
    line += fmt::format("  {:>{}}", Plain(item.value()), std::max(kValueWidth, item.key().size()));
  }
  return line + '\n';
}

std::string Line(const Row& row) {
  std::string values;
  for (const auto& item : row.values.items()) {
    values += fmt::format("{}{} {}{}", values.empty() ? "" : ", ", Label(item.key()),
                          Plain(item.value()), Unit(item.key()));
  }
  return fmt::format("  {:{}}  {}\n", row.check, kLabelWidth, values);
}

// Rows with the same values stand below each other as a table.
std::string Rows(const std::vector<Row>& rows) {
  std::string text;
  bool in_table = false;
  for (size_t i = 0; i < rows.size(); ++i) {
    const bool as_before = i > 0 && SameKeys(rows[i].values, rows[i - 1].values);
    const bool as_after = i + 1 < rows.size() && SameKeys(rows[i].values, rows[i + 1].values);
    if (!as_before && (as_after || in_table)) text += '\n';
    if (!as_before && as_after) text += Header(rows[i].values);
    in_table = as_before || as_after;
    text += in_table ? TableLine(rows[i]) : Line(rows[i]);
  }
  return text;
}

std::string Numbers(const Case& shown) {
  std::string text;
  for (const auto& [name, values] : shown.numbers) {
    const char* unit = name == "eerot" ? "" : name == "eetrans" ? "[m]" : "[rad]";
    text += fmt::format("\n      {:8} {:5} ", name, unit);
    for (size_t i = 0; i < values.size(); ++i) {
      text += fmt::format("{}{}", i == 0 ? "" : ", ", fmt::format("{:.9g}", values[i]));
    }
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

Json Report::Judgements() const {
  Json judgements = Json::array();
  for (size_t i = 0; i < kFindingCount; ++i) {
    const Tally& tally = tallies_[i];
    if (tally.judged == 0) continue;
    // Names of a library's functions may be of any length and number.
    constexpr size_t kWordsBytes = 4000;
    judgements.push_back({i, tally.judged, tally.bad, tally.badness,
                          tally.worst.words.substr(0, kWordsBytes), tally.worst.numbers});
  }
  return judgements;
}

void Report::Add(const Json& judgements) {
  for (const Json& theirs : judgements) {
    Tally& tally = tallies_.at(theirs.at(0).get<size_t>());
    tally.judged += theirs.at(1).get<size_t>();
    const auto bad = theirs.at(2).get<size_t>();
    if (bad == 0 || !tally.Count(bad, theirs.at(3).get<double>())) continue;
    theirs.at(4).get_to(tally.worst.words);
    theirs.at(5).get_to(tally.worst.numbers);
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
  const std::string faults = names[0].empty() ? "" : "faults: " + names[0];
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
    text += fmt::format("  {:{}}  {}\n", Label(item.key()), kLabelWidth, Plain(item.value()));
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
