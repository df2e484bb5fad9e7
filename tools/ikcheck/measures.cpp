#include "measures.h"

#include <Eigen/LU>
#include <algorithm>
#include <cmath>

namespace qal::ikcheck {

namespace {

// The largest of a matrix, without its signs; NaN when there is one.
template <typename Derived>
double Largest(const Eigen::MatrixBase<Derived>& matrix) {
  return matrix.cwiseAbs().template maxCoeff<Eigen::PropagateNaN>();
}

using Vector6 = Eigen::Matrix<double, 6, 1>;
Vector6 VectorOf(const Joints& joints) { return Vector6::Map(joints.data()); }

// Whole turns apart is no difference.
Vector6 TurnsLeftOut(const Vector6& angles) {
  return angles.unaryExpr([](double angle) { return std::remainder(angle, 2 * kPi); });
}

}  // namespace

bool AllFinite(const Joints& joints) { return VectorOf(joints).allFinite(); }

bool AllFinite(const Pose& pose) { return pose.position.allFinite() && pose.rotation.allFinite(); }

double PoseDifference::Size() const { return Largest(Eigen::Vector2d(position_m, element)); }

PoseDifference Difference(const Pose& a, const Pose& b) {
  return {Largest(a.position - b.position), Largest(a.rotation - b.rotation)};
}

double Difference(const Joints& a, const Joints& b) {
  return Largest(TurnsLeftOut(VectorOf(a) - VectorOf(b)));
}

double OffLine(const Joints& joints, const Joints& start, const Joints& direction) {
  // The way along the line, from the joint that moves most; it may be a turn more or less.
  Eigen::Index k = 0;
  (void)VectorOf(direction).cwiseAbs().maxCoeff(&k);
  const Vector6 from_start = VectorOf(joints) - VectorOf(start);
  double least = 2 * kPi;
  for (const double turns : {-1.0, 0.0, 1.0}) {
    const double way = (from_start(k) + 2 * kPi * turns) / VectorOf(direction)(k);
    least = std::min(least, Largest(TurnsLeftOut(from_start - way * VectorOf(direction))));
  }
  return least;
}

double OffRotation(const Rotation& rotation) {
  const double off = Largest(rotation.transpose() * rotation - Rotation::Identity());
  return rotation.determinant() < 0 ? std::max(off, 2.0) : off;
}

}  // namespace qal::ikcheck
