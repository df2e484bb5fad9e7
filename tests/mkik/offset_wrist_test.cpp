#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/frames.h"

namespace qal {
namespace {

using closed_form::Joints;
using closed_form::OffsetWristArm;
using closed_form::Solutions;

double AngleOff(double a, double b) { return std::fabs(std::remainder(a - b, 2 * kPi)); }

class Draw {
 public:
  explicit Draw(unsigned seed) : engine_(seed) {}
  double operator()(double most) {
    return std::uniform_real_distribution<double>(-most, most)(engine_);
  }
  // None, hardly any, or some.
  double Offset(double most) {
    const double kind = (*this)(1);
    return kind < -0.5 ? 0 : kind < -0.3 ? (*this)(1e-6) : kind < 0 ? (*this)(1e-3) : (*this)(most);
  }
  Matrix3 Rotation() {
    return RotationMatrix({{1, 0, 0}}, (*this)(kPi)) * RotationMatrix({{0, 0, 1}}, (*this)(kPi)) *
           RotationMatrix({{1, 0, 0}}, (*this)(kPi));
  }
  OffsetWristArm Arm() {
    OffsetWristArm arm = {};
    arm.body.base = {Rotation(), {{(*this)(1), (*this)(1), (*this)(1)}}};
    arm.body.tool = Rotation();
    arm.body.centre_in_tool = {{(*this)(0.5), (*this)(0.5), (*this)(0.5)}};
    arm.body.shoulder = Offset(0.5);
    arm.body.lateral = Offset(0.4);
    arm.body.upper_arm = 0.51 + (*this)(0.49);
    arm.body.forearm = (*this)(1) < -0.6 ? arm.body.upper_arm : 0.51 + (*this)(0.49);
    for (double& direction : arm.body.direction) direction = (*this)(1) < 0 ? -1 : 1;
    for (double& zero : arm.body.zero) zero = (*this)(kPi);
    const double lean = (*this)(kPi);
    arm.lean = {std::sin(lean), std::cos(lean)};
    arm.wrist_offset_y = Offset(0.4);
    // With both 0 the wrist is a spherical one, which is another family's.
    arm.wrist_offset_z = arm.wrist_offset_y == 0 ? 0.2 + (*this)(0.15) : Offset(0.4);
    return arm;
  }
  Joints Anywhere() {
    Joints joints;
    for (double& joint : joints) joint = (*this)(2.967);
    return joints;
  }

 private:
  std::mt19937 engine_;
};

TEST(OffsetWrist, FindsTheJointsThatAPoseCameFrom) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE(seed);
    Draw draw(seed);
    const OffsetWristArm arm = draw.Arm();
    for (int i = 0; i < 500; ++i) {
      const Joints joints = draw.Anywhere();
      const Frame target = Forward(arm, joints.data());
      double nearest = kPi;
      for (const Joints& solution : Solve(arm, target)) {
        ASSERT_LE(LargestDifference(Forward(arm, solution.data()), target), 1e-10);
        double off = 0;
        for (size_t j = 0; j < 6; ++j) off = std::max(off, AngleOff(solution[j], joints[j]));
        nearest = std::min(nearest, off);
      }
      ASSERT_LE(nearest, 1e-5) << testing::PrintToString(joints);
    }
  }
}

// Another way to the same roots: with angle 6 known the elbow follows, up and down, and axes 4 and
// 5 are at right angles or not. Calls `found` with angles 1, 3 and 6 of a root.
template <class Found>
void SearchElbows(const OffsetWristArm& arm, const Frame& target, Found found) {
  constexpr int kSteps = 20000;
  const closed_form::Body& body = arm.body;
  const Frame flange = Inverse(body.base) * target * Frame{Transposed(body.tool), {}};
  const Vector3 middle =
      (Inverse(body.base) * target * Frame{kIdentity.rotation, body.centre_in_tool}).position;
  for (int branch = 0; branch < 4; ++branch) {
    double last = NAN;
    for (int k = 0; k <= kSteps; ++k) {
      const double angle6 = 2 * kPi * k / kSteps;
      const Matrix3 wrist = flange.rotation * RotationMatrix({{1, 0, 0}}, -angle6);
      const Vector3 centre = middle - wrist * Vector3{{0, arm.wrist_offset_y, arm.wrist_offset_z}};
      const double radius = std::hypot(centre[0], centre[1]);
      const double forward =
          (branch < 2 ? 1 : -1) * std::sqrt(radius * radius - body.lateral * body.lateral);
      const double angle1 = std::atan2(centre[1], centre[0]) - std::atan2(body.lateral, forward);
      const double x = forward - body.shoulder;
      const double distance2 = x * x + centre[2] * centre[2];
      const double angle3 =
          (branch % 2 == 0 ? 1 : -1) *
          std::acos((distance2 - body.upper_arm * body.upper_arm - body.forearm * body.forearm) /
                    (2 * body.upper_arm * body.forearm));
      const double angle2 =
          std::atan2(x, centre[2]) - std::atan2(body.forearm * std::sin(angle3),
                                                body.upper_arm + body.forearm * std::cos(angle3));
      const double axis4 = angle2 + angle3 + std::atan2(arm.lean.sine, arm.lean.cosine);
      const double up = wrist[2][1];
      const double ahead = std::cos(angle1) * wrist[0][1] + std::sin(angle1) * wrist[1][1];
      const double off = std::cos(axis4) * ahead - std::sin(axis4) * up;
      // Not where it leaps.
      if (off * last < 0 && std::fabs(off - last) < 0.2) found(angle1, angle3, angle6);
      last = off;
    }
  }
}

TEST(OffsetWrist, HasTheSolutionsOfAnExhaustiveSearch) {
  size_t expected = 0;
  size_t all = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    Draw draw(seed);
    OffsetWristArm arm = draw.Arm();
    std::fill(arm.body.direction, arm.body.direction + 6, 1.0);
    std::fill(arm.body.zero, arm.body.zero + 6, 0.0);
    const Frame target = Forward(arm, draw.Anywhere().data());
    const Solutions solutions = Solve(arm, target);
    all += solutions.Count();
    SearchElbows(arm, target, [&](double angle1, double angle3, double angle6) {
      ++expected;
      EXPECT_TRUE(std::any_of(solutions.begin(), solutions.end(),
                              [&](const Joints& q) {
                                return AngleOff(q[0], angle1) < 0.02 &&
                                       AngleOff(q[2], angle3) < 0.05 &&
                                       AngleOff(q[5], angle6) < 0.002;
                              }))
          << angle1 << ' ' << angle3 << ' ' << angle6;
    });
  }
  // The grid may step over a pair of roots; never the other way round.
  EXPECT_LE(expected, all);
  EXPECT_GE(expected + 2, all);
}

}  // namespace
}  // namespace qal
