#ifndef QAL_IO_JUDGEMENT_H_
#define QAL_IO_JUDGEMENT_H_

#include <qal/model/arm.h>

#include <array>
#include <vector>

#include "metrics.h"

namespace qal::io {

/// Where a limit is from.
enum class Origin {
  kDescribed,  ///< the arm's, somebody described it
  kAssumed,    ///< the arm's, nobody described it
  kOption,     ///< somebody asked for it
  kAlways,     ///< it holds for every trajectory
};

/// "described", "assumed", "option", "always".
const char* OriginText(Origin origin);

struct Bound {
  double value;
  Origin origin;
};

/// A limit for each value of a metric; empty: none.
using Limits = std::array<std::vector<Bound>, kMetricCount>;

/// What an arm's trajectory is held against when nobody asks for more: its joints' range, speed,
/// acceleration and jerk; times that increase; where samples have rates, that they agree with the
/// joints, and rest at both ends.
Limits LimitsOf(const Arm& arm);

/// Whether a peak is beyond its limit by more than rounding.
bool IsBeyond(const Peak& peak, double limit);

struct Violation {
  MetricIndex metric;
  size_t entry;  ///< the joint, counted from 0; 0 for a metric of the whole trajectory
  Bound limit;
};

/// Where a peak is beyond its limit, or where somebody asked for one and there is nothing to
/// measure.
std::vector<Violation> FindViolations(const Metrics& metrics, const Limits& limits);

}  // namespace qal::io

#endif  // QAL_IO_JUDGEMENT_H_
