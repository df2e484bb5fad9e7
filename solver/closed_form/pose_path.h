#ifndef QAL_SOLVER_CLOSED_FORM_POSE_PATH_H_
#define QAL_SOLVER_CLOSED_FORM_POSE_PATH_H_

#include "complex_lanes.h"

namespace qal::closed_form {

/// A unit quaternion (w, x, y, z) and a position [m].
struct QuaternionPose {
  double quaternion[4];
  Vector<double> position;
};

inline QuaternionPose ToQuaternionPose(const Frame& frame) {
  const Matrix<double>& r = frame.rotation;
  // Row i is 4 q[i] q: the longest is divided by least.
  const double rows[4][4] = {
      {1 + r[0][0] + r[1][1] + r[2][2], r[2][1] - r[1][2], r[0][2] - r[2][0], r[1][0] - r[0][1]},
      {r[2][1] - r[1][2], 1 + r[0][0] - r[1][1] - r[2][2], r[0][1] + r[1][0], r[2][0] + r[0][2]},
      {r[0][2] - r[2][0], r[0][1] + r[1][0], 1 - r[0][0] + r[1][1] - r[2][2], r[1][2] + r[2][1]},
      {r[1][0] - r[0][1], r[2][0] + r[0][2], r[1][2] + r[2][1], 1 - r[0][0] - r[1][1] + r[2][2]}};
  int longest = 0;
  for (int i = 1; i < 4; ++i) {
    if (rows[i][i] > rows[longest][longest]) longest = i;
  }
  const double factor = 0.5 / std::sqrt(rows[longest][longest]);
  QuaternionPose pose = {{}, frame.position};
  for (int i = 0; i < 4; ++i) pose.quaternion[i] = factor * rows[longest][i];
  return pose;
}

/// From one pose to another through complex ones. At t, from 0 to 1, both poses are mixed with the
/// weights (1 - t) w and t: the positions divided by the weights' sum, the quaternions by their
/// length. A complex `weight` w leads the path around the poses where an arm is singular, which lie
/// here and there on the real one.
struct PosePath {
  QuaternionPose from, to;
  Complex<double> weight;

  PosePath(const QuaternionPose& first, const QuaternionPose& last, const Complex<double>& w)
      : from(first), to(last), weight(w) {
    // The same rotation by the nearer quaternion, so that no mixture comes near to length 0.
    double product = 0;
    for (int i = 0; i < 4; ++i) product += from.quaternion[i] * to.quaternion[i];
    if (product >= 0) return;
    for (double& q : to.quaternion) q = -q;
  }
};

/// A pose of a path, and how it moves on with t.
struct PathPose {
  Matrix<ComplexLanes> rotation;
  Vector<ComplexLanes> position;
  Vector<ComplexLanes> spin;      ///< rotation [rad], in the same frame as `rotation`
  Vector<ComplexLanes> velocity;  ///< of the position [m]
};

/// Row by row the matrix of a quaternion times the reciprocal of its squared length.
inline Matrix<ComplexLanes> RotationOf(const ComplexLanes (&q)[4], const ComplexLanes& per_norm) {
  const ComplexLanes two = 2 * per_norm;
  const ComplexLanes w = two * q[0];
  const ComplexLanes x = two * q[1];
  const ComplexLanes y = two * q[2];
  const ComplexLanes z = two * q[3];
  const ComplexLanes xx = x * q[1];
  const ComplexLanes yy = y * q[2];
  const ComplexLanes zz = z * q[3];
  const ComplexLanes wx = w * q[1];
  const ComplexLanes wy = w * q[2];
  const ComplexLanes wz = w * q[3];
  const ComplexLanes xy = x * q[2];
  const ComplexLanes xz = x * q[3];
  const ComplexLanes yz = y * q[3];
  return {{{{-(yy + zz) + 1.0, xy - wz, xz + wy}},
           {{xy + wz, -(xx + zz) + 1.0, yz - wx}},
           {{xz - wy, yz + wx, -(xx + yy) + 1.0}}}};
}

inline PathPose PoseAt(const PosePath& path, Lanes t) {
  const double* f = path.from.quaternion;
  const double* g = path.to.quaternion;
  const ComplexLanes weight = {path.weight.re * kOne, path.weight.im * kOne};
  const ComplexLanes a = {(1 - t) * weight.re, (1 - t) * weight.im};
  ComplexLanes q[4];
  for (int i = 0; i < 4; ++i) q[i] = {a.re * f[i] + t * g[i], a.im * f[i]};
  const ComplexLanes norm = (q[0] * q[0] + q[1] * q[1]) + (q[2] * q[2] + q[3] * q[3]);
  const ComplexLanes per_norm = Reciprocal(norm);
  const ComplexLanes per_sum = Reciprocal(ComplexLanes{a.re + t, a.im});
  // The derivatives: of the quaternion it is g - w f, and 2 (g - w f) conjugate(q) / norm the spin,
  // of which w is left of both weights.
  const ComplexLanes spin = 2 * (weight * per_norm);
  const ComplexLanes speed = weight * (per_sum * per_sum);
  const Vector<double> fv = {{f[1], f[2], f[3]}};
  const Vector<double> gv = {{g[1], g[2], g[3]}};
  const Vector<double> across = (f[0] * gv - g[0] * fv) - Cross(gv, fv);
  PathPose pose;
  pose.rotation = RotationOf(q, per_norm);
  for (int i = 0; i < 3; ++i) {
    const double from = path.from.position[i];
    const double to = path.to.position[i];
    pose.position.element[i] = per_sum * ComplexLanes{a.re * from + t * to, a.im * from};
    pose.velocity.element[i] = (to - from) * speed;
    pose.spin.element[i] = across[i] * spin;
  }
  return pose;
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_POSE_PATH_H_
