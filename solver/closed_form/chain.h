#ifndef QAL_SOLVER_CLOSED_FORM_CHAIN_H_
#define QAL_SOLVER_CLOSED_FORM_CHAIN_H_

#include "geometry.h"

namespace qal::closed_form {

/// From one joint's axis, which is z of its frame, to the next joint's: the frame after the
/// rotation about z is moved by `offset`, then rotated about its x axis.
struct Link {
  double zero;            ///< added to the joint's angle [rad]
  SinCos<double> twist;   ///< the rotation about x
  Vector<double> offset;  ///< [m, the frame after the rotation about z]
};

/// Six revolute joints in a row, wherever their axes are: the arm as it is described.
///
///     base * Rz(1) T(offset) Rx(twist) * Rz(2) T(offset) Rx(twist) * ... * Rz(6) * tool
struct Chain {
  Frame base;     ///< the first joint's frame in the base frame
  Link links[6];  ///< of the last one only `zero` counts
  Frame tool;     ///< the tool frame in the last joint's
};

/// Where joints 2 to 6 take a chain, in the frame that joint 1 turns: joint 1 is at the origin and
/// z is its axis. T is double or Lanes.
template <class T>
struct ChainPose {
  Vector<T> axis[6];   ///< directions of the joints' axes
  Vector<T> point[6];  ///< the joints' origins, each on its axis
  Vector<T> x, y, z;   ///< the axes of the frame that joint 6 turns
};

/// @param sincos of the joints' angles with `zero` added; the first joint's is not looked at
template <class T>
ChainPose<T> PoseOf(const Chain& chain, const SinCos<T> (&sincos)[6]) {
  const T zero = T{};
  const T one = zero + 1.0;
  ChainPose<T> pose;
  Vector<T> x = {{one, zero, zero}};
  Vector<T> y = {{zero, one, zero}};
  Vector<T> z = {{zero, zero, one}};
  Vector<T> p = {{zero, zero, zero}};
  pose.axis[0] = z;
  pose.point[0] = p;
  for (int j = 1; j < 6; ++j) {
    const Link& link = chain.links[j - 1];
    p = p + (link.offset[0] * x + (link.offset[1] * y + link.offset[2] * z));
    const Vector<T> twisted = link.twist.cosine * y + link.twist.sine * z;
    z = link.twist.cosine * z - link.twist.sine * y;
    const Vector<T> rotated = sincos[j].cosine * x + sincos[j].sine * twisted;
    y = sincos[j].cosine * twisted - sincos[j].sine * x;
    x = rotated;
    pose.axis[j] = z;
    pose.point[j] = p;
  }
  pose.x = x;
  pose.y = y;
  pose.z = z;
  return pose;
}

/// Sines and cosines of six joints [rad] with `zero` added.
inline void ChainSinCos(const Chain& chain, const double* joints, SinCos<double> (&sincos)[6]) {
  for (int j = 0; j < 6; j += 2) {
    const SinCos<Lanes> both = SinCosOf(Lanes{joints[j], joints[j + 1]} +
                                        Lanes{chain.links[j].zero, chain.links[j + 1].zero});
    sincos[j] = {both.sine[0], both.cosine[0]};
    sincos[j + 1] = {both.sine[1], both.cosine[1]};
  }
}

/// The tool frame of six joints [rad].
inline Frame Forward(const Chain& chain, const double* joints) {
  SinCos<double> sincos[6];
  ChainSinCos(chain, joints, sincos);
  const ChainPose<double> pose = PoseOf(chain, sincos);
  const Matrix<double> last =
      Rotated<2>(sincos[0], Transposed(Matrix<double>{{pose.x, pose.y, pose.z}}));
  const Vector<double>& p = pose.point[5];
  const Vector<double> position = {{sincos[0].cosine * p[0] - sincos[0].sine * p[1],
                                    sincos[0].sine * p[0] + sincos[0].cosine * p[1], p[2]}};
  return {chain.base.rotation * (last * chain.tool.rotation),
          chain.base.position + chain.base.rotation * (position + last * chain.tool.position)};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_CHAIN_H_
