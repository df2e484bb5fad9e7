// The solving code with every number of lanes that the processor has: always the same bits.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "../../solver/closed_form/block.h"
#include "../../solver/closed_form/parallel_axes.h"
#include "../../solver/reference_arm.h"

namespace qal::closed_form {
namespace {

// The wrist's centre off axis 1's plane, axis 4 not at right angles to axis 3, a joint that counts
// backwards: what the reference arm is not.
SphericalWristArm ObliqueArm() {
  SphericalWristArm arm = reference_arm::kArm;
  arm.body.lateral = 0.07;
  arm.body.direction[2] = -1;
  arm.body.zero[4] = 0.3;
  arm.skew = {0.6, 0.8};
  return arm;
}

ParallelAxesArm ParallelArm() {
  ParallelAxesArm arm = {reference_arm::kArm.body, 0.01, 0.0997};
  arm.body.lateral = -0.1333;
  arm.body.zero[1] = -1.2;
  return arm;
}

class Draws {
 public:
  double Within(double most) {
    return std::uniform_real_distribution<double>(-most, most)(random_);
  }
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

  /// Anything, or of every two one at or beside whole eighths of a turn, where arms are singular.
  Joints SomeJoints() {
    Joints joints;
    const bool odd = Below(2) == 0;
    for (double& joint : joints) {
      joint = Within(3.1);
      if (odd && Below(2) == 0) joint = (Below(9) - 4) * kPi / 4;
      if (odd && Below(4) == 0) joint += std::pow(10.0, -Below(17));
    }
    return joints;
  }

  /// A frame made into one that is out of reach, at the limit of it, infinite or no frame.
  void Spoil(Frame& frame) {
    double& x = frame.position.element[Below(3)];
    double& r = frame.rotation.row[Below(3)].element[Below(3)];
    switch (Below(16)) {
      case 0:
        x *= 1.5;
        break;
      case 1:
        x += Within(1e-12);
        break;
      case 2:
        x = std::nan("");
        break;
      case 3:
        x = HUGE_VAL;
        break;
      case 4:
        x = 1e200;
        break;
      case 5:
        r += 1e-9;
        break;
      case 6:
        r += 1e-7;
        break;
      case 7:
        r = std::nan("");
        break;
      case 8:
        frame.position.element[0] = frame.position.element[1] = 0;
        break;
      default:
        break;
    }
  }

 private:
  std::mt19937_64 random_{20261126};
};

// Widths that can be tried here; 2 is what the others are held against.
std::vector<int> Widths() {
  std::vector<int> widths = {2};
  for (int lanes = 4; lanes <= WidestLanes(); lanes *= 2) widths.push_back(lanes);
  return widths;
}

template <class Arm>
Solutions SolveInTwo(const Arm& arm, const Frame& target) {
  Solutions solutions;
  bool unsettled = false;
  const Arm* const held = &arm;
  FirstChoice::Run<2>(held, target, solutions, unsettled);
  if (unsettled) TryRotations(arm, target, solutions);
  return solutions;
}

bool IsSound(const Frame& frame) {
  const Vector<double>& p = frame.position;
  return IsRotation(frame.rotation) && std::isfinite(p[0]) && std::isfinite(p[1]) &&
         std::isfinite(p[2]);
}

bool SameBits(const double* a, const double* b, size_t count) {
  return std::memcmp(a, b, count * sizeof *a) == 0;
}

template <class Arm>
class EveryWidth : public testing::Test {
 public:
  static Arm Make() {
    if constexpr (std::is_same_v<Arm, SphericalWristArm>) return ObliqueArm();
    if constexpr (std::is_same_v<Arm, ParallelAxesArm>) return ParallelArm();
  }
  static constexpr int kPoses = 8000;
};
using Arms = testing::Types<SphericalWristArm, ParallelAxesArm>;
TYPED_TEST_SUITE(EveryWidth, Arms);

TYPED_TEST(EveryWidth, SolvesOneTargetToTheBitsOfTwoLanes) {
  const TypeParam arm = this->Make();
  const TypeParam* const held = &arm;
  Draws draws;
  size_t found = 0;
  for (int i = 0; i < this->kPoses; ++i) {
    Frame target = Forward(arm, draws.SomeJoints().data());
    draws.Spoil(target);
    if (!IsSound(target)) continue;
    const Solutions expected = SolveInTwo(arm, target);
    for (const int lanes : Widths()) {
      Solutions solutions;
      bool unsettled = false;
      RunInLanes<FirstChoice, 4>(lanes, held, target, solutions, unsettled);
      if (unsettled) TryRotations(arm, target, solutions);
      ASSERT_EQ(expected.Count(), solutions.Count()) << lanes << " lanes, pose " << i;
      ASSERT_TRUE(
          SameBits(expected.begin()->data(), solutions.begin()->data(), 6 * expected.Count()))
          << lanes << " lanes, pose " << i;
    }
    found += expected.Count();
  }
  EXPECT_GT(found, 3U * static_cast<unsigned>(this->kPoses));
}

TYPED_TEST(EveryWidth, SolvesABlockToTheBitsOfItsTargets) {
  const TypeParam arm = this->Make();
  for (const int lanes : Widths()) {
    Draws draws;
    for (int i = 0; i < this->kPoses; i += kBlock) {
      Frame targets[kBlock];
      FrameBlock block;
      for (int k = 0; k < kBlock; ++k) {
        targets[k] = Forward(arm, draws.SomeJoints().data());
        draws.Spoil(targets[k]);
        for (int n = 0; n < 3; ++n) block.position[n][k] = targets[k].position[n];
        for (int n = 0; n < 9; ++n) block.rotation[n][k] = targets[k].rotation[n / 3][n % 3];
      }
      WaysBlock ways;
      RunInLanes<SolveBlock, kBlock>(lanes, arm, block, ways);
      for (int k = 0; k < kBlock; ++k) {
        const Solutions expected = IsSound(targets[k]) ? SolveInTwo(arm, targets[k]) : Solutions();
        if (ways.alone[k] != 0) continue;
        Solutions solutions;
        for (int way = 0; way < 8; ++way) {
          if (ways.reached[way][k] == 0) continue;
          Joints joints;
          for (size_t j = 0; j < 6; ++j) joints[j] = ways.way[way].joint[j][k];
          solutions.Add(joints);
        }
        ASSERT_EQ(expected.Count(), solutions.Count()) << lanes << " lanes, pose " << i + k;
        ASSERT_TRUE(
            SameBits(expected.begin()->data(), solutions.begin()->data(), 6 * expected.Count()))
            << lanes << " lanes, pose " << i + k;
      }
    }
  }
}

TYPED_TEST(EveryWidth, GivesTheFramesOfABlock) {
  const TypeParam arm = this->Make();
  for (const int lanes : Widths()) {
    Draws draws;
    for (int i = 0; i < this->kPoses; i += kBlock) {
      Joints joints[kBlock];
      JointsBlock block;
      for (int k = 0; k < kBlock; ++k) {
        joints[k] = draws.SomeJoints();
        // The first is within what the polynomials take, the others are not.
        constexpr double kOdd[] = {99900, 100100, 1e30, HUGE_VAL};
        if (draws.Below(4) == 0) joints[k][static_cast<size_t>(draws.Below(6))] = kOdd[k % 4];
        for (size_t j = 0; j < 6; ++j) block.joint[j][k] = joints[k][j];
      }
      FrameBlock frames;
      BlockFlags alone;
      RunInLanes<ForwardBlock, kBlock>(lanes, arm, block, frames, alone);
      for (int k = 0; k < kBlock; ++k) {
        const bool large =
            std::any_of(joints[k].begin(), joints[k].end(), [](double q) { return q > 1e5; });
        ASSERT_EQ(large, alone[k] != 0);
        if (large) continue;
        const Frame frame = Forward(arm, joints[k].data());
        for (int n = 0; n < 9; ++n) {
          ASSERT_TRUE(SameBits(&frame.rotation[n / 3][n % 3], &frames.rotation[n][k], 1));
          ASSERT_TRUE(SameBits(&frame.position[n % 3], &frames.position[n % 3][k], 1));
        }
      }
    }
  }
}

}  // namespace
}  // namespace qal::closed_form
