#include "line_path.h"

namespace qal {

LinePath::LinePath(const Pose& from, const Pose& to, double span)
    : ToolPath(span),
      from_(from.position),
      to_(to.position),
      along_(ToVector(to_) - ToVector(from_)),
      turn_(from.orientation, to.orientation),
      length_m_(Length(along_)) {}

Pose LinePath::PoseAt(double x) const {
  const double part = x / span();
  const Quat orientation = turn_.At(part);
  if (part <= 0) return {from_, orientation};
  if (part >= 1) return {to_, orientation};
  return {{from_.x + part * along_[0], from_.y + part * along_[1], from_.z + part * along_[2]},
          orientation};
}

ToolRates LinePath::RatesAt(double /*x*/) const {
  const double scale = 1 / span();
  return {scale * along_, {}, {}, scale * turn_.rate(), {}, {}};
}

}  // namespace qal
