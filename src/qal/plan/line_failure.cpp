#include "line_failure.h"

#include <cmath>

#include "../solve/kinematics.h"

namespace qal {

namespace {

// Where a path is looked at in each of its pieces, whose joints bend at most a little.
constexpr int kLooks = 8;

struct Excess {
  double over = 0;  // beyond the nearer limit [rad]; not above 0 within the range
  double value = 0;
  double bound = 0;
};

Excess ExcessOf(const JointModel& joint, double value) {
  const double below = joint.lower_rad.value - value;
  const double above = value - joint.upper_rad.value;
  return below > above ? Excess{below, value, joint.lower_rad.value}
                       : Excess{above, value, joint.upper_rad.value};
}

// Where a joint stops or turns between two places, at which its rates have opposite signs.
double TurningPoint(const JointPath& path, size_t piece, size_t joint, double a, double b) {
  const bool rises = path.At(a, piece).first[joint] > 0;
  for (int i = 0; i < 60 && b - a > 1e-15; ++i) {
    const double middle = (a + b) / 2;
    ((path.At(middle, piece).first[joint] > 0) == rises ? a : b) = middle;
  }
  return (a + b) / 2;
}

}  // namespace

std::optional<PlanFailure> OutOfRange(const Arm& arm, const LinePath& line, const JointPath& path) {
  // Rounding puts a joint that stands at its limit beyond it.
  constexpr double kRoundingRad = 1e-9;
  std::optional<PlanFailure> failure;
  size_t leaves = 0;
  Excess farthest;
  PathPoint inside = path.At(0);
  const auto look = [&](const PathPoint& q) {
    for (size_t j = 0; j < 6; ++j) {
      const Excess excess = ExcessOf(arm.joints()[j], q.value[j]);
      if (!(excess.over > kRoundingRad) || (failure && j != leaves)) continue;
      if (excess.over > farthest.over) farthest = excess;
      if (failure) continue;
      leaves = j;
      failure = PlanFailure{{}, inside.s, {inside.value, line.At(inside.s)}};
    }
    if (!failure) inside = q;
  };
  for (size_t piece = 0; piece < path.size(); ++piece) {
    PathPoint before = path.At(path.begin(piece), piece);
    look(before);
    for (int i = 1; i <= kLooks; ++i) {
      const double s = path.begin(piece) + path.length(piece) * i / kLooks;
      const PathPoint here = path.At(s, piece);
      for (size_t j = 0; j < 6; ++j) {
        if (before.first[j] * here.first[j] < 0) {
          look(path.At(TurningPoint(path, piece, j, before.s, s), piece));
        }
      }
      look(here);
      before = here;
    }
  }
  if (!failure) return std::nullopt;
  failure->error = {Reason::kJointRange, static_cast<int>(leaves), farthest.value, farthest.bound};
  // From the last look inside to the place itself.
  double a = failure->along;
  double b = std::min(1.0, a + 1.0);
  const auto out = [&](double s) {
    return ExcessOf(arm.joints()[leaves], path.At(s).value[leaves]).over > kRoundingRad;
  };
  for (double step = 1e-6; a + step < 1 && !out(b = a + step); step *= 2) a = b;
  for (int i = 0; i < 60; ++i) {
    const double middle = (a + b) / 2;
    (out(middle) ? b : a) = middle;
  }
  failure->along = a;
  failure->before = {path.At(a).value, line.At(a)};
  return failure;
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

PlanFailure NoWayOn(const Arm& arm, const LinePath& line, const PathPoint& last) {
  const double reached = last.s;
  const Joints& joints = last.value;
  PlanFailure failure = {{}, reached, {joints, line.At(reached)}};
  // Beyond the place where the joints get too fast to follow there is the rim, or a pose that only
  // other joints have.
  constexpr double kBeyond = 1e-5;
  const auto reachable = [&](double s) { return Inverse(arm, line.At(s), joints); };
  const double beyond = std::min(1.0, reached + kBeyond);
  if (const auto there = reachable(beyond); !there) {
    failure.error = there.error();
    double a = reached;
    double b = beyond;
    for (int i = 0; i < 12; ++i) {
      const double middle = (a + b) / 2;
      (reachable(middle) ? a : b) = middle;
    }
    failure.along = a;
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
