#ifndef QAL_TOOLS_MKIK_LINES_H_
#define QAL_TOOLS_MKIK_LINES_H_

#include <cmath>

#include "../arm/arm.h"

namespace qal::tools {

/// The angle between two lines [rad], 0 to pi / 2; as exact near 0 as near pi / 2.
inline double AngleBetween(const AxisLine& a, const AxisLine& b) {
  return std::atan2(Length(Cross(a.direction, b.direction)),
                    std::fabs(Dot(a.direction, b.direction)));
}

/// Where two lines that aren't parallel come nearest to each other, and how near.
struct Meeting {
  Vector3 point;  ///< on the first line
  double distance;
};

inline Meeting MeetingOf(const AxisLine& a, const AxisLine& b) {
  const Vector3 normal = Cross(a.direction, b.direction);
  const Vector3 way = b.point - a.point;
  const double along = Dot(Cross(way, b.direction), normal) / Dot(normal, normal);
  return {a.point + along * a.direction, std::fabs(Dot(way, normal)) / Length(normal)};
}

inline double DistanceFrom(const AxisLine& line, const Vector3& point) {
  return Length(Cross(point - line.point, line.direction));
}

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_LINES_H_
