#include "workload.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "../src/kinematics/ikfast.h"
#include "../src/kinematics/ikfunc.h"
#include "quiet.h"

namespace qal::bench {

namespace {

constexpr unsigned kSeed = 20261124;
constexpr double kJointRangeRad = 2.967059678;
constexpr double kStepM = 1e-3;
constexpr double kLineM = 0.0979;
constexpr double kLeadingTravelRad = 1.02;
// A joint that turns further than this on a step is next to a singularity, or has taken another
// branch.
constexpr double kSmoothStepRad = 0.015;

class Random {
 public:
  Joints AnyJoints() {
    Joints joints;
    for (double& joint : joints) joint = kJointRangeRad * sign_(engine_);
    return joints;
  }

  Pos Displacement(double length) {
    Pos d;
    double norm = 0.0;
    do {
      d = Pos(sign_(engine_), sign_(engine_), sign_(engine_));
      norm = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    } while (norm > 1.0 || norm < 0.1);
    const double scale = length / norm;
    return Pos(d.x * scale, d.y * scale, d.z * scale);
  }

  double Fraction() { return sign_(engine_); }

 private:
  std::mt19937 engine_{kSeed};
  std::uniform_real_distribution<double> sign_{-1.0, 1.0};
};

RoadPoint At(const Joints& joints) {
  RoadPoint point;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  (void)Ikfunc::ArmFk(point);  // finite joints have a pose
  return point;
}

Step MakeStep(const RoadPoint& start, const Pos& by) {
  Step step;
  std::copy(start.jointpos, start.jointpos + 6, step.from.begin());
  ikfast::ComputeFk(step.from.data(), step.solver_target.position, step.solver_target.rotation);
  step.solver_target.position[0] += by.x;
  step.solver_target.position[1] += by.y;
  step.solver_target.position[2] += by.z;
  step.start = start;
  step.target = start;
  step.target.position = start.position + by;
  return step;
}

// Whether the solver reaches the target itself, with joints close by; sets `reached` to them.
bool IsSmooth(const Step& step, RoadPoint& reached) {
  ikfast::IkSolutionList<double> solutions;
  if (!ikfast::ComputeIk(step.solver_target.position, step.solver_target.rotation, nullptr,
                         solutions)) {
    return false;
  }
  reached = step.target;
  Joints from = step.from;
  if (!Ikfunc::ArmIk(reached, from.data())) return false;
  for (size_t j = 0; j < from.size(); ++j) {
    if (!(std::fabs(reached.jointpos[j] - from[j]) <= kSmoothStepRad)) return false;
  }
  return true;
}

// Whether the arm can be jogged along and about every tool axis.
bool CanJog(RoadPoint start) {
  constexpr int kToolFrame = 1;
  RoadPoint reached;
  for (int mode = 0; mode < 6; ++mode) {
    if (!Ikfunc::ArmIk(start, kToolFrame, mode, kJogStep, reached)) return false;
  }
  return true;
}

// Whether all of the line is smooth; solves its end.
bool SolveLine(Move& line) {
  const int count = static_cast<int>(std::ceil(kLineM / kStepM));
  const Pos way = line.end.position - line.start.position;
  const Pos by(way.x / count, way.y / count, way.z / count);
  RoadPoint point = line.start;
  for (int i = 0; i < count; ++i) {
    if (!IsSmooth(MakeStep(point, by), point)) return false;
  }
  std::copy(point.jointpos, point.jointpos + 6, line.end.jointpos);
  line.end.ik_flag = true;
  return true;
}

}  // namespace

Workload MakeWorkload(size_t poses) {
  const Quiet quiet;
  Random random;
  Workload work;
  while (work.joints.size() < poses) work.joints.push_back(random.AnyJoints());
  RoadPoint reached;
  while (work.steps.size() < poses) {
    const Step step = MakeStep(At(random.AnyJoints()), random.Displacement(kStepM));
    if (IsSmooth(step, reached) && CanJog(step.start)) work.steps.push_back(step);
  }
  const size_t trajectories = std::max<size_t>(poses / kLineWaypoints, 1);
  while (work.lines.size() < trajectories) {
    const RoadPoint start = At(random.AnyJoints());
    Move line{start, start};
    line.end.position = start.position + random.Displacement(kLineM);
    if (SolveLine(line)) work.lines.push_back(line);
  }
  while (work.moves.size() < trajectories) {
    const Joints start = random.AnyJoints();
    Joints end = start;
    end[0] += start[0] < 0.0 ? kLeadingTravelRad : -kLeadingTravelRad;
    for (size_t j = 1; j < end.size(); ++j) end[j] += 0.8 * kLeadingTravelRad * random.Fraction();
    work.moves.push_back({At(start), At(end)});
  }
  return work;
}

}  // namespace qal::bench
