#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainiksolverpos_nr.hpp>
#include <kdl/chainiksolverpos_nr_jl.hpp>
#include <kdl/chainiksolvervel_wdls.hpp>

#include "../tests/solver/urdf_chain.h"
#include "workload.h"

// How many poses that the reference arm reaches within its joint limits are solved within them,
// from one set of joints, far away from most: ours and Orocos KDL's, as a table of Markdown.
namespace qal::bench {

namespace {

constexpr size_t kPoses = 10000;
constexpr unsigned kIterations = 1000;
constexpr double kEps = 1e-6;
constexpr qal::Joints kHome = {0, -0.2, 0.2, 0, 1.5708, 0};

KDL::JntArray ToKdl(const double* joints) {
  KDL::JntArray array(6);
  std::copy(joints, joints + 6, array.data.data());
  return array;
}

// The flanges of the solutions are compared with the pose, whatever the solver says of itself.
bool Solves(const Arm& arm, const Pose& pose, const qal::Joints& joints) {
  for (size_t j = 0; j < 6; ++j) {
    const JointModel& model = arm.joints()[j];
    if (!(joints[j] >= model.lower_rad.value && joints[j] <= model.upper_rad.value)) return false;
  }
  const Result<Pose> there = Forward(arm, joints);
  if (!there) return false;
  const auto& [x, y, z] = pose.position;
  const auto& [qw, qx, qy, qz] = pose.orientation;
  const auto& [tw, tx, ty, tz] = there->orientation;
  const double off =
      std::hypot(there->position.x - x, there->position.y - y, there->position.z - z);
  return off <= 1e-5 && std::fabs(qw * tw + qx * tx + qy * ty + qz * tz) >= 1 - 1e-9;
}

}  // namespace

}  // namespace qal::bench

int main() {
  using namespace qal::bench;
  const qal::Arm arm = qal::Arm::Reference();
  const Workload work = MakeWorkload(kPoses);
  const KDL::Chain chain = ReadUrdfChain(QAL_ARMS_DIR "/reference.urdf", "tool0");
  KDL::ChainFkSolverPos_recursive forward(chain);
  KDL::ChainIkSolverVel_wdls velocity(chain);
  KDL::JntArray lower(6);
  KDL::JntArray upper(6);
  for (size_t j = 0; j < 6; ++j) {
    lower.data[static_cast<long>(j)] = arm.joints()[j].lower_rad.value;
    upper.data[static_cast<long>(j)] = arm.joints()[j].upper_rad.value;
  }
  KDL::ChainIkSolverPos_NR newton(chain, forward, velocity, kIterations, kEps);
  KDL::ChainIkSolverPos_NR_JL limited(chain, lower, upper, forward, velocity, kIterations, kEps);
  KDL::ChainIkSolverPos_LMA levenberg(chain, 1e-5, static_cast<int>(kIterations));

  size_t ours = 0;
  struct Peer {
    const char* name;
    KDL::ChainIkSolverPos& solver;
    size_t solved = 0;
  } peers[] = {{"KDL NR, wdls", newton},
               {"KDL NR with joint limits, wdls", limited},
               {"KDL LMA", levenberg}};
  const KDL::JntArray home = ToKdl(kHome.data());
  KDL::JntArray found(6);
  for (const Joints& joints : work.joints) {
    const qal::Pose pose = *qal::Forward(arm, joints);
    const qal::Result<qal::State> state = qal::Nearest(arm, pose, kHome);
    ours += state && Solves(arm, pose, state->joints) ? 1 : 0;
    KDL::Frame frame;
    forward.JntToCart(ToKdl(joints.data()), frame);
    for (Peer& peer : peers) {
      if (peer.solver.CartToJnt(home, frame, found) < 0) continue;
      qal::Joints numbers;
      // Whole turns are the same joint.
      for (size_t j = 0; j < 6; ++j) {
        numbers[j] = std::remainder(found.data[static_cast<long>(j)], 2 * 3.14159265358979323846);
      }
      peer.solved += Solves(arm, pose, numbers) ? 1 : 0;
    }
  }
  const auto share = [&](size_t solved) {
    return 100 * static_cast<double>(solved) / static_cast<double>(work.joints.size());
  };
  std::printf(
      "| of %zu poses, from one set of joints | solved within the joint limits |\n| --- | --- |\n",
      work.joints.size());
  std::printf("| qal::Nearest | %.2f %% |\n", share(ours));
  for (const Peer& peer : peers) std::printf("| %s | %.2f %% |\n", peer.name, share(peer.solved));
}
