#include "path_failure.h"

#include <algorithm>
#include <vector>

#include "../solve/kinematics.h"
#include "joint_limits.h"

namespace qal {

namespace {

// Where a joint turns back between two places, at which its rates have opposite signs.
double TurningPoint(const JointPath& path, size_t piece, size_t joint, double a, double b) {
  const bool rises = path.At(a, piece).first[joint] > 0;
  for (int i = 0; i < 60; ++i) {
    const double middle = (a + b) / 2;
    ((path.At(middle, piece).first[joint] > 0) == rises ? a : b) = middle;
  }
  return a;
}

// Places in the order of s, close together, and with all that joints turn back at.
std::vector<PathPoint> PointsOf(const JointPath& path, size_t first) {
  constexpr int kLooks = 8;
  std::vector<PathPoint> points = {path.At(path.begin(first), first)};
  std::vector<double> turns;
  for (size_t piece = first; piece < path.size(); ++piece) {
    for (int i = 1; i <= kLooks; ++i) {
      const PathPoint before = points.back();
      const double s = path.begin(piece) + path.length(piece) * i / kLooks;
      const PathPoint here = path.At(s, piece);
      turns.clear();
      for (size_t j = 0; j < 6; ++j) {
        if (!(before.first[j] * here.first[j] < 0)) continue;
        turns.push_back(TurningPoint(path, piece, j, before.s, s));
      }
      std::sort(turns.begin(), turns.end());
      for (const double turn : turns) points.push_back(path.At(turn, piece));
      points.push_back(here);
    }
  }
  return points;
}

}  // namespace

std::optional<PlanFailure> LeavesRange(const Arm& arm, const JointPath& path, size_t first) {
  if (first >= path.size()) return std::nullopt;
  const std::vector<PathPoint> points = PointsOf(path, first);
  const auto out = [&arm](size_t joint, const PathPoint& point) {
    return Outside(arm.joints()[joint], point.value[joint]) > kRangeRoundingRad;
  };
  size_t joint = 0;
  const auto leaves = [&](const PathPoint& point) {
    for (joint = 0; joint < 6; ++joint) {
      if (out(joint, point)) return true;
    }
    return false;
  };
  const auto left = std::find_if(points.begin(), points.end(), leaves);
  if (left == points.end()) return std::nullopt;

  double inside = left == points.begin() ? left->s : (left - 1)->s;
  double outside = left->s;
  for (int i = 0; i < 60; ++i) {
    const double middle = (inside + outside) / 2;
    (out(joint, path.At(middle)) ? outside : inside) = middle;
  }
  const auto nearer = [&](const PathPoint& a, const PathPoint& b) {
    const JointModel& model = arm.joints()[joint];
    return Outside(model, a.value[joint]) < Outside(model, b.value[joint]);
  };
  const double farthest = std::max_element(left, points.end(), nearer)->value[joint];
  PlanFailure failure;
  failure.error = OutOfRange(static_cast<int>(joint), arm.joints()[joint], farthest);
  failure.along = inside;
  failure.before = {path.At(inside).value, {}};
  if (const auto pose = Forward(arm, failure.before.joints)) failure.before.pose = *pose;
  return failure;
}

double SmallestMargin(const Arm& arm, const JointPath& path) {
  double margin_rad = std::numeric_limits<double>::infinity();
  for (const PathPoint& point : PointsOf(path, 0)) {
    margin_rad = std::min(margin_rad, SmallestMargin(arm, point.value));
  }
  return margin_rad;
}

namespace {

const char* SingularityOf(const Singularities& distances) {
  // About how near one is where a path can't be followed past it, far from where one can.
  constexpr double kNearRad = 0.05;
  constexpr double kNearM = 0.02;
  if (distances.wrist_rad < kNearRad) return "wrist";
  if (distances.elbow_rad < kNearRad) return "elbow";
  if (distances.shoulder_m < kNearM) return "shoulder";
  return "";
}

}  // namespace

PlanFailure NoWayOn(const Arm& arm, const ToolPath& path, double begin, const PathPoint& last) {
  const double reached = last.s - begin;
  const Joints& joints = last.value;
  PlanFailure failure = {{}, last.s, {joints, path.PoseAt(reached)}};
  // Beyond the place where the joints get too fast to follow there is the rim, or a pose that only
  // other joints have.
  constexpr double kBeyond = 1e-5;
  const auto reachable = [&](double x) { return Inverse(arm, path.PoseAt(x), joints); };
  const double beyond = std::min(path.span(), reached + kBeyond * path.span());
  if (const auto there = reachable(beyond); !there) {
    failure.error = there.error();
    double a = reached;
    double b = beyond;
    for (int i = 0; i < 12; ++i) {
      const double middle = (a + b) / 2;
      (reachable(middle) ? a : b) = middle;
    }
    failure.along = begin + a;
    return failure;
  }
  failure.error = {Reason::kSingularity};
  if (const auto distances = DistanceToSingularities(arm, joints)) {
    failure.error.value = distances->smallest_singular_value;
    failure.error.detail = SingularityOf(*distances);
  }
  return failure;
}

}  // namespace qal
