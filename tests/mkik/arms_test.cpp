#include "../qal/arms.h"

#include <algorithm>
#include <kdl/chainfksolverpos_recursive.hpp>

#include "../../io/document.h"
#include "../../io/files.h"
#include "../../solver/reference_arm.h"
#include "../../src/qal/model/chain.h"
#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/frames.h"
#include "../solver/urdf_chain.h"

namespace qal {
namespace {

using closed_form::Solutions;

double FrameDifference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = std::max(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = std::max(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

class EveryArm : public testing::TestWithParam<const char*> {
 protected:
  Frame Forward(const Joints& q) const {
    return std::visit([&](const auto& a) { return closed_form::Forward(a, q.data()); }, model_);
  }

  Solutions Solve(const Frame& target) const {
    return std::visit([&](const auto& a) { return closed_form::Solve(a, target); }, model_);
  }

  // At least one solution; each reaches the target, lies in (-pi, pi] and stands once.
  void ExpectSound(const Solutions& solutions, const Frame& target, double tolerance) const {
    ASSERT_GT(solutions.Count(), 0u);
    for (const Joints& solution : solutions) {
      ASSERT_LE(FrameDifference(Forward(solution), target), tolerance);
      for (const double joint : solution) ASSERT_TRUE(joint > -kPi && joint <= kPi);
      for (const Joints* other = solutions.begin(); other != &solution; ++other) {
        ASSERT_GT(LargestDifference(solution, *other), 1e-8);
      }
    }
  }

  // The x of the wrist's centre in the arm's frame: 0 on axis 1, or where the arm just gets to it.
  double Forwardness(const Joints& q) const {
    const closed_form::Body& body = BodyOf(model_);
    const Frame tip = Forward(q);
    const Vector3 centre = Transposed(body.base.rotation) *
                           (tip.position + tip.rotation * body.centre_in_tool - body.base.position);
    const double angle1 = body.direction[0] * q[0] + body.zero[0];
    return centre[0] * std::cos(angle1) + centre[1] * std::sin(angle1);
  }

  // Changes joint 2 so that the wrist's centre comes there. False when that joint can't do it.
  bool PutOverAxis1(Joints& q) {
    Joints low = q;
    Joints high = q;
    for (int i = 0; i < 100; ++i) {
      low[1] = random_()[1];
      high[1] = random_()[1];
      if (Forwardness(low) < 0 && Forwardness(high) > 0) break;
    }
    if (!(Forwardness(low) < 0 && Forwardness(high) > 0)) return false;
    for (int i = 0; i < 100; ++i) {
      q[1] = (low[1] + high[1]) / 2;
      (Forwardness(q) < 0 ? low[1] : high[1]) = q[1];
    }
    return true;
  }

  RandomJoints random_{2.967059678};
  const ArmDescription arm_ = Describe(GetParam());
  const Model model_ = MakeModel(arm_).value();
};

// Wrist (model angle 5), elbow (model angle 3) and shoulder, alone and together, on the spot and
// 1e-16 to 1e-4 rad from it; the other joints anywhere or at right angles.
TEST_P(EveryArm, AnswersSingularPosesWithJointsThatReachThem) {
  const closed_form::Body& body = BodyOf(model_);
  const auto put = [&](Joints& q, size_t j, double angle) {
    q[j] = body.direction[j] * (angle - body.zero[j]);
  };
  int shoulders = 0;
  for (int i = 0; i < 7000; ++i) {
    Joints joints = random_();
    if (i % 3 == 0) {
      for (size_t j = 0; j < 6; ++j) put(joints, j, std::round(joints[j] / kPi * 2) * kPi / 2);
    }
    const int kind = 1 + i % 7;  // a bit each: wrist, elbow, shoulder
    const double off = i % 13 == 0 ? 0.0 : std::pow(10.0, -17 + i % 13) * (i % 4 < 2 ? 1 : -1);
    if (kind & 1) put(joints, 4, (i % 5 < 2 ? 0 : kPi) + off);
    if (kind & 2) put(joints, 2, (i % 5 < 3 ? 0 : kPi) + off);
    if (kind & 4) {
      if (!PutOverAxis1(joints)) continue;
      joints[1] += off;
      ++shoulders;
    }
    SCOPED_TRACE(testing::Message()
                 << "case " << i << ", joints " << testing::PrintToString(joints));
    const Frame target = Forward(joints);
    ExpectSound(Solve(target), target, 5e-11);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(shoulders, 1000);
}

KDL::Chain ChainOf(const ArmDescription& arm, const std::string& path) {
  if (path.find(".urdf") != std::string::npos) return ReadUrdfChain(path, arm.tip);
  const bool toml = path.find(".toml") != std::string::npos;
  const nlohmann::json table =
      (toml ? io::ParseToml(io::ReadFile(path), path) : io::ParseJson(io::ReadFile(path), path))
          .root;
  const auto fixed = [&table](const char* key) {
    if (table.count(key) == 0) return KDL::Frame::Identity();
    const auto& xyz = table[key]["xyz"];
    const auto& rpy = table[key]["rpy"];
    return KDL::Frame(KDL::Rotation::RPY(rpy[0], rpy[1], rpy[2]),
                      KDL::Vector(xyz[0], xyz[1], xyz[2]));
  };
  // An ortho-parallel table's lengths; there are none in a table of links.
  const auto moved = [&table](const char* x, const char* y, const char* z) {
    const auto length = [&table](const char* key) { return table.value(key, 0.0); };
    return KDL::Frame(KDL::Vector(length(x), length(y), length(z)));
  };
  const bool links = table["convention"] == "dh";
  const KDL::Vector z(0, 0, 1);
  const KDL::Vector y = links ? z : KDL::Vector(0, 1, 0);
  const KDL::Vector axes[] = {z, y, y, z, y, z};
  const KDL::Frame before[] = {fixed("base"),          moved("a1", "", "c1"),
                               moved("", "", "c2"),    moved("a2", "b", "c3"),
                               KDL::Frame::Identity(), KDL::Frame::Identity()};
  KDL::Chain chain;
  KDL::Frame last = KDL::Frame::Identity();
  for (size_t j = 0; j < 6; ++j) {
    const auto& line = table["joint"][j];
    const double theta = line.value("theta", 0.0);
    chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), last * before[j]));
    chain.addSegment(KDL::Segment(KDL::Joint(KDL::Vector::Zero(), axes[j], KDL::Joint::RotAxis,
                                             line.value("direction", 1.0))));
    last = links ? KDL::Frame::DH(line.value("a", 0.0), line.value("alpha", 0.0),
                                  line.value("d", 0.0), theta)
                 : KDL::Frame(KDL::Rotation::Rot(axes[j], theta));
  }
  last = last * moved("", "", "c4") * fixed("flange");
  chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), last));
  return chain;
}

// Finite, but not its square.
TEST_P(EveryArm, RefusesPositionsThatOverflow) {
  for (int i = 0; i < 3; ++i) {
    Frame target = Forward(random_());
    target.position.element[i] = 1e200;
    EXPECT_EQ(Solve(target).Count(), 0u) << i;
  }
}

TEST_P(EveryArm, HasTheForwardKinematicsOfAnIndependentLibrary) {
  const KDL::Chain chain = ChainOf(arm_, std::string(QAL_ARMS_DIR "/") + GetParam());
  ASSERT_EQ(chain.getNrOfJoints(), 6u);
  KDL::ChainFkSolverPos_recursive kdl(chain);
  KDL::JntArray q(6);
  for (int i = 0; i < 2000; ++i) {
    const Joints joints = random_();
    std::copy(joints.begin(), joints.end(), q.data.data());
    KDL::Frame expected;
    ASSERT_GE(kdl.JntToCart(q, expected), 0);
    Frame frame;
    std::copy(expected.p.data, expected.p.data + 3, frame.position.element);
    for (int r = 0; r < 3; ++r) {
      std::copy(expected.M.data + 3 * r, expected.M.data + 3 * r + 3,
                frame.rotation.row[r].element);
    }
    ASSERT_LE(FrameDifference(Forward(joints), frame), 1e-12);
    ASSERT_LE(FrameDifference(ToFrame(TipFrame(arm_, joints)), frame), 1e-12);
  }
}

INSTANTIATE_TEST_SUITE_P(Arms, EveryArm, testing::ValuesIn(kArmFiles), ArmName);

// Everything at once: the wrist's centre on axis 1 and on axis 2, axis 6 along axis 4 or axis 2.
TEST(Solve, AnswersThePoseInTheArmsOwnOrigin) {
  closed_form::SphericalWristArm spherical = {};
  spherical.body = {kIdentity, 0, 0, 0.5, 0.5, kIdentity.rotation, {}, {1, 1, 1, 1, 1, 1}, {}};
  spherical.lean = spherical.skew = {0, 1};
  const closed_form::ParallelAxesArm parallel = {spherical.body, 0, 0};
  const auto expect_reached = [](const auto& arm) {
    const Solutions solutions = closed_form::Solve(arm, kIdentity);
    EXPECT_GT(solutions.Count(), 0u);
    for (const Joints& solution : solutions) {
      EXPECT_LE(FrameDifference(Forward(arm, solution.data()), kIdentity), 1e-15);
    }
  };
  expect_reached(spherical);
  expect_reached(parallel);
}

// One solving code: the library's own solver is what mkik makes of the reference arm's URDF.
TEST(ReferenceArm, IsTheModelOfItsUrdf) {
  const Model model = MakeModel(Describe("reference.urdf")).value();
  const auto& made = std::get<closed_form::SphericalWristArm>(model);
  const closed_form::SphericalWristArm& own = reference_arm::kArm;
  EXPECT_EQ(made.body.upper_arm, own.body.upper_arm);
  EXPECT_EQ(made.body.shoulder, own.body.shoulder);
  EXPECT_DOUBLE_EQ(made.body.forearm, own.body.forearm);
  EXPECT_DOUBLE_EQ(made.body.zero[2], own.body.zero[2]);
  EXPECT_DOUBLE_EQ(made.lean.sine, own.lean.sine);
  EXPECT_EQ(made.skew.sine, 0.0);
}

}  // namespace
}  // namespace qal
