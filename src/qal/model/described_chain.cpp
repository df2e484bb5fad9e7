#include "described_chain.h"

#include <cmath>

namespace qal {

namespace {

Vector3 Unit(const Vector3& v) { return (1 / Length(v)) * v; }

// What is left of `v` at right angles to the unit vector `axis`. Twice, for what rounding leaves.
Vector3 Perpendicular(const Vector3& v, const Vector3& axis) {
  const Vector3 once = v - Dot(v, axis) * axis;
  return once - Dot(once, axis) * axis;
}

// A direction at right angles to both axes. Where they are nearly parallel, what it is off a right
// angle to `next` times their angle is far below rounding.
Vector3 CommonNormal(const Vector3& axis, const Vector3& next, const Vector3& before) {
  Vector3 normal = Perpendicular(Cross(axis, next), axis);
  if (Length(normal) < 1e-15) normal = Perpendicular(before, axis);
  return Unit(normal);
}

}  // namespace

closed_form::Chain MakeChain(const ArmDescription& arm, const Vector3& centre) {
  Axes axes = AxesOf(arm);
  Line& axis5 = axes[4];
  axis5.point = axis5.point + Dot(centre - axis5.point, axis5.direction) * axis5.direction;

  closed_form::Chain chain = {};
  const Vector3 any =
      std::fabs(axes[0].direction[0]) < 0.6 ? Vector3{{1, 0, 0}} : Vector3{{0, 1, 0}};
  Vector3 x = Unit(Perpendicular(any, axes[0].direction));
  chain.base = {Transposed(Matrix3{{x, Cross(axes[0].direction, x), axes[0].direction}}),
                axes[0].point};
  for (size_t j = 0; j < 6; ++j) {
    const Vector3& z = axes[j].direction;
    if (j == 5) break;
    const Vector3& next = axes[j + 1].direction;
    const Vector3 normal = CommonNormal(z, next, x);
    closed_form::Link& link = chain.links[j];
    link.zero = std::atan2(Dot(Cross(x, normal), z), Dot(x, normal));
    link.twist = {Dot(Cross(z, next), normal), Dot(z, next)};
    const double length = std::hypot(link.twist.sine, link.twist.cosine);
    link.twist = {link.twist.sine / length, link.twist.cosine / length};
    link.offset = Matrix3{{normal, Cross(z, normal), z}} * (axes[j + 1].point - axes[j].point);
    x = Unit(Perpendicular(normal, next));
  }
  const Vector3& z = axes[5].direction;
  const Frame last = {Transposed(Matrix3{{x, Cross(z, x), z}}), axes[5].point};
  chain.tool = Inverse(last) * ToFrame(TipFrame(arm, {}));
  return chain;
}

}  // namespace qal
