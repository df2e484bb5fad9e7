#include "arc_path.h"

namespace qal {

std::optional<Circle> CircleThrough(const Vector3& a, const Vector3& b, const Vector3& c) {
  const Vector3 u = b - a;
  const Vector3 v = c - a;
  const Vector3 normal = Cross(u, v);
  const double square = Dot(normal, normal);
  // Of a triangle as flat as this the circle's radius is rounding.
  constexpr double kFlat = 1e-7;
  if (!(std::sqrt(square) > kFlat * Length(u) * Length(v))) return std::nullopt;
  const Vector3 to_centre =
      (1 / (2 * square)) * (Dot(v, v) * Cross(normal, u) - Dot(u, u) * Cross(normal, v));
  return Circle{a + to_centre, (1 / std::sqrt(square)) * normal};
}

double AngleAbout(const Circle& circle, const Vector3& a, const Vector3& b) {
  const Vector3 from = a - circle.centre;
  const Vector3 to = b - circle.centre;
  const double angle = std::atan2(Dot(circle.axis, Cross(from, to)), Dot(from, to));
  return angle < 0 ? angle + 2 * kPi : angle;
}

ArcPath::ArcPath(const Vec3& from, const Vec3& to, const Circle& circle, double angle_rad,
                 const SteadyTurn& turn, double span)
    : ToolPath(span),
      from_(from),
      to_(to),
      centre_(circle.centre),
      radius_(ToVector(from) - circle.centre),
      forward_(Cross(circle.axis, radius_)),
      angle_rad_(angle_rad),
      turn_(turn) {}

Pose ArcPath::PoseAt(double x) const {
  const double part = x / span();
  const Quat orientation = turn_.At(part);
  if (part <= 0) return {from_, orientation};
  if (part >= 1) return {to_, orientation};
  const double angle = part * angle_rad_;
  return {FromVector(centre_ + std::cos(angle) * radius_ + std::sin(angle) * forward_),
          orientation};
}

ToolRates ArcPath::RatesAt(double x) const {
  const double rate = angle_rad_ / span();
  const double angle = x * rate;
  const Vector3 out = std::cos(angle) * radius_ + std::sin(angle) * forward_;
  const Vector3 ahead = std::cos(angle) * forward_ - std::sin(angle) * radius_;
  return {rate * ahead,
          -rate * rate * out,
          -rate * rate * rate * ahead,
          (1 / span()) * turn_.rate(),
          {},
          {}};
}

}  // namespace qal
