#ifndef QAL_PLAN_ZONE_PATH_H_
#define QAL_PLAN_ZONE_PATH_H_

#include <memory>

#include "blend.h"
#include "joint_path.h"
#include "tool_path.h"

// Internal: paths that round a corner between two ways. What is left of the first way and what is
// already behind of the second one are added up:
//
//     p(x) = corner + [first(end - before * left(u)) - corner] + [second(after * (1 - ...)) - ...]
//
// and so for joints, and for orientations in place of sums the product of the two turns.
namespace qal {

/// Where a zone leaves the first way and enters the second: how much of their own parameters is
/// left out before and after the corner; and the zone's own span.
struct ZoneSpans {
  double before;
  double after;
  double span;
};

/// How far on the two ways one is at a place x of a zone.
class ZoneWays {
 public:
  struct Place {
    double left;    ///< of the first way, to its end
    double behind;  ///< of the second way, from its beginning
    Chain first;    ///< derivatives of the place on the first way with respect to x
    Chain second;
  };

  explicit ZoneWays(const ZoneSpans& spans)
      : spans_(spans), leave_(spans.span / spans.before), enter_(spans.span / spans.after) {}

  Place At(double x) const;
  const ZoneSpans& spans() const { return spans_; }

 private:
  ZoneSpans spans_;
  Blend leave_;
  Blend enter_;
};

/// A zone between two paths of the tool.
class ZonePath final : public ToolPath {
 public:
  ZonePath(std::shared_ptr<const ToolPath> first, std::shared_ptr<const ToolPath> second,
           const ZoneSpans& spans);

  Pose PoseAt(double x) const override;
  ToolRates RatesAt(double x) const override;

 private:
  std::shared_ptr<const ToolPath> first_;
  std::shared_ptr<const ToolPath> second_;
  ZoneWays ways_;
  Vector3 corner_;
  Quat back_;  // the inverse of the corner's orientation
};

/// A zone between two paths of the joints, of which the first ends and the second begins at the
/// corner.
/// @param x within the zone
PathPoint JointZoneAt(const ZoneWays& ways, const JointPath& first, const JointPath& second,
                      double x);

}  // namespace qal

#endif  // QAL_PLAN_ZONE_PATH_H_
