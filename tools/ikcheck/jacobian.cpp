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
  using Row = Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>;
  const Eigen::Matrix3d turn = Row(after.rotation) * Row(before.rotation).transpose();
  Eigen::Matrix<double, 6, 1> velocity;
  for (int i = 0; i < 3; ++i) velocity(i) = (after.position[i] - before.position[i]) / reach;
  velocity(3) = (turn(2, 1) - turn(1, 2)) / 2;
  velocity(4) = (turn(0, 2) - turn(2, 0)) / 2;
  velocity(5) = (turn(1, 0) - turn(0, 1)) / 2;
  return velocity / (2 * kStepRad);
}

std::vector<double> Determinants(Session& session, const std::vector<Joints>& joints) {
  std::vector<double> determinants;
  for (const Jacobian& jacobian : Jacobians(session, joints)) {
    determinants.push_back(jacobian.determinant());
  }
  return determinants;
}

// A joint of a set, between two angles where the determinant has opposite signs.
struct Bracket {
  Singularity at;  // with the joint at the lower angle
  double width;
  bool negative;  // the determinant there
};

// Looks along one joint of each set, a whole turn.
std::vector<Bracket> FindBrackets(Session& session, const std::vector<Singularity>& starts) {
  constexpr size_t kSteps = 48;
  std::vector<Joints> samples;
  for (const Singularity& start : starts) {
    for (size_t i = 0; i <= kSteps; ++i) {
      samples.push_back(start.joints);
      samples.back()[start.joint] += 2 * kPi * static_cast<double>(i) / kSteps;
    }
  }
  const std::vector<double> values = Determinants(session, samples);
  std::vector<Bracket> brackets;
  for (size_t i = 0; i + 1 < samples.size(); ++i) {
    if (i % (kSteps + 1) == kSteps || !(values[i] * values[i + 1] < 0)) continue;
    brackets.push_back(
        {{samples[i], starts[i / (kSteps + 1)].joint}, 2 * kPi / kSteps, values[i] < 0});
  }
  return brackets;
}

// Halves all brackets side by side.
void Halve(Session& session, std::vector<Bracket>& brackets) {
  std::vector<Joints> middles;
  for (Bracket& bracket : brackets) {
    bracket.width /= 2;
    middles.push_back(bracket.at.joints);
    middles.back()[bracket.at.joint] += bracket.width;
  }
  const std::vector<double> values = Determinants(session, middles);
  for (size_t i = 0; i < brackets.size(); ++i) {
    if ((values[i] < 0) == brackets[i].negative) brackets[i].at.joints = middles[i];
  }
}

}  // namespace

std::vector<Jacobian> Jacobians(Session& session, const std::vector<Joints>& joints) {
  std::vector<Joints> sets;
  for (const Joints& set : joints) {
    for (size_t j = 0; j < set.size(); ++j) {
      for (const double step : {-kStepRad, kStepRad}) {
        sets.push_back(set);
        sets.back()[j] += step;
      }
    }
  }
  const auto poses = session.Forward(sets);
  std::vector<Jacobian> jacobians(joints.size(),
                                  Jacobian::Constant(std::numeric_limits<double>::quiet_NaN()));
  for (size_t i = 0; i < poses.size(); i += 2) {
    if (poses[i].outcome != Outcome::kReturned || poses[i + 1].outcome != Outcome::kReturned) {
      continue;
    }
    jacobians[i / 12].col(static_cast<int>(i / 2 % 6)) =
        Velocity(poses[i].pose, poses[i + 1].pose, session.reach);
  }
  return jacobians;
}

double SmallestSingularValue(const Jacobian& jacobian) {
  if (!jacobian.allFinite()) return std::numeric_limits<double>::quiet_NaN();
  return Eigen::JacobiSVD<Jacobian>(jacobian).singularValues()(5);
}

std::vector<double> SmallestSingularValues(Session& session, const std::vector<Joints>& joints) {
  std::vector<double> values;
  for (const Jacobian& jacobian : Jacobians(session, joints)) {
    values.push_back(SmallestSingularValue(jacobian));
  }
  return values;
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
  std::vector<Singularity> from;
  for (const Joints& joints : session.RandomJoints(starts)) {
    // Joints 1 and 6 turn the whole arm and the tool alone: the determinant stays as it is.
    for (const size_t joint : {1u, 2u, 3u, 4u}) from.push_back({joints, joint});
  }
  std::vector<Bracket> brackets = FindBrackets(session, from);
  for (int i = 0; i < 36; ++i) Halve(session, brackets);  // from 0.13 rad to 2e-12

  std::vector<Singularity> found;
  for (Bracket& bracket : brackets) {
    double& angle = bracket.at.joints[bracket.at.joint];
    angle = std::remainder(angle, 2 * kPi);
    const double exact = std::round(angle / (kPi / 4)) * (kPi / 4);
    if (std::fabs(angle - exact) < 1e-7) angle = exact;
    found.push_back(bracket.at);
  }
  return found;
}

}  // namespace qal::ikcheck
