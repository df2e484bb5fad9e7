#include "corner.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// A zone that is shorter than this is a stop [m of the tool, or what a way has in its place].
constexpr double kShortest = 1e-5;
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
  if (joints && corner.joints) {
    for (size_t j = 0; j < 6; ++j) {
      distances.joint_rad =
          std::max(distances.joint_rad, std::fabs((*joints)[j] - (*corner.joints)[j]));
    }
  }
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
  double a = reach * std::max(nearest - 1, 0) / kLooks;
  double b = reach * std::min(nearest + 1, kLooks) / kLooks;
  for (int i = 0; i < 30; ++i) {
    const double third = (b - a) / 3;
    if (distance(a + third) < distance(b - third)) {
      b -= third;
    } else {
      a += third;
    }
  }
  return std::min(least, distance((a + b) / 2));
}

// A zone as it would be; the joints in it are known where it is one of joints.
struct Tried {
  ZoneDistances farthest;
  double deviation_m = 0;
};

Tried TryOut(const Corner& corner, const CornerPoint& point, const ZoneSpans& spans) {
  const ZoneWays ways(spans);
  constexpr int kLooks = 32;
  Tried tried;
  for (int i = 0; i <= kLooks; ++i) {
    const double x = spans.span * i / kLooks;
    Frame tool;
    std::optional<Joints> joints;
    if (corner.first.joints != nullptr && corner.second.joints != nullptr) {
      joints = JointZoneAt(ways, *corner.first.joints, *corner.second.joints, x).value;
    }
    if (corner.of_joints()) {
      tool = corner.screws.At(*joints).tool;
    } else {
      const ZoneWays::Place place = ways.At(x);
      const Frame first = FrameAt(corner, corner.first, place.left);
      const Frame second = FrameAt(corner, corner.second, place.behind);
      tool.position = first.position + (second.position - point.tool.position);
      tool.rotation = second.rotation * Transposed(point.tool.rotation) * first.rotation;
    }
    const ZoneDistances here = DistancesOf(point, tool, joints);
    tried.farthest.tool_m = std::max(tried.farthest.tool_m, here.tool_m);
    tried.farthest.turn_rad = std::max(tried.farthest.turn_rad, here.turn_rad);
    tried.farthest.joint_rad = std::max(tried.farthest.joint_rad, here.joint_rad);
    tried.deviation_m =
        std::max(tried.deviation_m,
                 std::min(DistanceFrom(corner, corner.first, spans.before, tool.position),
                          DistanceFrom(corner, corner.second, spans.after, tool.position)));
  }
  return tried;
}

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
    const Tried tried = TryOut(corner, point, spans);
    if (IsWithin(tried.farthest, zone)) return Rounding{spans, tried.farthest, tried.deviation_m};
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
  const Joints exact = JointZoneAt(ways_, first_, second_, s - begin_).value;
  double largest = 0;
  for (size_t j = 0; j < 6; ++j) largest = std::max(largest, std::fabs(exact[j] - joints[j]));
  return largest;
}

}  // namespace qal
