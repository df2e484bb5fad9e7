#include "jacobian.h"

#include <Eigen/LU>
#include <Eigen/SVD>
#include <cmath>
#include <limits>

#include "measures.h"

namespace qal::ikcheck {

namespace {

// Truncation is then 2e-11 and rounding 1e-11.
constexpr double kStepRad = 1e-5;

// Columns are the velocities of the position and of the rotation between two poses.
Eigen::Matrix<double, 6, 1> Velocity(const Pose& before, const Pose& after, double reach) {
  const Eigen::Matrix3d turn = after.rotation * before.rotation.transpose();
  Eigen::Matrix<double, 6, 1> velocity;
  velocity << (after.position - before.position) / reach, (turn(2, 1) - turn(1, 2)) / 2,
      (turn(0, 2) - turn(2, 0)) / 2, (turn(1, 0) - turn(0, 1)) / 2;
  return velocity / (2 * kStepRad);
}

// Where a function changes its sign between two angles, one of multiples of 45 degrees if it is
// that.
template <typename Function>
double SignChange(Function value, double low, double high) {
  const bool negative = value(low) < 0;
  for (int i = 0; i < 36; ++i) {  // from 0.13 rad to 2e-12
    const double middle = low + (high - low) / 2;
    ((value(middle) < 0) == negative ? low : high) = middle;
  }
  const double angle = std::remainder(low, 2 * kPi);
  const double exact = std::round(angle / (kPi / 4)) * (kPi / 4);
  return std::fabs(angle - exact) < 1e-7 ? exact : angle;
}

}  // namespace

Jacobian JacobianAt(Session& session, const Joints& joints) {
  Jacobian jacobian = Jacobian::Constant(std::numeric_limits<double>::quiet_NaN());
  for (size_t j = 0; j < joints.size(); ++j) {
    Joints moved = joints;
    moved[j] = joints[j] - kStepRad;
    const auto before = session.Forward(moved);
    moved[j] = joints[j] + kStepRad;
    const auto after = session.Forward(moved);
    if (before && after) {
      jacobian.col(static_cast<int>(j)) = Velocity(*before, *after, session.reach);
    }
  }
  return jacobian;
}

double SmallestSingularValue(const Jacobian& jacobian) {
  if (!jacobian.allFinite()) return std::numeric_limits<double>::quiet_NaN();
  return Eigen::JacobiSVD<Jacobian>(jacobian).singularValues()(5);
}

std::optional<Joints> SelfMotion(const Jacobian& jacobian) {
  const Eigen::JacobiSVD<Jacobian> svd(jacobian, Eigen::ComputeFullV);
  if (svd.singularValues()(4) < kRegularValue) return std::nullopt;
  Joints direction;
  int moving = 0;
  for (size_t j = 0; j < direction.size(); ++j) {
    direction[j] = svd.matrixV()(static_cast<int>(j), 5);
    if (std::fabs(direction[j]) > 1e-6) ++moving;  // less is the error of the differences
  }
  if (moving != 2) return std::nullopt;
  return direction;
}

std::vector<Singularity> FindSingularities(Session& session, size_t starts) {
  constexpr int kSteps = 48;  // of a whole turn
  std::vector<Singularity> found;
  for (Joints joints : session.RandomJoints(starts)) {
    // Joints 1 and 6 turn the whole arm and the tool alone: the determinant stays as it is.
    for (const size_t joint : {1u, 2u, 3u, 4u}) {
      const auto determinant = [&](double angle) {
        Joints moved = joints;
        moved[joint] = angle;
        return JacobianAt(session, moved).determinant();
      };
      double low = joints[joint];
      double low_value = determinant(low);
      for (int i = 0; i < kSteps; ++i) {
        const double high = low + 2 * kPi / kSteps;
        const double high_value = determinant(high);
        if (low_value * high_value < 0) {
          found.push_back({joints, joint});
          found.back().joints[joint] = SignChange(determinant, low, high);
        }
        low = high;
        low_value = high_value;
      }
    }
  }
  return found;
}

}  // namespace qal::ikcheck
