#include "findings.h"

#include <fmt/format.h>

#include <utility>

#include "../../io/finite_differences.h"
#include "../../io/messages.h"

namespace qal::tools {

using namespace io;

namespace {

// The shortest and the longest interval between samples [s].
std::pair<double, double> Intervals(const FileTrajectory& samples) {
  const FiniteDifferences differences(samples);
  std::pair<double, double> range = {0.0, 0.0};
  for (size_t i = 1; i < samples.size(); ++i) {
    const double duration = differences.Duration(i);
    if (i == 1 || duration < range.first) range.first = duration;
    if (i == 1 || duration > range.second) range.second = duration;
  }
  return range;
}

std::string Title(const Findings& findings, size_t metric, size_t entry) {
  const size_t joint = JointOf(findings, metric, entry);
  return joint == 0 ? kMetrics[metric].title
                    : fmt::format("{}, joint {}", kMetrics[metric].title, joint);
}

std::string Heading(const Findings& findings, const std::string& name) {
  const FileTrajectory& samples = findings.trajectory.samples;
  std::string text = fmt::format("{}: {} samples, {:.9g} s to {:.9g} s", OneLine(name),
                                 samples.size(), samples.front().time_s, samples.back().time_s);
  const auto [shortest_s, longest_s] = Intervals(samples);
  // Below it, a difference of two intervals is their rounding.
  constexpr double kSameDurationS = 1e-9;
  if (longest_s - shortest_s > kSameDurationS) {
    text += fmt::format(", {:.9g} to {:.9g} s apart", shortest_s, longest_s);
  } else if (samples.size() > 1) {
    text += fmt::format(", {:.9g} s apart", longest_s);
  }
  text += HaveRates(samples) ? "; rates by the file" : "; rates by differences";
  text += PartsOf(samples).pose ? ", tool by the file's pose\n" : ", tool by the joints\n";
  return text + ArmRow(findings.loaded);
}

std::string Table(const Findings& findings) {
  std::string table = fmt::format("\n{:<28}{:>14} {:<9}{:>9}{:>12}{:>14} {}\n", "largest", "value",
                                  "unit", "sample", "time [s]", "limit", "from");
  for (size_t i = 0; i < kMetricCount; ++i) {
    for (size_t entry = 0; entry < findings.metrics[i].size(); ++entry) {
      table += fmt::format("{:<28}", Title(findings, i, entry));
      const std::optional<Peak>& peak = findings.metrics[i][entry];
      if (peak) {
        table += fmt::format("{:>14.7g} {:<9}{:>9}{:>12.7g}", peak->value, kMetrics[i].unit,
                             peak->sample, findings.trajectory.samples[peak->sample].time_s);
      } else {
        table += fmt::format("{:>14} {:<9}{:>9}{:>12}", "-", kMetrics[i].unit, "-", "-");
      }
      const std::vector<Bound>& limits = findings.limits[i];
      if (!limits.empty() && (peak || limits[entry].origin == Origin::kOption)) {
        table += fmt::format("{:>14.7g} {}", limits[entry].value, OriginText(limits[entry].origin));
      }
      table += '\n';
    }
  }
  return table;
}

std::string Lines(const Findings& findings, const std::vector<Violation>& violations) {
  std::string lines;
  for (const auto& [metric, entry, limit] : violations) {
    const std::optional<Peak>& peak = findings.metrics[metric][entry];
    const std::string measured =
        // As many digits as tell a violation from its limit.
        peak ? fmt::format("{:.9g} {} at {}, {:.9g} s", peak->value, kMetrics[metric].unit,
                           Place(findings.trajectory, peak->sample),
                           findings.trajectory.samples[peak->sample].time_s)
             : "nothing to measure";
    lines += fmt::format("  {}: {}; limit {:.7g} {} ({})\n", Title(findings, metric, entry),
                         measured, limit.value, kMetrics[metric].unit, OriginText(limit.origin));
  }
  return lines;
}

Json PeakJson(const std::optional<Peak>& peak, const LocatedTrajectory& trajectory) {
  if (!peak) return nullptr;
  Json json = {{"value", peak->value},
               {"sample", peak->sample},
               {"time_s", trajectory.samples[peak->sample].time_s}};
  if (!trajectory.lines.empty()) json["line"] = trajectory.lines[peak->sample];
  return json;
}

Json ViolationsJson(const Findings& findings, const std::vector<Violation>& violations) {
  Json list = Json::array();
  for (const auto& [metric, entry, limit] : violations) {
    Json violation = {{"what", kMetrics[metric].key}};
    if (const size_t joint = JointOf(findings, metric, entry)) violation["joint"] = joint;
    violation["measured"] = PeakJson(findings.metrics[metric][entry], findings.trajectory);
    violation["limit"] = limit.value;
    violation["limit_from"] = OriginText(limit.origin);
    list.push_back(violation);
  }
  return list;
}

}  // namespace

std::string FindingsText(const Findings& findings, const std::string& name) {
  std::string text = Heading(findings, name) + Table(findings);
  if (!findings.notes.empty()) {
    text +=
        "\nbeyond what is assumed of the arm, as nobody described it (violations with "
        "--strict):\n" +
        Lines(findings, findings.notes);
  }
  text += findings.violations.empty() ? "\nno violation\n" : "\nviolations:\n";
  return text + Lines(findings, findings.violations);
}

Json FindingsJson(const Findings& findings, const std::string& name) {
  const FileTrajectory& samples = findings.trajectory.samples;
  const auto [shortest_s, longest_s] = Intervals(samples);
  Json json = {{"file", name},
               {"arm", ArmJson(findings.loaded)},
               {"samples", samples.size()},
               {"first_time_s", samples.front().time_s},
               {"last_time_s", samples.back().time_s},
               {"shortest_interval_s", shortest_s},
               {"longest_interval_s", longest_s},
               {"rates_by", HaveRates(samples) ? "file" : "differences"},
               {"tool_by", PartsOf(samples).pose ? "pose" : "joints"}};
  for (size_t i = 0; i < kMetricCount; ++i) {
    Json peaks = Json::array();
    for (const auto& peak : findings.metrics[i]) {
      peaks.push_back(PeakJson(peak, findings.trajectory));
    }
    json[kMetrics[i].key] = kMetrics[i].per_joint ? peaks : peaks[0];
  }
  Json& limits = json["limits"] = Json::object();
  for (size_t i = 0; i < kMetricCount; ++i) {
    for (const auto& [value, origin] : findings.limits[i]) {
      limits[kMetrics[i].key].push_back({{"value", value}, {"from", OriginText(origin)}});
    }
  }
  json["violations"] = ViolationsJson(findings, findings.violations);
  json["notes"] = ViolationsJson(findings, findings.notes);
  return json;
}

}  // namespace qal::tools
