#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/finite_differences.h"
#include "../../io/messages.h"
#include "../../io/metrics.h"
#include "commands.h"
#include "number_option.h"
#include "tables.h"
#include "trajectory_input.h"

namespace qal::tools {

using namespace io;

namespace {

using Metrics = std::array<Peaks, kMetricCount>;

struct VerifyArguments {
  TrajectoryInput in;
  SharedArm arm;
  std::array<NumberOption, kMetricCount> limits;
  bool json = false;
};

// What a verification found.
struct Findings {
  LoadedArm loaded;
  LocatedTrajectory trajectory;
  double shortest_s;  // of the intervals between samples
  double longest_s;
  Metrics metrics;
  Limits limits;
  std::vector<Violation> violations;
};

// A limit for each value of the metric; nothing when none is given.
std::vector<double> ReadLimit(const NumberOption& numbers, const MetricKind& kind) {
  if (!numbers.given()) return {};
  const size_t count = kind.per_joint ? 6 : 1;
  std::vector<double> limit = numbers.Read(numbers.size() == 1 ? 1 : count,
                                           kind.per_joint ? "one number or six" : "one number");
  for (const double value : limit) {
    if (value < 0.0) throw UsageError(fmt::format("{}: {:.9g} is below 0", kind.option, value));
  }
  if (limit.size() == 1) limit.resize(count, limit[0]);
  return limit;
}

Findings Verify(const VerifyArguments& arguments) {
  Limits limits = DefaultLimits();
  for (size_t i = 0; i < kMetricCount; ++i) {
    if (kMetrics[i].option != nullptr) limits[i] = ReadLimit(arguments.limits[i], kMetrics[i]);
  }
  Findings findings{arguments.arm->Load(), arguments.in.Read(), 0.0, 0.0, {}, limits, {}};
  const FileTrajectory& samples = findings.trajectory.samples;
  const FiniteDifferences differences(samples);
  for (size_t i = 1; i < samples.size(); ++i) {
    const double duration = differences.Duration(i);
    if (i == 1 || duration < findings.shortest_s) findings.shortest_s = duration;
    if (i == 1 || duration > findings.longest_s) findings.longest_s = duration;
  }
  findings.metrics = Measure(samples, findings.loaded.arm);
  findings.violations = FindViolations(findings.metrics, limits);
  return findings;
}

std::string Title(MetricIndex metric, size_t entry) {
  const MetricKind& kind = kMetrics[metric];
  return kind.per_joint ? fmt::format("{}, joint {}", kind.title, entry + 1) : kind.title;
}

std::string Heading(const Findings& findings, const std::string& name) {
  const FileTrajectory& samples = findings.trajectory.samples;
  std::string text = fmt::format("{}: {} samples, {:.9g} s to {:.9g} s", OneLine(name),
                                 samples.size(), samples.front().time_s, samples.back().time_s);
  // Below it, a difference of two intervals is their rounding.
  constexpr double kSameDurationS = 1e-9;
  if (findings.longest_s - findings.shortest_s > kSameDurationS) {
    text += fmt::format(", {:.9g} to {:.9g} s apart", findings.shortest_s, findings.longest_s);
  } else if (samples.size() > 1) {
    text += fmt::format(", {:.9g} s apart", findings.longest_s);
  }
  text += PartsOf(samples).pose ? "; tool by the file's pose\n" : "; tool by the joints\n";
  return text + ArmRow(findings.loaded);
}

std::string Table(const Findings& findings, const std::string& name) {
  std::string table = Heading(findings, name);
  table += fmt::format("\n{:<28}{:>14} {:<9}{:>9}{:>12}{:>14}\n", "largest", "value", "unit",
                       "sample", "time [s]", "limit");
  for (size_t i = 0; i < kMetricCount; ++i) {
    for (size_t entry = 0; entry < findings.metrics[i].size(); ++entry) {
      table += fmt::format("{:<28}", Title(static_cast<MetricIndex>(i), entry));
      if (const std::optional<Peak>& peak = findings.metrics[i][entry]) {
        table += fmt::format("{:>14.7g} {:<9}{:>9}{:>12.7g}", peak->value, kMetrics[i].unit,
                             peak->sample, findings.trajectory.samples[peak->sample].time_s);
      } else {
        table += fmt::format("{:>14} {:<9}{:>9}{:>12}", "-", kMetrics[i].unit, "-", "-");
      }
      if (!findings.limits[i].empty()) table += fmt::format("{:>14.7g}", findings.limits[i][entry]);
      table += '\n';
    }
  }
  return table;
}

std::string ViolationLines(const Findings& findings) {
  if (findings.violations.empty()) return "\nno violation\n";
  std::string lines = "\nviolations:\n";
  for (const auto& [metric, entry, limit] : findings.violations) {
    const std::optional<Peak>& peak = findings.metrics[metric][entry];
    const std::string measured =
        // As many digits as tell a violation from its limit.
        peak ? fmt::format("{:.9g} {} at {}, {:.9g} s", peak->value, kMetrics[metric].unit,
                           Place(findings.trajectory, peak->sample),
                           findings.trajectory.samples[peak->sample].time_s)
             : "nothing to measure";
    lines += fmt::format("  {}: {}; limit {:.7g} {}\n", Title(metric, entry), measured, limit,
                         kMetrics[metric].unit);
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

Json FindingsJson(const Findings& findings, const std::string& name) {
  const FileTrajectory& samples = findings.trajectory.samples;
  Json json = {{"file", name},
               {"arm", ArmJson(findings.loaded)},
               {"samples", samples.size()},
               {"first_time_s", samples.front().time_s},
               {"last_time_s", samples.back().time_s},
               {"shortest_interval_s", findings.shortest_s},
               {"longest_interval_s", findings.longest_s},
               {"tool_by", PartsOf(samples).pose ? "pose" : "joints"}};
  for (size_t i = 0; i < kMetricCount; ++i) {
    Json peaks = Json::array();
    for (const auto& peak : findings.metrics[i])
      peaks.push_back(PeakJson(peak, findings.trajectory));
    json[kMetrics[i].key] = kMetrics[i].per_joint ? peaks : peaks[0];
  }
  Json& violations = json["violations"] = Json::array();
  for (const auto& [metric, entry, limit] : findings.violations) {
    Json violation = {{"what", kMetrics[metric].key}};
    if (kMetrics[metric].per_joint) violation["joint"] = entry + 1;
    violation["measured"] = PeakJson(findings.metrics[metric][entry], findings.trajectory);
    violation["limit"] = limit;
    violations.push_back(violation);
  }
  return json;
}

void RunVerify(const VerifyArguments& arguments) {
  const Findings findings = Verify(arguments);
  const std::string name = arguments.in.name();
  WriteStandardOutput(arguments.json ? FindingsJson(findings, name).dump(2) + '\n'
                                     : Table(findings, name) + ViolationLines(findings));
  if (findings.violations.empty()) return;
  throw Failure(fmt::format("{}: {} violation{}", name, findings.violations.size(),
                            findings.violations.size() == 1 ? "" : "s"));
}

}  // namespace

void AddVerify(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<VerifyArguments>();
  CLI::App* verify = app.add_subcommand(
      "verify", "Measure a trajectory file, from here or elsewhere, and hold it against limits");
  arguments->in.AddTo(*verify, "FILE");
  arguments->arm = arm;
  arm->AddTo(*verify);
  for (size_t i = 0; i < kMetricCount; ++i) {
    const MetricKind& kind = kMetrics[i];
    if (kind.option == nullptr) continue;
    arguments->limits[i].AddTo(*verify, kind.option, kind.per_joint ? "N or N1 .. N6" : "N",
                               fmt::format("limit: {} [{}]", kind.help, kind.unit));
    // One word, so that FILE may follow.
    verify->get_option(kind.option)->expected(1)->allow_extra_args(false);
  }
  verify->add_flag("--json", arguments->json, "JSON instead of the table");
  verify->footer(
      "Time and joints are enough; without a pose in the file, the tool is where the joints put "
      "it.\n"
      "Speeds are the differences of the samples over their time, accelerations those of the\n"
      "speeds, jerks those of the accelerations; the arm stands before the first sample and after\n"
      "the last. Motor speeds follow from the joint speeds by the arm's gear ratios. What lies\n"
      "between two samples is said at the later one; samples count from 0.\n"
      "A time that is repeated or goes back is always a violation.\n"
      "Exit status: 0 within all limits, 1 with a violation, 2 when the file cannot be read.\n"
      "Example: qal verify planned.csv --max-motor-rpm 3000 --max-joint-acc 8,8,8,12,12,12");
  verify->callback([arguments] { RunVerify(*arguments); });
}

}  // namespace qal::tools
