#include <benchmark/benchmark.h>

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainiksolverpos_nr.hpp>
#include <kdl/chainiksolvervel_wdls.hpp>
#include <kdl/velocityprofile_trap.hpp>
#include <memory>

#include "../tests/solver/urdf_chain.h"
#include "case.h"
#include "plans.h"

namespace qal::bench {

namespace {

constexpr unsigned kIterations = 100;
constexpr double kNewtonEps = 1e-6;
constexpr double kLevenbergEps = 1e-5;

// The arm and its solvers, one of each.
struct Arm {
  KDL::Chain chain = ReadUrdfChain(QAL_ARMS_DIR "/reference.urdf", "tool0");
  KDL::ChainFkSolverPos_recursive forward{chain};
  KDL::ChainIkSolverVel_wdls velocity{chain};
  KDL::ChainIkSolverPos_NR newton{chain, forward, velocity, kIterations, kNewtonEps};
  KDL::ChainIkSolverPos_LMA levenberg{chain, kLevenbergEps};
};

struct Waypoint {
  Joints joints;
  KDL::Frame pose;
};

void Set(KDL::JntArray& array, const double* joints) {
  std::copy(joints, joints + 6, array.data.data());
}

KDL::Frame ToKdl(const SolverPose& pose) {
  KDL::Frame frame;
  std::copy(pose.position, pose.position + 3, frame.p.data);
  std::copy(pose.rotation, pose.rotation + 9, frame.M.data);
  return frame;
}

KDL::Frame ToKdl(const RoadPoint& point) {
  const auto& [w, x, y, z] = point.orientation;
  return {KDL::Rotation::Quaternion(x, y, z, w),
          KDL::Vector(point.position.x, point.position.y, point.position.z)};
}

// Points at equal distances, as many as the ramped line has, each solved from the joints before.
size_t StraightLine(KDL::ChainIkSolverPos& solver, const Move& line) {
  std::vector<Waypoint> road;
  road.reserve(kLineWaypoints);
  KDL::Frame pose = ToKdl(line.start);
  const KDL::Vector start = pose.p;
  const KDL::Vector way = ToKdl(line.end).p - start;
  KDL::JntArray before(6);
  KDL::JntArray joints(6);
  Set(joints, line.start.jointpos);
  size_t solved = 0;
  for (size_t i = 0; i < kLineWaypoints; ++i) {
    pose.p = start + way * (static_cast<double>(i) / static_cast<double>(kLineWaypoints - 1));
    std::swap(before, joints);
    solved += solver.CartToJnt(before, pose, joints) >= 0 ? 1 : 0;
    Waypoint& point = road.emplace_back();
    std::copy(joints.data.data(), joints.data.data() + 6, point.joints.begin());
    point.pose = pose;
  }
  return solved;
}

// As many cycles as our trapezoid takes, in all joints, with the pose at each.
size_t SynchronisedMove(Arm& arm, const Move& move) {
  const size_t cycles = RunCycles(move);
  const double duration = 0.005 * static_cast<double>(cycles);
  std::array<KDL::VelocityProfile_Trap, 6> profiles;
  for (size_t j = 0; j < 6; ++j) {
    profiles[j].SetMax(0.5, 2.0);
    profiles[j].SetProfileDuration(move.start.jointpos[j], move.end.jointpos[j], duration);
  }
  std::vector<Waypoint> road;
  road.reserve(cycles);
  KDL::JntArray joints(6);
  for (size_t i = 1; i <= cycles; ++i) {
    Waypoint& point = road.emplace_back();
    for (size_t j = 0; j < 6; ++j) {
      point.joints[j] = profiles[j].Pos(0.005 * static_cast<double>(i));
    }
    Set(joints, point.joints.data());
    arm.forward.JntToCart(joints, point.pose);
  }
  return road.size();
}

void AddForward(const Workload& work, const std::shared_ptr<Arm>& arm, Cases& cases) {
  const auto each = [&work, arm](auto use) {
    return [&work, arm, use] {
      KDL::JntArray joints(6);
      KDL::Frame frame;
      for (const Joints& q : work.joints) {
        Set(joints, q.data());
        arm->forward.JntToCart(joints, frame);
        use(frame);
      }
      return work.joints.size();
    };
  };
  cases.push_back({"fk/KDL", Kind::kPeer, work.joints.size(),
                   each([](const KDL::Frame& frame) { benchmark::DoNotOptimize(&frame); })});
  cases.push_back(
      {"fk/KDL with quaternion", Kind::kPeer, work.joints.size(), each([](const KDL::Frame& frame) {
         double x, y, z, w;
         frame.M.GetQuaternion(x, y, z, w);
         benchmark::DoNotOptimize(x + y + z + w);
       })});
}

void AddInverse(const Workload& work, const std::shared_ptr<Arm>& arm, Cases& cases) {
  const auto add = [&](const char* name, KDL::ChainIkSolverPos& solver) {
    cases.push_back({name, Kind::kPeer, work.steps.size(), [&work, arm, &solver] {
                       KDL::JntArray from(6);
                       KDL::JntArray joints(6);
                       size_t solved = 0;
                       for (const Step& step : work.steps) {
                         Set(from, step.from.data());
                         const KDL::Frame target = ToKdl(step.solver_target);
                         solved += solver.CartToJnt(from, target, joints) >= 0 ? 1 : 0;
                       }
                       return solved;
                     }});
  };
  add("ik/KDL NR", arm->newton);
  add("ik/KDL LMA", arm->levenberg);
}

void AddMoves(const Workload& work, const std::shared_ptr<Arm>& arm, Cases& cases) {
  const auto add = [&](const char* name, KDL::ChainIkSolverPos& solver) {
    cases.push_back({name, Kind::kPeer, work.lines.size() * kLineWaypoints, [&work, arm, &solver] {
                       size_t waypoints = 0;
                       for (const Move& line : work.lines) {
                         waypoints += StraightLine(solver, line);
                       }
                       return waypoints;
                     }});
  };
  add("line/KDL NR", arm->newton);
  add("line/KDL LMA", arm->levenberg);

  size_t cycles = 0;
  for (const Move& move : work.moves) cycles += RunCycles(move);
  cases.push_back({"joint/KDL trapezoid", Kind::kPeer, cycles, [&work, arm] {
                     size_t waypoints = 0;
                     for (const Move& move : work.moves) waypoints += SynchronisedMove(*arm, move);
                     return waypoints;
                   }});
}

}  // namespace

void AddPeer(const Workload& work, Cases& cases) {
  const auto arm = std::make_shared<Arm>();
  AddForward(work, arm, cases);
  AddInverse(work, arm, cases);
  AddMoves(work, arm, cases);
}

}  // namespace qal::bench
