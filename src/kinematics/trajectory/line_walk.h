#ifndef QAL_KINEMATICS_TRAJECTORY_LINE_WALK_H_
#define QAL_KINEMATICS_TRAJECTORY_LINE_WALK_H_

#include "../../core/pos.h"

namespace qal {

/// Point `i` of a line from `start` along `dst` in `n` steps. Multiplied before divided, so that it
/// is exact wherever the fraction is.
inline Pos PointOnLine(const Pos& start, const Pos& dst, int i, int n) {
  return Pos(dst.x * i / n + start.x, dst.y * i / n + start.y, dst.z * i / n + start.z);
}

/// The point at fraction `k` of the same line.
inline Pos PointAtFraction(const Pos& start, const Pos& dst, double k) {
  return Pos(dst.x * k + start.x, dst.y * k + start.y, dst.z * k + start.z);
}

/// `factor` times a displacement.
inline Pos Scaled(const Pos& step, int factor) {
  return Pos(factor * step.x, factor * step.y, factor * step.z);
}

}  // namespace qal

#endif  // QAL_KINEMATICS_TRAJECTORY_LINE_WALK_H_
