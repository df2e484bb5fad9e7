#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "qal/model/closed_form_model.h"
#include "qal/model/described_chain.h"
#include "qal/model/general_arm.h"

namespace qal {
namespace {

using closed_form::GeneralArm;
using closed_form::Solutions;

class Random {
 public:
  double operator()(double most) { return most * range_(engine_); }
  Joints AnyJoints() {
    Joints joints;
    for (double& joint : joints) joint = (*this)(kPi);
    return joints;
  }

 private:
  std::mt19937 engine_{20261125};
  std::uniform_real_distribution<double> range_{-1, 1};
};

double Apart(const Joints& a, const Joints& b) {
  double most = 0;
  for (size_t j = 0; j < 6; ++j) {
    most = std::max(most, std::fabs(std::remainder(a[j] - b[j], 2 * kPi)));
  }
  return most;
}

// How many solutions lie within 1e-6 rad of joints.
int CountAt(const Solutions& solutions, const Joints& joints) {
  return static_cast<int>(std::count_if(solutions.begin(), solutions.end(), [&](const Joints& one) {
    return Apart(one, joints) <= 1e-6;
  }));
}

// Each solution is counted once, and takes the target as the described transforms have it.
void ExpectSound(const ArmDescription& arm, const Frame& target, const Solutions& solutions) {
  for (const Joints& joints : solutions) {
    EXPECT_TRUE(AreWithin(1e-10, ToFrame(TipFrame(arm, joints)), target));
    EXPECT_EQ(CountAt(solutions, joints), 1);
    for (const double joint : joints) EXPECT_LE(std::fabs(joint), kPi);
  }
}

// Joints by bits, from bit 1.
constexpr unsigned Bits(int a, int b = 0, int c = 0) { return (1u << a | 1u << b | 1u << c) & ~1u; }

struct Row {
  const char* what;
  unsigned parallel;  // joints whose axis is parallel to the one before
  unsigned meeting;   // joints whose origin is that of the one before
  double off;         // by how much they aren't [m] and [rad]
  int solutions;      // complex ones; 0: singular everywhere
};

ArmDescription Describe(const Row& row, Random& random) {
  ArmDescription arm;
  for (int j = 1; j <= 6; ++j) {
    const double across = (row.parallel >> j & 1) != 0 ? row.off : kPi;
    const double apart = (row.meeting >> j & 1) != 0 ? row.off : 0.4;
    Transform& origin = arm.joints[static_cast<size_t>(j - 1)].origin;
    origin = FromRollPitchYaw({random(across), random(across), random(kPi)});
    origin.position = {random(apart), random(apart), random(apart)};
  }
  arm.tip_in_last.position = {0.1, 0, 0.05};
  return arm;
}

// 600 random joint sets of each arm: its own solutions have to hold them.
TEST(GeneralArm, FindsAnyJointsWhateverTheAxes) {
  const Row rows[] = {
      {"anywhere", 0, 0, 0, 16},
      {"1 to 3 parallel", Bits(2, 3), 0, 0, 8},
      {"3 to 5 parallel", Bits(4, 5), 0, 0, 8},
      {"4 to 6 meet", 0, Bits(5, 6), 0, 8},
      {"2 and 3 parallel, 4 and 5 meet", Bits(3), Bits(5), 0, 16},
      {"5 and 6 parallel", Bits(6), 0, 0, 16},
      {"4 to 6 nearly meet", 0, Bits(5, 6), 3e-3, 16},
      {"2 to 4 nearly parallel", Bits(3, 4), 0, 3e-3, 16},
      {"2 and 3 coincide", Bits(3), Bits(3), 0, 0},
      {"5 and 6 coincide but for rounding", Bits(6), Bits(6), 1e-4, 0},
      {"1 to 4 parallel", Bits(2, 3, 4), 0, 0, 0},
      {"3 to 6 meet", 0, Bits(4, 5, 6), 0, 0},
  };
  Random random;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const ArmDescription arm = Describe(row, random);
    const closed_form::Chain chain = MakeChain(arm, AxesOf(arm)[4].point);
    EXPECT_EQ(IsSingularEverywhere(chain), row.solutions == 0);
    if (row.solutions == 0) continue;
    const auto solver = std::make_unique<GeneralArm>(MakeGeneralArm(chain));
    EXPECT_EQ(solver->start.count, row.solutions);
    for (int n = 0; n < 600; ++n) {
      const Joints joints = random.AnyJoints();
      const Frame target = ToFrame(TipFrame(arm, joints));
      const Solutions solutions = Solve(*solver, target);
      EXPECT_EQ(CountAt(solutions, joints), 1);
      EXPECT_EQ(solutions.Count() % 2, 0u);
      ExpectSound(arm, target, solutions);
    }
  }
}

// An arm that has a closed form as well: nothing more is found, and nothing less, within and out of
// reach and 1e-3 rad beside the singularities of elbow and wrist.
TEST(GeneralArm, FindsWhatTheClosedFormFinds) {
  const double right = kPi / 2;
  ArmDescription arm;
  const Vec3 positions[] = {{0, 0, 0.3},  {0.1, 0, 0.1}, {0, 0.4, 0},
                            {0, 0.05, 0}, {0, 0, 0.35},  {}};
  const double rolls[] = {0, -right, 0, -right, right, -right};
  for (size_t j = 0; j < 6; ++j) {
    arm.joints[j].origin = FromRollPitchYaw({rolls[j], 0, 0});
    arm.joints[j].origin.position = positions[j];
  }
  const auto closed_form = std::get<closed_form::SphericalWristArm>(MakeModel(arm)->model);
  const GeneralArm solver =
      MakeGeneralArm(MakeChain(arm, MeetingOf(AxesOf(arm)[4], AxesOf(arm)[3]).point));
  Random random;
  size_t found = 0;
  for (int n = 0; n < 400; ++n) {
    Joints joints = random.AnyJoints();
    if (n % 4 == 1) joints[4] = 1e-3;
    // The forearm's 0.35 m and 0.05 m across in line with the upper arm.
    if (n % 4 == 2) joints[2] = std::atan2(0.05, 0.35) + 1e-3;
    Frame target = ToFrame(TipFrame(arm, joints));
    if (n % 4 == 3) target.position = {{random(1), random(1), random(1)}};
    const Solutions expected = Solve(closed_form, target);
    const Solutions solutions = Solve(solver, target);
    EXPECT_EQ(solutions.Count(), expected.Count()) << n;
    for (const Joints& one : expected) EXPECT_EQ(CountAt(solutions, one), 1) << n;
    ExpectSound(arm, target, solutions);
    found += solutions.Count();
    // A matrix of nine decimals is no less a rotation to either.
    for (auto& row : target.rotation.row) {
      for (double& element : row.element) element = std::round(element * 1e9) / 1e9;
    }
    if (n % 4 == 0) {
      EXPECT_EQ(Solve(solver, target).Count(), expected.Count()) << n;
    }
  }
  EXPECT_GT(found, 1500u);
  for (const double value : {1e3, 1e200, HUGE_VAL, std::nan("")}) {
    Frame target = ToFrame(TipFrame(arm, {}));
    target.position.element[1] = value;
    EXPECT_EQ(Solve(solver, target).Count(), 0u) << value;
  }
}

// With axes 1 to 3 parallel, joints 4 to 6 alone tilt the tool and move it along these: not in all
// ways where what they do is of two dimensions, found by halving between two joint sets. A pose
// then has double solutions or infinitely many, of which some are found.
TEST(GeneralArm, SolvesSingularPoses) {
  Random random;
  const ArmDescription arm = Describe({"", Bits(2, 3), 0, 0, 8}, random);
  const closed_form::Chain chain = MakeChain(arm, AxesOf(arm)[4].point);
  const GeneralArm solver = MakeGeneralArm(chain);
  const auto volume = [&](const Joints& joints) {
    closed_form::SinCos<double> sincos[6];
    ChainSinCos(chain, joints.data(), sincos);
    const auto pose = PoseOf(chain, sincos);
    const auto column = [&](int j) {
      return Vector3{{pose.axis[j][0], pose.axis[j][1], Cross(pose.point[j], pose.axis[j])[2]}};
    };
    return Dot(column(3), Cross(column(4), column(5)));
  };
  for (int n = 0; n < 200; ++n) {
    Joints joints = random.AnyJoints();
    Joints other = random.AnyJoints();
    if (volume(joints) * volume(other) > 0) continue;
    for (int halving = 0; halving < 60; ++halving) {
      Joints middle;
      for (size_t j = 0; j < 6; ++j) middle[j] = (joints[j] + other[j]) / 2;
      (volume(middle) * volume(joints) > 0 ? joints : other) = middle;
    }
    const Frame target = ToFrame(TipFrame(arm, joints));
    const Solutions solutions = Solve(solver, target);
    EXPECT_GT(solutions.Count(), 0u) << n;
    ExpectSound(arm, target, solutions);
  }
}

}  // namespace
}  // namespace qal
