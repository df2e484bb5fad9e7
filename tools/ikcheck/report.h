#ifndef QAL_TOOLS_IKCHECK_REPORT_H_
#define QAL_TOOLS_IKCHECK_REPORT_H_

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "findings.h"

namespace qal::ikcheck {

using Json = nlohmann::ordered_json;

/// A case in which something was found: in words, and in numbers that it can be repeated with, such
/// as {"joints", {6 values}}.
struct Case {
  std::string words;
  std::vector<std::pair<std::string, std::vector<double>>> numbers = {};
};

/// What one check has measured; a line of the report. Keys are snake_case.
struct Row {
  std::string check;
  Json values = Json::object();
};

/// Collects what the checks judge and measure.
class Report {
 public:
  /// Counts one judged case.
  /// @param badness    how bad a case is that isn't good; of all of them the worst is kept
  /// @param make_case  gives the `Case` to keep; called only then
  template <typename MakeCase>
  void Judge(Finding finding, bool good, double badness, MakeCase make_case) {
    Tally& tally = tallies_[static_cast<size_t>(finding)];
    ++tally.judged;
    if (good || !tally.Count(1, badness)) return;
    tally.worst = make_case();
  }
  /// The same where every case is as bad as any other: the first is kept.
  template <typename MakeCase>
  void Judge(Finding finding, bool good, MakeCase make_case) {
    Judge(finding, good, 0.0, make_case);
  }

  /// Adds to the words of the case that is kept, if there is one.
  void Explain(Finding finding, const std::string& words) {
    tallies_[static_cast<size_t>(finding)].worst.words += words;
  }

  void Passed(Finding finding) { ++tallies_[static_cast<size_t>(finding)].judged; }

  size_t Judged(Finding finding) const { return tallies_[static_cast<size_t>(finding)].judged; }
  size_t Count(Finding finding) const { return tallies_[static_cast<size_t>(finding)].bad; }
  /// Whether a finding is to be told: it has been seen, and is not what another one causes.
  bool Found(Finding finding) const;
  bool HasFindings() const;
  /// Every check came to its end and found no fault.
  bool Sound() const;

  /// What checks have come to, for the report of another process.
  Json Packed() const;
  /// Takes over what another report's checks have come to.
  /// @throw Json::exception when it isn't that
  void Add(const Json& packed);

  std::string library;              ///< its path
  Json arm = nullptr;               ///< the arm it is compared with: name, file and kind
  Json interface = Json::object();  ///< what the library says of itself
  std::vector<Row> rows;
  /// Checks that didn't come to their end, and why.
  std::vector<std::pair<std::string, std::string>> unfinished;
  std::string stopped;  ///< at which check all ended, and why; empty: it went to the end

  /// What was found, by name, in one line.
  std::string Summary() const;
  std::string Text() const;
  Json ToJson() const;
  std::string JsonText() const;

 private:
  struct Tally {
    size_t judged = 0;
    size_t bad = 0;
    double badness = 0.0;
    Case worst;

    /// Counts bad cases, the worst of which is as bad as that. Whether it is the one to keep.
    bool Count(size_t count, double how_bad);
  };
  std::vector<Finding> Findings() const;
  std::string FindingText(Finding finding) const;
  Json FindingJson(Finding finding) const;

  std::array<Tally, kFindingCount> tallies_;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_REPORT_H_
