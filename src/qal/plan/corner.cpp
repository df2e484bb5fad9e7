#include "corner.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// A zone that is shorter than this is a stop: it would be passed nearly as slowly [m of the tool,
// or what a way has in its place].
constexpr double kShortest = 1e-4;
// How much of a way a zone may take: up to its middle, nearly, so that two zones leave something.
constexpr double kMostOfWay = 0.499;

Joints JointsAt(const CornerSide& side, double from_corner) {
  const JointPath& path = *side.joints;
  return path.At(side.is_first ? path.last().s - from_corner : path.begin(0) + from_corner).value;
}

Frame FrameAt(const Corner& corner, const CornerSide& side, double from_corner) {
  if (side.tool == nullptr) return corner.screws.At(JointsAt(side, from_corner)).tool;
  return side.tool->FrameAt(side.is_first ? side.span - from_corner : from_corner);
}

// What a zone is measured from.
struct CornerPoint {
  Frame tool;
  std::optional<Joints> joints;
};

CornerPoint PointOf(const Corner& corner) {
  CornerPoint point = {FrameAt(corner, corner.second, 0), std::nullopt};
  if (corner.first.joints != nullptr) point.joints = corner.first.joints->last().value;
  return point;
}

ZoneDistances DistancesOf(const CornerPoint& corner, const Frame& tool,
                          const std::optional<Joints>& joints) {
  ZoneDistances distances = {Length(tool.position - corner.tool.position),
                             AngleBetween(tool.rotation, corner.tool.rotation), 0};
  if (joints && corner.joints) distances.joint_rad = LargestDifference(*joints, *corner.joints);
  return distances;
}

ZoneDistances DistancesAt(const Corner& corner, const CornerPoint& point, const CornerSide& side,
                          double from_corner) {
  std::optional<Joints> joints;
  if (side.joints != nullptr) joints = JointsAt(side, from_corner);
  return DistancesOf(point, FrameAt(corner, side, from_corner), joints);
}

bool IsWithin(const ZoneDistances& distances, const Zone& zone) {
  // Rounding of what is at the zone's limit.
  constexpr double kRounding = 1 + 1e-9;
  return distances.tool_m <= kRounding * zone.tool_m &&
         distances.turn_rad <= kRounding * zone.turn_rad &&
         distances.joint_rad <= kRounding * zone.joint_rad;
}

// How far from the corner a way is left before it is outside of a zone.
double ReachOf(const Corner& corner, const CornerPoint& point, const CornerSide& side,
               const Zone& zone) {
  const auto inside = [&](double x) { return IsWithin(DistancesAt(corner, point, side, x), zone); };
  const double most = kMostOfWay * side.span;
  constexpr int kLooks = 16;
  double reach = 0;
  double outside = 0;
  for (int i = 1; i <= kLooks && outside == 0; ++i) {
    const double x = most * i / kLooks;
    (inside(x) ? reach : outside) = x;
  }
  if (outside == 0) return most;
  for (int i = 0; i < 50; ++i) {
    const double middle = (reach + outside) / 2;
    (inside(middle) ? reach : outside) = middle;
  }
  return reach;
}

// Where a way is cut at its middle, the other one is left as near to the corner.
void CutToShorter(const Corner& corner, const CornerPoint& point, const Zone& zone, double& before,
                  double& after) {
  const auto cut_at = [&](const CornerSide& side, double reach) {
    const double tool_m = DistancesAt(corner, point, side, reach).tool_m;
    const bool is_cut = reach >= kMostOfWay * side.span;
    // A turn on the spot is no shorter way.
    if (!is_cut || tool_m <= kShortest) return kNoLimit;
    return tool_m;
  };
  Zone shorter = zone;
  shorter.tool_m =
      std::min({zone.tool_m, cut_at(corner.first, before), cut_at(corner.second, after)});
  if (!(shorter.tool_m < zone.tool_m)) return;
  before = ReachOf(corner, point, corner.first, shorter);
  after = ReachOf(corner, point, corner.second, shorter);
}

// How steeply a zone begins, so that it is passed at a steady speed: its derivative at the ends,
// slope * span, is what it is in the middle, (2.1875 - 0.59375 slope) * 2 cos(angle / 2) * span.
double SlopeOf(const Corner& corner) {
  // A corner of joints may be one of quite different speeds; one that turns back has no middle.
  constexpr double kOfJoints = 1.7;
  constexpr double kLeast = 0.6;
  if (corner.of_joints()) return kOfJoints;
  const Vector3 before = corner.first.tool->RatesAt(corner.first.span).velocity;
  const Vector3 after = corner.second.tool->RatesAt(0).velocity;
  const double lengths = Length(before) * Length(after);
  const double cosine = lengths > 0 ? Dot(before, after) / lengths : 1;
  const double half = std::sqrt(std::max(0.0, (1 + cosine) / 2));
  return std::max(kLeast, 4.375 * half / (1 + 1.1875 * half));
}

// The least value of a function that falls, then rises.
template <class Function>
double LeastOf(const Function& function, double a, double b) {
  for (int i = 0; i < 30; ++i) {
    const double third = (b - a) / 3;
    if (function(a + third) < function(b - third)) {
      b -= third;
    } else {
      a += third;
    }
  }
  return function((a + b) / 2);
}

// The distance of a point from a way's last or first `reach`.
double DistanceFrom(const Corner& corner, const CornerSide& side, double reach,
                    const Vector3& point) {
  const auto distance = [&](double x) { return Length(FrameAt(corner, side, x).position - point); };
  constexpr int kLooks = 16;
  int nearest = 0;
  double least = distance(0);
  for (int i = 1; i <= kLooks; ++i) {
    const double here = distance(reach * i / kLooks);
    if (here < least) {
      least = here;
      nearest = i;
    }
  }
  return std::min(least, LeastOf(distance, reach * std::max(nearest - 1, 0) / kLooks,
                                 reach * std::min(nearest + 1, kLooks) / kLooks));
}

// A zone as it would be; the joints in it are known where it is one of joints.
class TriedZone {
 public:
  TriedZone(const Corner& corner, const CornerPoint& point, const ZoneSpans& spans)
      : corner_(corner), point_(point), ways_(spans) {
    int worst = 0;
    for (int i = 0; i <= kLooks; ++i) {
      const auto [tool, joints] = At(PlaceOf(i));
      const ZoneDistances here = DistancesOf(point, tool, joints);
      farthest_.tool_m = std::max(farthest_.tool_m, here.tool_m);
      farthest_.turn_rad = std::max(farthest_.turn_rad, here.turn_rad);
      farthest_.joint_rad = std::max(farthest_.joint_rad, here.joint_rad);
      const double off_m = DeviationAt(PlaceOf(i));
      if (!(off_m > deviation_m_)) continue;
      deviation_m_ = off_m;
      worst = i;
    }
    // Where the nearer of the two ways changes there is an edge, which looks don't meet.
    const auto less = [this](double x) { return -DeviationAt(x); };
    deviation_m_ = std::max(deviation_m_, -LeastOf(less, PlaceOf(std::max(worst - 1, 0)),
                                                   PlaceOf(std::min(worst + 1, kLooks))));
  }

  const ZoneDistances& farthest() const { return farthest_; }
  double deviation_m() const { return deviation_m_; }

 private:
  static constexpr int kLooks = 32;

  double PlaceOf(int look) const { return ways_.spans().span * look / kLooks; }

  CornerPoint At(double x) const {
    CornerPoint at;
    if (corner_.first.joints != nullptr && corner_.second.joints != nullptr) {
      at.joints = JointZoneAt(ways_, *corner_.first.joints, *corner_.second.joints, x).value;
    }
    if (corner_.of_joints()) {
      at.tool = corner_.screws.At(*at.joints).tool;
      return at;
    }
    const ZoneWays::Place place = ways_.At(x);
    const Frame first = FrameAt(corner_, corner_.first, place.left);
    const Frame second = FrameAt(corner_, corner_.second, place.behind);
    at.tool.position = first.position + (second.position - point_.tool.position);
    at.tool.rotation = second.rotation * Transposed(point_.tool.rotation) * first.rotation;
    return at;
  }

  double DeviationAt(double x) const {
    const Vector3 position = At(x).tool.position;
    return std::min(DistanceFrom(corner_, corner_.first, ways_.spans().before, position),
                    DistanceFrom(corner_, corner_.second, ways_.spans().after, position));
  }

  const Corner& corner_;
  const CornerPoint& point_;
  ZoneWays ways_;
  ZoneDistances farthest_;
  double deviation_m_ = 0;
};

}  // namespace

std::optional<Rounding> RoundingOf(const Corner& corner, const Zone& zone) {
  const CornerPoint point = PointOf(corner);
  double before = ReachOf(corner, point, corner.first, zone);
  double after = ReachOf(corner, point, corner.second, zone);
  CutToShorter(corner, point, zone, before, after);
  const double slope = SlopeOf(corner);
  // Between joints, and between arcs, what is added up may get out of the zone.
  constexpr int kMostTries = 40;
  for (int i = 0; i < kMostTries && std::min(before, after) > kShortest; ++i) {
    const ZoneSpans spans = {before, after, slope * std::min(before, after)};
    const TriedZone tried(corner, point, spans);
    if (IsWithin(tried.farthest(), zone)) {
      return Rounding{spans, tried.farthest(), tried.deviation_m()};
    }
    before *= 0.8;
    after *= 0.8;
  }
  return std::nullopt;
}

std::optional<PathPoint> JointZoneSolver::Solve(double s, const Joints& /*guess*/) const {
  PathPoint point = JointZoneAt(ways_, first_, second_, s - begin_);
  point.s = s;
  return point;
}

double JointZoneSolver::Deviation(double s, const Joints& joints) const {
  return LargestDifference(JointZoneAt(ways_, first_, second_, s - begin_).value, joints);
}

}  // namespace qal
