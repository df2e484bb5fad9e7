#ifndef QAL_SOLVER_CLOSED_FORM_PATH_STEP_H_
#define QAL_SOLVER_CLOSED_FORM_PATH_STEP_H_

#include "chain.h"
#include "pose_path.h"

namespace qal::closed_form {

/// What six joints lack to a pose of a path, and how they have to move along it.
struct PathStep {
  ComplexLanes step[6];  ///< by how much more the joints have to turn, to first order [rad]
  ComplexLanes rate[6];  ///< the joints' derivatives by t, to first order in what they lack
  Lanes size;            ///< of `step`: the sum of its parts [rad]; infinite beyond a right angle
};

/// Solves five linear equations for two right-hand sides, columns 5 and 6, and puts the solutions
/// there. By the modified Gram-Schmidt orthogonalisation, as the lanes can't choose pivots of their
/// own. A column of which
/// those before leave no more than `least_norm`, the length's square, is left out.
inline void SolveFive(ComplexLanes (&columns)[7][5], double least_norm) {
  ComplexLanes factors[5][7];
  for (int k = 0; k < 5; ++k) {
    const ComplexLanes(&c)[5] = columns[k];
    const Lanes norm = ((Norm(c[0]) + Norm(c[1])) + (Norm(c[2]) + Norm(c[3]))) + Norm(c[4]);
    const Lanes per_norm = Where(norm > least_norm, 1 / norm);
    for (int j = k + 1; j < 7; ++j) {
      ComplexLanes(&d)[5] = columns[j];
      ComplexLanes product = Conjugate(c[0]) * d[0];
      for (int i = 1; i < 5; ++i) product = product + Conjugate(c[i]) * d[i];
      const ComplexLanes factor = {product.re * per_norm, product.im * per_norm};
      for (int i = 0; i < 5; ++i) d[i] = d[i] - factor * c[i];
      factors[k][j] = factor;
    }
  }
  for (int side = 5; side < 7; ++side) {
    for (int k = 4; k >= 0; --k) {
      ComplexLanes x = factors[k][side];
      for (int j = k + 1; j < 5; ++j) x = x - factors[k][j] * columns[side][j];
      columns[side][k] = x;
    }
  }
}

/// @param sincos of the joints' angles with `zero` added
inline PathStep StepTo(const Chain& chain, const SinCos<ComplexLanes> (&sincos)[6],
                       const PathPose& goal, double least_norm = 0) {
  // All in the frame that joint 1 turns.
  const ChainPose<ComplexLanes> pose = PoseOf(chain, sincos);
  const SinCos<ComplexLanes> back = Inverse(sincos[0]);
  const auto turned_back = [&](const Vector<ComplexLanes>& v) {
    return Vector<ComplexLanes>{
        {back.cosine * v[0] - back.sine * v[1], back.sine * v[0] + back.cosine * v[1], v[2]}};
  };
  const Matrix<ComplexLanes> r = Rotated<2>(back, goal.rotation);
  const auto column = [&](int i) { return Vector<ComplexLanes>{{r[0][i], r[1][i], r[2][i]}}; };
  const Vector<ComplexLanes> turn =
      0.5 * (Cross(pose.x, column(0)) + Cross(pose.y, column(1)) + Cross(pose.z, column(2)));
  const Vector<ComplexLanes> spin = turned_back(goal.spin);
  // Of the point at joint 1's origin, as if joint 6 carried it: joint 1 leaves it in place, and is
  // left with the rotation about z.
  const Vector<ComplexLanes>& tip = pose.point[5];
  const Vector<ComplexLanes> away = (turned_back(goal.position) - tip) + Cross(tip, turn);
  const Vector<ComplexLanes> velocity = turned_back(goal.velocity) + Cross(tip, spin);
  ComplexLanes columns[7][5];
  const auto fill = [&](int k, const Vector<ComplexLanes>& move, const Vector<ComplexLanes>& by) {
    for (int i = 0; i < 3; ++i) columns[k][i] = move[i];
    for (int i = 0; i < 2; ++i) columns[k][3 + i] = by[i];
  };
  for (int j = 1; j < 6; ++j) fill(j - 1, Cross(pose.point[j], pose.axis[j]), pose.axis[j]);
  fill(5, away, turn);
  fill(6, velocity, spin);
  SolveFive(columns, least_norm);
  PathStep result;
  result.step[0] = turn[2];
  result.rate[0] = spin[2];
  result.size = kZero;
  for (int j = 1; j < 6; ++j) {
    result.step[j] = columns[5][j - 1];
    result.rate[j] = columns[6][j - 1];
    result.step[0] = result.step[0] - pose.axis[j][2] * result.step[j];
    result.rate[0] = result.rate[0] - pose.axis[j][2] * result.rate[j];
  }
  for (const ComplexLanes& one : result.step) result.size += Abs(one.re) + Abs(one.im);
  // The rotation vector is taken for `turn`, which is 0 half a rotation away as well: there the
  // matrices' scalar product, 1 + 2 cos, is not 3 but -1.
  const ComplexLanes match =
      (Dot(pose.x, column(0)) + Dot(pose.y, column(1))) + Dot(pose.z, column(2));
  result.size = match.re > 1 ? result.size : HUGE_VAL * kOne;
  return result;
}

/// An angle more by `by` [rad]: within 1e-7 for 0.3 rad, 1e-3 for 1 rad, which the next step makes
/// up for.
inline SinCos<ComplexLanes> TurnedBy(const SinCos<ComplexLanes>& angle, const ComplexLanes& by) {
  // The tangent of half of it, x + x^3 / 3 + 2 x^5 / 15, and sine and cosine of that.
  const ComplexLanes x = 0.5 * by;
  const ComplexLanes x2 = x * x;
  const ComplexLanes tangent = x + x * (x2 * (2.0 / 15 * x2 + 1.0 / 3));
  const ComplexLanes tangent2 = tangent * tangent;
  const ComplexLanes factor = Reciprocal(tangent2 + 1.0);
  const SinCos<ComplexLanes> turn = {2 * (factor * tangent), factor * (-tangent2 + 1.0)};
  const SinCos<ComplexLanes> turned = turn * angle;
  // The squares' sum is kept at 1: with large imaginary parts rounding takes it far away.
  const ComplexLanes sum = turned.sine * turned.sine + turned.cosine * turned.cosine;
  const ComplexLanes scale = -0.5 * sum + 1.5;
  return {scale * turned.sine, scale * turned.cosine};
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_PATH_STEP_H_
