#include <benchmark/benchmark.h>

#include <cmath>

#include "../src/kinematics/ikfast.h"
#include "../src/kinematics/ikfunc.h"
#include "case.h"

namespace qal::bench {

namespace {

using SolutionList = ikfast::IkSolutionList<double>;

// As many solutions as most poses have.
constexpr int kSolutions = 8;
// A bound as a ramped line sets it [rad].
constexpr double kBoundRad = 0.518;
// Far out of reach, straight up [m].
constexpr double kAwayM = 3.0;

// A case that does `operation` on every one of `items`.
template <typename Item, typename Operation>
Case Each(const char* name, Kind kind, const std::vector<Item>& items, Operation operation) {
  return {name, kind, items.size(), [&items, operation] {
            size_t done = 0;
            for (const Item& item : items) done += operation(item) ? 1 : 0;
            return done;
          }};
}

// What no forward kinematics of six revolute joints does without: sine and cosine of six angles,
// the rotations of the arm and of the wrist, their product, and the position along their columns.
bool Floor(const Joints& joints) {
  double s[6];
  double c[6];
  for (size_t j = 0; j < 6; ++j) ::sincos(joints[j], &s[j], &c[j]);
  const double cos_pitch = c[1] * c[2] - s[1] * s[2];
  const double sin_pitch = s[1] * c[2] + c[1] * s[2];
  const double arm[3][3] = {{c[0] * cos_pitch, -s[0], c[0] * sin_pitch},
                            {s[0] * cos_pitch, c[0], s[0] * sin_pitch},
                            {-sin_pitch, 0.0, cos_pitch}};
  const double c4s5 = c[3] * s[4];
  const double s4c5 = s[3] * c[4];
  const double c4c5 = c[3] * c[4];
  const double wrist[3][3] = {{c4c5 * c[5] - s[3] * s[5], -c4c5 * s[5] - s[3] * c[5], c4s5},
                              {s4c5 * c[5] + c[3] * s[5], -s4c5 * s[5] + c[3] * c[5], s[3] * s[4]},
                              {-s[4] * c[5], s[4] * s[5], c[4]}};
  double rotation[9];
  double position[3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      rotation[3 * i + j] =
          arm[i][0] * wrist[0][j] + arm[i][1] * wrist[1][j] + arm[i][2] * wrist[2][j];
    }
    position[i] = 0.4 * arm[i][0] + 0.38 * arm[i][2] + 0.08 * rotation[3 * i + 2];
  }
  benchmark::DoNotOptimize(rotation);
  benchmark::DoNotOptimize(position);
  return true;
}

bool FillContainer(const std::vector<ikfast::IkSingleDOFSolutionBase<double>>& joints) {
  const std::vector<int> no_free;
  SolutionList list;
  ikfast::IkSolutionListBase<double>* solver_side = &list;
  benchmark::DoNotOptimize(solver_side);  // virtual calls, as a solver makes them
  for (int i = 0; i < kSolutions; ++i) (void)solver_side->AddSolution(joints, no_free);
  return solver_side->GetNumSolutions() == kSolutions;
}

void AddForward(const Workload& work, Cases& cases) {
  cases.push_back(Each("fk/floor", Kind::kPeer, work.joints, Floor));
  cases.push_back(Each("fk/solver", Kind::kOurs, work.joints, [](const Joints& joints) {
    SolverPose pose;
    ikfast::ComputeFk(joints.data(), pose.position, pose.rotation);
    benchmark::DoNotOptimize(pose);
    return true;
  }));
  cases.push_back(Each("fk/ArmFk", Kind::kOurs, work.joints, [](Joints joints) {
    Pos position;
    Ori orientation;
    return Ikfunc::ArmFk(position, orientation, joints.data());
  }));
}

void AddInverse(const Workload& work, Cases& cases) {
  cases.push_back(Each("ik/container", Kind::kOurs, work.steps, [](const Step&) {
    static const std::vector<ikfast::IkSingleDOFSolutionBase<double>> joints(6);
    return FillContainer(joints);
  }));
  cases.push_back(Each("ik/solver", Kind::kOurs, work.steps, [](const Step& step) {
    SolutionList list;
    return ikfast::ComputeIk(step.solver_target.position, step.solver_target.rotation, nullptr,
                             list);
  }));
  cases.push_back(Each("ik/ArmIk", Kind::kOurs, work.steps, [](const Step& step) {
    RoadPoint point = step.target;
    return Ikfunc::ArmIk(point, point.jointpos);
  }));
  cases.push_back(Each("ik/ArmIk pose known", Kind::kOurs, work.steps, [](const Step& step) {
    RoadPoint point = step.start;
    return Ikfunc::ArmIk(point, point.jointpos);
  }));
  cases.push_back(Each("ik/ArmJointIk", Kind::kOurs, work.steps, [](const Step& step) {
    RoadPoint point = step.target;
    return Ikfunc::ArmJointIk(point, point.jointpos, kBoundRad);
  }));
  cases.push_back(Each("ik/ArmJointIk fallback", Kind::kOurs, work.steps, [](const Step& step) {
    RoadPoint point = step.target;
    point.position.z += kAwayM;
    return Ikfunc::ArmJointIk(point, point.jointpos, kBoundRad);
  }));
  cases.push_back(Each("ik/ArmLineMoveIk", Kind::kOurs, work.steps, [](const Step& step) {
    RoadPoint point = step.target;
    return Ikfunc::ArmLineMoveIk(point, Pos(), point.jointpos, kBoundRad);
  }));
}

void AddJog(const Workload& work, Cases& cases) {
  constexpr int kToolFrame = 1;
  for (const auto& [name, mode] : {std::pair("jog/along an axis", 0), {"jog/about an axis", 3}}) {
    cases.push_back(Each(name, Kind::kOurs, work.steps, [first = mode](const Step& step) {
      // Axis by axis in turn, by a digit that has nothing to do with the pose's.
      const int axis = static_cast<int>(std::fabs(step.from[0]) * 1e6) % 3;
      RoadPoint point = step.start;
      return Ikfunc::ArmIk(point, kToolFrame, first + axis, kJogStep, point);
    }));
  }
}

}  // namespace

void AddKinematics(const Workload& work, Cases& cases) {
  AddForward(work, cases);
  AddInverse(work, cases);
  AddJog(work, cases);
}

}  // namespace qal::bench
