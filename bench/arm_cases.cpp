#include <benchmark/benchmark.h>
#include <qal/model/solver.h>

#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <string_view>

#include "../io/description.h"
#include "../io/files.h"
#include "../io/limits.h"
#include "../src/kinematics/solve/solver_functions.h"
#include "case.h"

namespace qal::bench {

namespace {

constexpr unsigned kSeed = 20261125;
constexpr double kJointRangeRad = 2.967059678;
constexpr std::string_view kRightAngle = "1.5707963267948966";

std::string TextOf(const std::string& arm) {
  return io::ReadFile(QAL_ARMS_DIR "/" + arm, io::kLargestDescription);
}

// As many write it: near the family, no longer of it.
std::string WithRoundedRightAngles(std::string text) {
  size_t at = 0;
  while ((at = text.find(kRightAngle, at)) != std::string::npos) {
    text.replace(at, kRightAngle.size(), "1.5708");
  }
  return text;
}

ArmDescription Described(const std::string& text) { return io::ParseDescription(text, "arm", {}); }

// Of no family: axis 5, which is y, leans halfway to axis 4.
ArmDescription WithObliqueWrist(ArmDescription arm) {
  arm.joints[4].axis = {std::sqrt(0.5), std::sqrt(0.5), 0};
  return arm;
}

// An arm's solver, with random joints and the poses that it has them in.
struct Solved {
  Solver solver;
  std::vector<Joints> joints;
  std::vector<SolverPose> poses;
};

std::shared_ptr<const Solved> Solve(const ArmDescription& arm, Geometry geometry, size_t poses) {
  const Result<Solver> solver = Solver::ClosedForm(arm, geometry);
  if (!solver) throw std::runtime_error("an arm of the benchmarks has no solver");
  Solved solved{*solver, {}, {}};
  std::mt19937 engine(kSeed);
  std::uniform_real_distribution<double> joint_rad(-kJointRangeRad, kJointRangeRad);
  while (solved.poses.size() < poses) {
    Joints joints;
    for (double& joint : joints) joint = joint_rad(engine);
    SolverPose pose;
    solver->functions().Forward(joints.data(), pose.position, pose.rotation);
    solved.joints.push_back(joints);
    solved.poses.push_back(pose);
  }
  return std::make_shared<const Solved>(std::move(solved));
}

Case Inverse(const std::string& name, Kind kind, const std::shared_ptr<const Solved>& solved) {
  return {name, kind, solved->poses.size(), [solved] {
            size_t done = 0;
            for (const SolverPose& pose : solved->poses) {
              SolutionList list;
              done += solved->solver.functions().Inverse(pose.position, pose.rotation, list);
            }
            return done;
          }};
}

Case Forward(const std::string& name, const std::shared_ptr<const Solved>& solved) {
  return {name, Kind::kPeer, solved->joints.size(), [solved] {
            for (const Joints& joints : solved->joints) {
              SolverPose pose;
              solved->solver.functions().Forward(joints.data(), pose.position, pose.rotation);
              benchmark::DoNotOptimize(pose);
            }
            return solved->joints.size();
          }};
}

}  // namespace

void AddArms(Cases& cases) {
  const auto add_polished = [&cases](const std::string& name, const char* arm) {
    constexpr size_t kPoses = 2000;
    const ArmDescription near = Described(WithRoundedRightAngles(TextOf(arm)));
    cases.push_back(Inverse(name, Kind::kOurs, Solve(near, Geometry::kDescribed, kPoses)));
    cases.push_back(
        Inverse(name + " nominal", Kind::kPeer, Solve(near, Geometry::kNominal, kPoses)));
  };
  add_polished("arm/spherical wrist", "bench_spherical.urdf");
  add_polished("arm/parallel axes", "carrying_parallel.toml");
  const auto add = [&cases](const std::string& name, const ArmDescription& arm, size_t poses) {
    const auto solved = Solve(arm, Geometry::kDescribed, poses);
    cases.push_back(Inverse(name, Kind::kOurs, solved));
    cases.push_back(Forward(name + " forward", solved));
  };
  add("arm/offset wrist", Described(TextOf("laboratory_offset.urdf")), 1000);
  add("arm/oblique wrist", WithObliqueWrist(Described(TextOf("reference.urdf"))), 20);
}

}  // namespace qal::bench
