#include "zone_path.h"

#include "../model/rotations.h"

namespace qal {

ZoneWays::Place ZoneWays::At(double x) const {
  const double per = 1 / spans_.span;
  const double u = x * per;
  const auto leave = leave_.At(u);
  const auto enter = enter_.At(1 - u);
  Place place;
  place.left = spans_.before * leave[0];
  place.behind = spans_.after * enter[0];
  // The place on the first way is its end less what is left; 1 - u runs against u.
  place.first = {-spans_.before * leave[1] * per, -spans_.before * leave[2] * per * per,
                 -spans_.before * leave[3] * per * per * per};
  place.second = {-spans_.after * enter[1] * per, spans_.after * enter[2] * per * per,
                  -spans_.after * enter[3] * per * per * per};
  return place;
}

ZonePath::ZonePath(std::shared_ptr<const ToolPath> first, std::shared_ptr<const ToolPath> second,
                   const ZoneSpans& spans)
    : ToolPath(spans.span), first_(std::move(first)), second_(std::move(second)), ways_(spans) {
  const Pose corner = second_->PoseAt(0);
  corner_ = ToVector(corner.position);
  back_ = Conjugate(Normalized(corner.orientation));
}

Pose ZonePath::PoseAt(double x) const {
  const ZoneSpans& spans = ways_.spans();
  if (x <= 0) return first_->PoseAt(first_->span() - spans.before);
  if (x >= span()) return second_->PoseAt(spans.after);
  const ZoneWays::Place place = ways_.At(x);
  const Pose first = first_->PoseAt(first_->span() - place.left);
  const Pose second = second_->PoseAt(place.behind);
  return {FromVector(ToVector(first.position) + (ToVector(second.position) - corner_)),
          second.orientation * back_ * first.orientation};
}

// The orientation is R = M R1 with M = R2 Rc^-1, the second way's turn from the corner; its angular
// velocity is w = w2 + M w1, and M' = [w2]x M.
ToolRates ZonePath::RatesAt(double x) const {
  const ZoneWays::Place place = ways_.At(x);
  const ToolRates a = first_->RatesAt(first_->span() - place.left);
  const ToolRates b = second_->RatesAt(place.behind);
  const auto& [f, g] = std::pair(place.first, place.second);
  ToolRates rates;
  rates.velocity = f.First(a.velocity) + g.First(b.velocity);
  rates.acceleration = f.Second(a.velocity, a.acceleration) + g.Second(b.velocity, b.acceleration);
  rates.jerk =
      f.Third(a.velocity, a.acceleration, a.jerk) + g.Third(b.velocity, b.acceleration, b.jerk);

  const Quat carry = second_->PoseAt(place.behind).orientation * back_;
  const Vector3 axis = {{carry.x, carry.y, carry.z}};
  // The vector part twice: v + 2 w (axis x v) + 2 axis x (axis x v).
  const auto turned = [&](const Vector3& v) {
    const Vector3 across = 2.0 * Cross(axis, v);
    return v + carry.w * across + Cross(axis, across);
  };
  const Vector3 w1 = turned(f.First(a.turn));
  const Vector3 w1_rate = turned(f.Second(a.turn, a.turn_acceleration));
  const Vector3 w1_second = turned(f.Third(a.turn, a.turn_acceleration, a.turn_jerk));
  const Vector3 w2 = g.First(b.turn);
  const Vector3 w2_rate = g.Second(b.turn, b.turn_acceleration);
  const Vector3 w2_second = g.Third(b.turn, b.turn_acceleration, b.turn_jerk);
  const Vector3 carried = Cross(w2, w1);
  rates.turn = w2 + w1;
  rates.turn_acceleration = w2_rate + carried + w1_rate;
  rates.turn_jerk = w2_second + Cross(w2_rate, w1) + Cross(w2, carried + 2.0 * w1_rate) + w1_second;
  return rates;
}

PathPoint JointZoneAt(const ZoneWays& ways, const JointPath& first, const JointPath& second,
                      double x) {
  const ZoneWays::Place place = ways.At(x);
  const PathPoint a = first.At(first.last().s - place.left);
  const PathPoint b = second.At(second.begin(0) + place.behind);
  const Joints& corner = first.last().value;
  const Chain& f = place.first;
  const Chain& g = place.second;
  PathPoint point;
  point.s = x;
  for (size_t j = 0; j < 6; ++j) {
    point.value[j] = a.value[j] + (b.value[j] - corner[j]);
    point.first[j] = f.First(a.first[j]) + g.First(b.first[j]);
    point.second[j] = f.Second(a.first[j], a.second[j]) + g.Second(b.first[j], b.second[j]);
    point.third[j] =
        f.Third(a.first[j], a.second[j], a.third[j]) + g.Third(b.first[j], b.second[j], b.third[j]);
  }
  return point;
}

}  // namespace qal
