#ifndef QAL_SOLVER_CLOSED_FORM_SHOULDER_H_
#define QAL_SOLVER_CLOSED_FORM_SHOULDER_H_

#include "body.h"

namespace qal::closed_form {

/// What rounding may do to the wrist's centre, in lengths of the arm and of the way to the target.
/// The outstretched arm's own poses lie up to that far past the rim of the workspace.
constexpr double kRounding = 1e-14;

/// What is known of a target before one of the shoulders is chosen.
template <class L>
struct Approach {
  Vector<L> centre;   ///< the wrist's centre, in the arm's frame with model angle 1 at zero
  Matrix<L> flange;   ///< the flange's frame in that one
  L radius2;          ///< the square of how far the centre is from axis 1
  L forward;          ///< how far it is in front of axis 1 in the arm's plane, with shoulder front
  MaskOf<L> reached;  ///< not inside the cylinder that `lateral` keeps the centre out of
  MaskOf<L> two;      ///< nor on its surface, where shoulder front and rear are one
  L rounding;         ///< what rounding may have done to the centre
  L slack2;           ///< the square of how far inside still counts as on the surface
};

/// Where a target lies.
template <class L>
QAL_INLINED Approach<L> ApproachOf(const Body& body, const FrameOf<L>& target) {
  const Matrix<double> to_arm = Transposed(body.base.rotation);
  const Vector<L>& p = target.position;
  const double lateral = body.lateral;
  Approach<L> to;
  to.centre = to_arm * (p + target.rotation * body.centre_in_tool - body.base.position);
  to.flange = to_arm * target.rotation * Transposed(body.tool);
  to.rounding = kRounding * (body.upper_arm + body.forearm + Abs(p[0]) + Abs(p[1]) + Abs(p[2]));
  to.radius2 = to.centre[0] * to.centre[0] + to.centre[1] * to.centre[1];
  const L forward2 = to.radius2 - lateral * lateral;
  to.slack2 = to.rounding * std::fabs(lateral);
  to.forward = Sqrt(forward2);
  // Written so that NaN fails. The two are one when less than 2e-8 rad apart.
  to.reached = Flag<L>(forward2 >= -(to.slack2 + 2 * body.slack * std::fabs(lateral)));
  to.two = Flag<L>(to.forward >= Each<L>(1e-8 * std::fabs(lateral)));
  return to;
}

/// What the inverse of model angle 1 leaves of the target, with the shoulder front towards it or
/// with its rear.
template <class L>
struct Shoulder {
  L angle;            ///< model angle 1
  L x, z;             ///< the wrist's centre from axis 2, in the arm's frame
  Matrix<L> flange;   ///< the flange's frame in the arm's
  MaskOf<L> reached;  ///< neither inside the cylinder that `lateral` keeps the wrist's centre out
                      ///< of, where nothing is, nor on its surface, where the two are one
  L rounding;         ///< what rounding may have done to the wrist's centre
  L slack;            ///< the body's, as far as it may move the wrist's centre in the arm's plane
};

template <class L>
QAL_INLINED MaskOf<L> IsOnAxis1(const Approach<L>& to) {
  return Flag<L>(to.radius2 <= to.rounding * to.rounding);
}

/// With the wrist's centre on axis 1 every angle 1 does, and 0 and pi are taken.
/// @param side 1 for shoulder front, -1 for rear
template <class L>
QAL_INLINED Shoulder<L> ShoulderTo(const Body& body, const Approach<L>& to, const L& side) {
  const double lateral = body.lateral;
  const L forward = to.forward * side;
  const L per_length = 1.0 / Sqrt<L>(to.radius2 * (forward * forward + lateral * lateral));
  const MaskOf<L> on_axis1 = IsOnAxis1(to);
  const SinCos<L> angle1 = {
      Where<L>(~on_axis1, (to.centre[1] * forward - to.centre[0] * lateral) * per_length),
      Select<L>(on_axis1, side, (to.centre[0] * forward + to.centre[1] * lateral) * per_length)};
  L slack = {};
  if (body.slack != 0) {
    // Near the cylinder's surface what is off around the radius counts for more along it.
    constexpr double kMostSteep = 0.01;
    const L radius = Root(to.radius2);
    const L least = kMostSteep * radius;
    slack = body.slack * radius / Select<L>(to.forward > least, to.forward, least);
  }
  return {Atan2(angle1),
          forward - body.shoulder,
          to.centre[2],
          Rotated<2>(Inverse(angle1), to.flange),
          to.reached & (Flag<L>(side > Each<L>(0)) | to.two),
          to.rounding,
          slack};
}

/// How much more or less angle 1 may be, for what rounding may have done to the wrist's centre
/// [rad].
template <class L>
QAL_INLINED L IndeterminacyOf(const Body& body, const Approach<L>& to) {
  // Along the radius, and around it: near the cylinder's surface a small change of the radius is
  // a large one of the angle.
  const L forward_slack = to.slack2 / (to.forward + Root(to.slack2) + to.rounding);
  const L around =
      (to.rounding * Root(to.radius2) + forward_slack * std::fabs(body.lateral)) / to.radius2;
  return Select<L>(IsOnAxis1(to), Each<L>(kPi / 2), around);
}

/// A shoulder with angles 1 more by `angle`, which is within the indeterminacy.
/// @param shoulder front in the first lane, rear in the second
inline Shoulder<Lanes> RotatedBy(const Body& body, const Shoulder<Lanes>& shoulder, Lanes angle) {
  Shoulder<Lanes> rotated = shoulder;
  const SinCos<Lanes> more = SinCosOf(angle);
  rotated.angle = WrapAngle<Lanes>(shoulder.angle + angle);
  rotated.x = more.cosine * (shoulder.x + body.shoulder) + more.sine * body.lateral - body.shoulder;
  rotated.flange = Rotated<2>(Inverse(more), shoulder.flange);
  // Shoulder front and rear may have become the same.
  if (std::fabs(rotated.angle[0] - rotated.angle[1]) < 2e-8) rotated.reached[1] = 0;
  return rotated;
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SHOULDER_H_
