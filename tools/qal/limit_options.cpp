#include "limit_options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "../../io/error.h"

namespace qal::tools {

using namespace io;

namespace {

// A limit for each value of the metric.
std::vector<Bound> ReadLimit(const NumberOption& numbers, const MetricKind& kind) {
  const size_t count = kind.per_joint ? 6 : 1;
  const std::vector<double> values = numbers.Read(
      numbers.size() == 1 ? 1 : count, kind.per_joint ? "one number or six" : "one number");
  std::vector<Bound> limit;
  for (const double value : values) {
    if (value < 0.0) throw UsageError(fmt::format("{}: {:.9g} is below 0", kind.option, value));
    limit.push_back({value, Origin::kOption});
  }
  limit.resize(count, limit[0]);
  return limit;
}

}  // namespace

void LimitOptions::AddTo(CLI::App& command) {
  for (size_t i = 0; i < kMetricCount; ++i) {
    const MetricKind& kind = kMetrics[i];
    if (kind.option == nullptr) continue;
    limits_[i].AddTo(command, kind.option, kind.per_joint ? "N or N1 .. N6" : "N",
                     fmt::format("limit: {} [{}]", kind.help, kind.unit));
    // One word, so that FILE may follow.
    command.get_option(kind.option)->expected(1)->allow_extra_args(false);
  }
  command.add_flag("--strict", strict_,
                   "to be beyond a limit that is but assumed is a violation, too");
}

Limits LimitOptions::Read(const Arm& arm) const {
  Limits limits = LimitsOf(arm);
  for (size_t i = 0; i < kMetricCount; ++i) {
    if (limits_[i].given()) limits[i] = ReadLimit(limits_[i], kMetrics[i]);
  }
  return limits;
}

}  // namespace qal::tools
