#ifndef QAL_SOLVER_CLOSED_FORM_SHOULDER_H_
#define QAL_SOLVER_CLOSED_FORM_SHOULDER_H_

#include "body.h"

namespace qal::closed_form {

/// What rounding may do to the wrist's centre, in lengths of the arm and of the way to the target.
/// The outstretched arm's own poses lie up to that far past the rim of the workspace.
constexpr double kRounding = 1e-14;

/// What the inverse of model angle 1 leaves of the target: with the shoulder front towards it in
/// the first lane, with its rear in the second.
struct Shoulder {
  Lanes angle;           ///< model angle 1
  Lanes x, z;            ///< the wrist's centre from axis 2, in the arm's frame
  Matrix<Lanes> flange;  ///< the flange's frame in the arm's
  Mask reached;     ///< neither inside the cylinder that `lateral` keeps the wrist's centre out
                    ///< of, where nothing is, nor on its surface, where the two are one
  double rounding;  ///< what rounding may have done to the wrist's centre
  double indeterminacy;  ///< how much more or less angle 1 may be, for that reason [rad]
  double slack;  ///< the body's, as far as it may move the wrist's centre in the arm's plane
};

/// With the wrist's centre on axis 1 every angle 1 does, and 0 and pi are taken.
inline Shoulder SolveShoulder(const Body& body, const Frame& target) {
  const Matrix<double> to_arm = Transposed(body.base.rotation);
  const Vector<double>& p = target.position;
  const Vector<double> centre =
      to_arm * (p + target.rotation * body.centre_in_tool - body.base.position);
  const double lateral = body.lateral;
  const double rounding = kRounding * (body.upper_arm + body.forearm + std::fabs(p[0]) +
                                       std::fabs(p[1]) + std::fabs(p[2]));
  const double radius2 = centre[0] * centre[0] + centre[1] * centre[1];
  const double forward2 = radius2 - lateral * lateral;
  const double slack2 = rounding * std::fabs(lateral);
  const Lanes forward = Sqrt(forward2 * kOne) * Lanes{1, -1};
  const Lanes per_length = 1 / Sqrt(radius2 * (forward * forward + lateral * lateral));
  SinCos<Lanes> angle1 = {(centre[1] * forward - centre[0] * lateral) * per_length,
                          (centre[0] * forward + centre[1] * lateral) * per_length};
  double indeterminacy = kPi / 2;
  if (radius2 <= rounding * rounding) {
    angle1 = {kZero, Lanes{1, -1}};
  } else {
    // Along the radius, and around it: near the cylinder's surface a small change of the radius is
    // a large one of the angle.
    const double forward_slack = slack2 / (forward[0] + std::sqrt(slack2) + rounding);
    indeterminacy = (rounding * std::sqrt(radius2) + forward_slack * std::fabs(lateral)) / radius2;
  }
  // Near the cylinder's surface what is off around the radius counts for more along it.
  constexpr double kMostSteep = 0.01;
  const double radius = std::sqrt(radius2);
  const double slack =
      body.slack == 0 ? 0 : body.slack * radius / std::fmax(forward[0], kMostSteep * radius);
  // Written so that NaN fails. The two are one when less than 2e-8 rad apart.
  const bool reached = forward2 >= -(slack2 + 2 * body.slack * std::fabs(lateral));
  const bool two = forward[0] >= 1e-8 * std::fabs(lateral);
  return {Atan2(angle1),
          forward - body.shoulder,
          centre[2] * kOne,
          Rotated<2>(Inverse(angle1), to_arm * target.rotation * Transposed(body.tool)),
          Mask{-reached, -(reached && two)},
          rounding,
          indeterminacy,
          slack};
}

/// The same with angles 1 more by `angle`, which is within the indeterminacy.
inline Shoulder RotatedBy(const Body& body, const Shoulder& shoulder, Lanes angle) {
  Shoulder rotated = shoulder;
  const SinCos<Lanes> more = SinCosOf(angle);
  rotated.angle = WrapAngle(shoulder.angle + angle);
  rotated.x = more.cosine * (shoulder.x + body.shoulder) + more.sine * body.lateral - body.shoulder;
  rotated.flange = Rotated<2>(Inverse(more), shoulder.flange);
  // Shoulder front and rear may have become the same.
  if (std::fabs(rotated.angle[0] - rotated.angle[1]) < 2e-8) rotated.reached[1] = 0;
  return rotated;
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SHOULDER_H_
