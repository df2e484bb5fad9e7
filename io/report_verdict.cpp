#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report_motion.h"

namespace qal::io {

namespace {

const std::optional<Peak>& PeakOf(const Findings& findings, const Violation& violation) {
  return findings.metrics[violation.metric][violation.entry];
}

// How much of its limit it is; what has no limit to speak of is first.
double ShareOf(const Findings& findings, const Violation& violation) {
  const std::optional<Peak>& peak = PeakOf(findings, violation);
  return peak ? peak->value / violation.limit.value : 0;
}

std::string WorstText(const Findings& findings, const std::vector<Violation>& violations) {
  const Violation& worst = *std::max_element(violations.begin(), violations.end(),
                                             [&](const Violation& a, const Violation& b) {
                                               return ShareOf(findings, a) < ShareOf(findings, b);
                                             });
  std::string text = kMetrics[worst.metric].title;
  if (const size_t joint = JointOf(findings, worst.metric, worst.entry)) {
    text += fmt::format(" of joint {}", joint);
  }
  const std::optional<Peak>& peak = PeakOf(findings, worst);
  if (!peak) return text + ", nothing to measure";
  // A limit that is but the rounding around zero has no percent worth saying.
  constexpr double kMostShare = 100;
  const double share = ShareOf(findings, worst);
  if (share < kMostShare) text += fmt::format(", {:.4g} % of its limit", 100 * share);
  return text + fmt::format(", at {:.4g} s", findings.trajectory.samples[peak->sample].time_s);
}

std::string Count(size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

const char* StateOf(const Findings& findings, size_t metric, size_t entry, bool limited) {
  const auto here = [&](const Violation& v) { return v.metric == metric && v.entry == entry; };
  const auto among = [&](const std::vector<Violation>& list) {
    return std::any_of(list.begin(), list.end(), here);
  };
  if (among(findings.violations)) return "violation";
  if (among(findings.notes)) return "note";
  return limited ? "ok" : "measured";
}

Json CheckJson(const Findings& findings, size_t metric, size_t entry) {
  const std::optional<Peak>& peak = findings.metrics[metric][entry];
  const std::vector<Bound>& limits = findings.limits[metric];
  const bool limited = !limits.empty();
  const size_t joint = JointOf(findings, metric, entry);
  Json json = {{"key", kMetrics[metric].key},
               {"title", kMetrics[metric].title},
               {"unit", kMetrics[metric].unit}};
  json["joint"] = joint > 0 ? Json(joint) : Json();
  json["value"] = peak ? Json(peak->value) : Json();  // null as well where it isn't finite
  json["limit"] = limited ? Json(limits[entry].value) : Json();
  json["origin"] = limited ? Json(OriginText(limits[entry].origin)) : Json();
  json["sample"] = peak ? Json(peak->sample) : Json();
  json["time_s"] = peak ? Json(findings.trajectory.samples[peak->sample].time_s) : Json();
  json["state"] = StateOf(findings, metric, entry, limited);
  return json;
}

}  // namespace

std::string VerdictHeadline(const Findings& findings) {
  if (!findings.violations.empty()) {
    return Count(findings.violations.size(), "violation") +
           "; worst: " + WorstText(findings, findings.violations);
  }
  if (findings.notes.empty()) return "within every limit";
  return "within every described limit; " + Count(findings.notes.size(), "assumed limit") +
         " exceeded, worst: " + WorstText(findings, findings.notes);
}

Json ReportVerdictJson(const Findings& findings) {
  Json checks = Json::array();
  for (size_t i = 0; i < kMetricCount; ++i) {
    for (size_t entry = 0; entry < findings.metrics[i].size(); ++entry) {
      const bool asked =
          !findings.limits[i].empty() && findings.limits[i][entry].origin == Origin::kOption;
      if (findings.metrics[i][entry] || asked) checks.push_back(CheckJson(findings, i, entry));
    }
  }
  return {{"ok", findings.violations.empty()},
          {"headline", VerdictHeadline(findings)},
          {"checks", std::move(checks)}};
}

}  // namespace qal::io
