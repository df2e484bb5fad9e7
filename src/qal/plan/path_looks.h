#ifndef QAL_PLAN_PATH_LOOKS_H_
#define QAL_PLAN_PATH_LOOKS_H_

#include "limited_path.h"
#include "place_limits.h"
#include "step_limits.h"
#include "time_law.h"

// Internal: looks at a path while a motion is played.
namespace qal {

/// What the places of a path allow. A decision has so many looks, as they are what it costs.
class PathLooks {
 public:
  PathLooks(const LimitedPath& path, double cycle_s) : path_(path), cycle_s_(cycle_s) {}

  /// A decision begins.
  void Begin() { left_ = kMost; }
  /// Whether the decision may look once more.
  bool left() const { return left_ > 0; }

  PlaceLimits LimitsAt(double s, const Margin& use);
  /// At the end of a stretch, on all of which the limits are to be kept.
  PlaceLimits LimitsFrom(double before, double s, const Margin& use);
  /// Whether a place is in the section that was looked at last.
  bool IsInSection(double s) const { return path_.SectionAt(s, section_) == section_; }
  /// How soon after a moment to look again: before a piece of the path is passed over, as there the
  /// joints bend most, and where other limits begin.
  double After(const PathMoment& moment);

 private:
  static constexpr int kMost = 28;

  const LimitedPath& path_;
  double cycle_s_;
  size_t piece_ = 0;
  size_t section_ = 0;
  int left_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_PATH_LOOKS_H_
