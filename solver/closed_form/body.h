#ifndef QAL_SOLVER_CLOSED_FORM_BODY_H_
#define QAL_SOLVER_CLOSED_FORM_BODY_H_

#include <array>
#include <cstddef>

#include "geometry.h"

namespace qal::closed_form {

/// What the families have in common: axis 1, the parallel axes 2 and 3 at right angles to it, and
/// what is fixed before and after the arm. Lengths in metres, or in any other one unit.
///
/// Model angle 1 turns the arm's frame about its z axis, which is axis 1. The frame's y axis is
/// parallel to axes 2 and 3, its x-z plane the one that upper arm and forearm move in. Model angles
/// 2 and 3 turn about y, from z towards x; at zero upper arm and forearm point along z:
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
  Matrix<double> tool;            ///< the tool frame in the hand's, which model angle 6 turns
  Vector<double> centre_in_tool;  ///< the wrist's centre in the tool frame
  double direction[6];            ///< 1, or -1 for a joint that turns against its model angle
  double zero[6];                 ///< model angles with all joints at zero [rad], in (-pi, pi]
};

/// What rounding may do to the wrist's centre, in lengths of the arm and of the way to the target.
/// The outstretched arm's own poses lie up to that far past the rim of the workspace.
constexpr double kRounding = 1e-14;

/// One way to bend elbow and wrist, for both shoulders.
struct Branch {
  Lanes angle[6];  ///< model angles
  Mask reached;    ///< not 0 where the target is within reach so
};

using Joints = std::array<double, 6>;

/// Up to eight solutions: joints [rad], each in (-pi, pi].
class Solutions {
 public:
  /// Adds what is reached of four branches: those of the first shoulder, then of the second.
  void Add(const Body& body, const Branch (&branches)[4]) {
    Lanes joints[4][6];
    for (int k = 0; k < 4; ++k) {
      for (int j = 0; j < 6; ++j) {
        joints[k][j] = WrapAngle(body.direction[j] * (branches[k].angle[j] - body.zero[j]));
      }
    }
    for (int side = 0; side < 2; ++side) {
      for (int k = 0; k < 4; ++k) {
        if (branches[k].reached[side] == 0) continue;
        for (size_t j = 0; j < 6; ++j) joints_[count_][j] = joints[k][j][side];
        ++count_;
      }
    }
  }

  size_t Count() const { return count_; }
  const Joints* begin() const { return joints_.data(); }
  const Joints* end() const { return joints_.data() + count_; }

 private:
  std::array<Joints, 8> joints_;
  size_t count_ = 0;
};

/// What is left of the target when model angle 1 is turned back: facing the target in the first
/// lane, with the back to it in the second.
struct Shoulder {
  Lanes angle;         ///< model angle 1
  Lanes x, z;          ///< the wrist's centre from axis 2, in the arm's frame
  Matrix<Lanes> hand;  ///< the hand's frame in the arm's
  Mask reached;        ///< neither inside the cylinder that `lateral` keeps the wrist's centre out
                       ///< of, where nothing is, nor on its surface, where the two are one
  double rounding;     ///< what rounding may have done to the wrist's centre
  double open;         ///< how much more or less angle 1 may be, for that reason [rad]
};

/// On axis 1 itself every angle 1 does, and 0 and pi are taken.
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
  Turn<Lanes> turn = {(centre[1] * forward - centre[0] * lateral) * per_length,
                      (centre[0] * forward + centre[1] * lateral) * per_length};
  double open = kPi / 2;
  if (radius2 <= rounding * rounding) {
    turn = {kZero, Lanes{1, -1}};
  } else {
    // Along the radius, and around it: near the cylinder's surface a small change of the radius is
    // a large one of the angle.
    const double forward_slack = slack2 / (forward[0] + std::sqrt(slack2) + rounding);
    open = (rounding * std::sqrt(radius2) + forward_slack * std::fabs(lateral)) / radius2;
  }
  // Written so that NaN fails. The two are one when less than 2e-8 rad apart.
  const bool reached = forward2 >= -slack2;
  const bool two = forward[0] >= 1e-8 * std::fabs(lateral);
  return {AngleOf(turn),
          forward - body.shoulder,
          centre[2] * kOne,
          Rotated<2>(Back(turn), to_arm * target.rotation * Transposed(body.tool)),
          Mask{-reached, -(reached && two)},
          rounding,
          open};
}

/// The same with angles 1 turned on by `angle`, within what is open.
inline Shoulder TurnedOn(const Body& body, const Shoulder& shoulder, Lanes angle) {
  Shoulder turned = shoulder;
  const Turn<Lanes> turn = TurnBy(angle);
  turned.angle = WrapAngle(shoulder.angle + angle);
  turned.x = turn.cosine * (shoulder.x + body.shoulder) + turn.sine * body.lateral - body.shoulder;
  turned.hand = Rotated<2>(Back(turn), shoulder.hand);
  // Facing the target and with the back to it may have become the same.
  if (std::fabs(turned.angle[0] - turned.angle[1]) < 2e-8) turned.reached[1] = 0;
  return turned;
}

/// How many more angles 1 are tried where rounding has left it open.
constexpr int kTrials = 10;

/// Trial `trial` of those spread evenly over what is open: how far to turn angle 1 on [rad].
inline Lanes SpreadAngle(const Shoulder& shoulder, int trial) {
  return shoulder.open * ((2 * trial + 1.0) / kTrials - 1) * kOne;
}

/// All joints for the tool frame `target`. Where the arm doesn't reach with the first choice of
/// model angle 1, and rounding has left so much of it open that it matters, others are tried.
template <class Arm>
Solutions Solve(const Arm& arm, const Frame& target) {
  // Rounding is judged by the size of the position: by an infinite one, everything is within reach.
  const Vector<double>& p = target.position;
  if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return {};
  const Shoulder shoulder = SolveShoulder(arm.body, target);
  Solutions solutions = SolveFrom(arm, shoulder);
  if (solutions.Count() > 0 || !AngleMatters(arm, shoulder)) return solutions;
  for (int trial = 0; trial < kTrials && solutions.Count() == 0; ++trial) {
    const Lanes angle = Clamped(AngleToTry(arm, shoulder, trial), shoulder.open * kOne);
    solutions = SolveFrom(arm, TurnedOn(arm.body, shoulder, angle));
  }
  return solutions;
}

/// One way to bend the elbow.
struct Elbow {
  Lanes angle2, angle3;  ///< model angles
  Turn<Lanes> pitch;     ///< by both of them
  Mask reached;          ///< the end is within reach, and for the second elbow not on the rim
};

/// Model angles 2 and 3 that take the forearm's end `x`, `z` away from axis 2: model angle 3
/// positive, then negative. With the end on axis 2 itself every angle 2 does, and 0 is taken.
inline void SolveElbow(const Body& body, const Shoulder& shoulder, Lanes x, Lanes z,
                       Elbow (&elbows)[2]) {
  const double outer = body.upper_arm + body.forearm;
  const double inner = std::fabs(body.upper_arm - body.forearm);
  const Lanes distance2 = x * x + z * z;
  const Mask stretched = distance2 >= outer * (outer - 2 * shoulder.rounding);
  const Mask on_axis2 = distance2 <= shoulder.rounding * shoulder.rounding;
  const Mask folded = on_axis2 | (distance2 <= inner * (inner + 2 * shoulder.rounding));
  const Mask reached = (distance2 <= outer * (outer + 2 * shoulder.rounding)) &
                       (distance2 >= inner * (inner - 2 * shoulder.rounding));

  // Law of cosines, as 1 + cosine and 1 - cosine: neither loses its digits near its rim.
  const double per_product = 1 / (2 * body.upper_arm * body.forearm);
  Lanes plus = (distance2 - inner * inner) * per_product;
  Lanes minus = (outer * outer - distance2) * per_product;
  plus = stretched ? 2 * kOne : folded ? kZero : plus;
  minus = stretched ? kZero : folded ? 2 * kOne : minus;
  const Turn<Lanes> bend = {Sqrt(plus * minus), plus - 1};
  // The end's direction less its direction with model angle 2 at zero.
  const Lanes along = body.upper_arm - body.forearm + body.forearm * plus;
  const Lanes across = body.forearm * bend.sine;
  const Lanes length = Sqrt(distance2 * (along * along + across * across));
  const Lanes per_length = 1 / (on_axis2 ? kOne : length);
  const Turn<Lanes> up = {Where(~on_axis2, (x * along - z * across) * per_length),
                          on_axis2 ? kOne : (z * along + x * across) * per_length};
  const Turn<Lanes> down = {Where(~on_axis2, (x * along + z * across) * per_length),
                            on_axis2 ? kOne : (z * along - x * across) * per_length};
  const Lanes angle3 = AngleOf(bend);
  elbows[0] = {AngleOf(up), angle3, up * bend, reached};
  elbows[1] = {AngleOf(down), -angle3, down * Back(bend), reached & ~(stretched | folded)};
}

/// The turns by the model angles of six joints [rad].
inline void ModelTurns(const Body& body, const double* joints, Turn<double> (&turns)[6]) {
  const double* d = body.direction;
  const double* z = body.zero;
  for (int j = 0; j < 6; j += 2) {
    const Turn<Lanes> both =
        TurnBy(Lanes{d[j], d[j + 1]} * Lanes{joints[j], joints[j + 1]} + Lanes{z[j], z[j + 1]});
    turns[j] = {both.sine[0], both.cosine[0]};
    turns[j + 1] = {both.sine[1], both.cosine[1]};
  }
}

/// The tool frame from model angle 1, the wrist's centre in the arm's frame and `hand`, the tool's
/// rotation in it.
inline Frame ToolFrame(const Body& body, const Turn<double>& turn1, const Vector<double>& centre,
                       const Matrix<double>& hand) {
  const Vector<double> turned = {{turn1.cosine * centre[0] - turn1.sine * centre[1],
                                  turn1.sine * centre[0] + turn1.cosine * centre[1], centre[2]}};
  const Matrix<double> rotation = body.base.rotation * Rotated<2>(turn1, hand);
  return {rotation,
          body.base.position + body.base.rotation * turned - rotation * body.centre_in_tool};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_BODY_H_
