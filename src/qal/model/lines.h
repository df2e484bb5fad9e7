#ifndef QAL_MODEL_LINES_H_
#define QAL_MODEL_LINES_H_

#include <array>

#include "chain.h"
#include "frames.h"

// Internal: lines in space.
namespace qal {

struct Line {
  Vector3 point;
  Vector3 direction;  ///< of length 1
};

/// An arm's joint axes with all joints at zero, in the base frame.
using Axes = std::array<Line, 6>;

inline Axes AxesOf(const ArmDescription& arm) {
  Axes axes;
  const std::array<AxisLine, 6> described = AxesAtZero(arm);
  for (size_t j = 0; j < axes.size(); ++j) {
    axes[j] = {ToVector(described[j].point), ToVector(described[j].direction)};
  }
  return axes;
}

/// The angle between two directions taken as lines [rad], 0 to pi / 2; as exact near 0 as near
/// pi / 2.
inline double AngleBetween(const Vector3& a, const Vector3& b) {
  return std::atan2(Length(Cross(a, b)), std::fabs(Dot(a, b)));
}

/// Where two lines that aren't parallel come nearest to each other, and how near.
struct Meeting {
  Vector3 point;  ///< on the first line
  double distance;
};

inline Meeting MeetingOf(const Line& a, const Line& b) {
  const Vector3 normal = Cross(a.direction, b.direction);
  const Vector3 between = b.point - a.point;
  const double along = Dot(Cross(between, b.direction), normal) / Dot(normal, normal);
  return {a.point + along * a.direction, std::fabs(Dot(between, normal)) / Length(normal)};
}

inline double DistanceFrom(const Line& line, const Vector3& point) {
  return Length(Cross(point - line.point, line.direction));
}

inline double DistanceBetween(const Line& a, const Line& b) {
  const bool parallel = AngleBetween(a.direction, b.direction) < 1e-9;
  return parallel ? DistanceFrom(a, b.point) : MeetingOf(a, b).distance;
}

}  // namespace qal

#endif  // QAL_MODEL_LINES_H_
