#ifndef QAL_SOLVER_CLOSED_FORM_BODY_H_
#define QAL_SOLVER_CLOSED_FORM_BODY_H_

#include "geometry.h"

namespace qal::closed_form {

/// What the families have in common: axis 1, the parallel axes 2 and 3 at right angles to it, and
/// what is fixed before and after the arm. Lengths in metres, or in any other one unit.
///
/// Model angle 1 rotates the arm's frame about its z axis, which is axis 1. The frame's y axis is
/// parallel to axes 2 and 3, its x-z plane the one that upper arm and forearm move in. Model angles
/// 2 and 3 rotate about y, from z towards x; at zero upper arm and forearm point along z:
///
///     x = shoulder + upper_arm * sin(2) + forearm * sin(2 + 3)
///     y = lateral
///     z =            upper_arm * cos(2) + forearm * cos(2 + 3)
///
/// is where the forearm ends: in the wrist's centre, or on axis 4 when that is a third parallel
/// one; `lateral` is the wrist centre's in either case. The tool hangs at the wrist's centre.
struct Body {
  Frame base;                     ///< the arm's frame in the base frame, model angle 1 at zero
  double shoulder;                ///< axis 1 to axis 2; of either sign, as is `lateral`
  double lateral;                 ///< axis 1 to the wrist's centre, along the parallel axes
  double upper_arm;               ///< axis 2 to axis 3; positive
  double forearm;                 ///< axis 3 to its end; positive
  Matrix<double> tool;            ///< the tool frame in the flange's, which model angle 6 rotates
  Vector<double> centre_in_tool;  ///< the wrist's centre in the tool frame; of an offset wrist the
                                  ///< point of axis 6 that is nearest to it
  double direction[6];            ///< 1, or -1 for a joint that counts against its model angle
  double zero[6];                 ///< model angles with all joints at zero [rad], in (-pi, pi]
  /// How far past the rim of what is reached a target still counts as on it: 0, or what the arm
  /// may be off its model [m].
  double slack;
};

/// Sines and cosines of the model angles of six joints [rad].
inline void ModelSinCos(const Body& body, const double* joints, SinCos<double> (&sincos)[6]) {
  const double* d = body.direction;
  const double* z = body.zero;
  for (int j = 0; j < 6; j += 2) {
    const SinCos<Lanes> both =
        SinCosOf(Lanes{d[j], d[j + 1]} * Lanes{joints[j], joints[j + 1]} + Lanes{z[j], z[j + 1]});
    sincos[j] = {both.sine[0], both.cosine[0]};
    sincos[j + 1] = {both.sine[1], both.cosine[1]};
  }
}

/// The tool frame from model angle 1, the wrist's centre in the arm's frame and `tool`, the tool's
/// rotation in it.
template <class T>
QAL_INLINED FrameOf<T> ToolFrame(const Body& body, const SinCos<T>& joint1, const Vector<T>& centre,
                                 const Matrix<T>& tool) {
  const Vector<T> rotated = {{joint1.cosine * centre[0] - joint1.sine * centre[1],
                              joint1.sine * centre[0] + joint1.cosine * centre[1], centre[2]}};
  const Matrix<T> rotation = body.base.rotation * Rotated<2>(joint1, tool);
  return {rotation,
          body.base.position + body.base.rotation * rotated - rotation * body.centre_in_tool};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_BODY_H_
