#ifndef QAL_SOLVER_CLOSED_FORM_NEWTON_H_
#define QAL_SOLVER_CLOSED_FORM_NEWTON_H_

#include "chain.h"

namespace qal::closed_form {

/// What the inverses of base and tool leave of a target: the frame that joint 6 shall turn, in the
/// chain's first frame.
inline Frame WithinChain(const Chain& chain, const Frame& target) {
  const Matrix<double> to_base = Transposed(chain.base.rotation);
  const Matrix<double> rotation = target.rotation * Transposed(chain.tool.rotation);
  return {to_base * rotation,
          to_base * (target.position - rotation * chain.tool.position - chain.base.position)};
}

/// How the six equations of a Newton step fall into two blocks: rows (0 to 2 are the position along
/// x, y and z, 3 to 5 the rotation about them) and joints. The joints of the second block hardly
/// move the rows of the first.
struct Blocks {
  int rows[6];
  int joints[6];
};

/// Joints 1 to 3 place the wrist's centre, the others orient.
constexpr Blocks kWristBlocks = {{0, 1, 2, 3, 4, 5}, {0, 1, 2, 3, 4, 5}};
/// Joints 2 to 4 move in the arm's plane, x and z; the others out of it.
constexpr Blocks kPlaneBlocks = {{1, 3, 5, 0, 2, 4}, {0, 4, 5, 1, 2, 3}};

/// Two joint sets side by side on the way to one target.
struct NewtonPoint {
  Lanes joints[6];         ///< [rad]
  SinCos<Lanes> angle[6];  ///< of the joints with the chain's `zero` added
  ChainPose<Lanes> pose;
  Lanes residual[6];  ///< from the pose to the target: lengths, then the rotation vector to first
                      ///< order, both in the frame that joint 1 turns
  Lanes off;          ///< the largest residual; 1 where the rotation is further than 60 degrees
};

inline Lanes Larger(Lanes a, Lanes b) { return a > b ? a : b; }

/// Looks where `at.angle` is, and what is left to the target.
inline void FindResidual(const Chain& chain, const Frame& within, NewtonPoint& at) {
  at.pose = PoseOf(chain, at.angle);
  const ChainPose<Lanes>& pose = at.pose;
  const SinCos<Lanes> back = Inverse(at.angle[0]);
  const Matrix<Lanes> goal = Transposed(Rotated<2>(back, within.rotation));
  const Vector<double>& p = within.position;
  const Vector<Lanes>& last = pose.point[5];
  const Vector<Lanes> away = {{back.cosine * p[0] - back.sine * p[1] - last[0],
                               back.sine * p[0] + back.cosine * p[1] - last[1], p[2] - last[2]}};
  const Vector<Lanes> turn =
      0.5 * (Cross(pose.x, goal[0]) + Cross(pose.y, goal[1]) + Cross(pose.z, goal[2]));
  const Lanes facing = Dot(pose.x, goal[0]) + Dot(pose.y, goal[1]) + Dot(pose.z, goal[2]);
  Lanes off = kZero;
  for (int i = 0; i < 3; ++i) {
    at.residual[i] = away[i];
    at.residual[3 + i] = turn[i];
    off = Larger(off, Larger(Abs(away[i]), Abs(turn[i])));
  }
  // Turned by 180 degrees there would be nothing left to first order.
  at.off = facing > 2 ? off : kOne;
}

inline void PutJoints(const Chain& chain, const Frame& within, const double* a, const double* b,
                      NewtonPoint& at) {
  for (int j = 0; j < 6; ++j) {
    at.joints[j] = Lanes{a[j], b[j]};
    at.angle[j] = SinCosOf(at.joints[j] + chain.links[j].zero);
  }
  FindResidual(chain, within, at);
}

/// The largest of six in size.
inline Lanes LargestOf(const Lanes (&values)[6]) {
  Lanes largest = kZero;
  for (const Lanes value : values) largest = Larger(largest, Abs(value));
  return largest;
}

/// Turns the joints by `step` [rad].
inline void MoveJoints(const Chain& chain, const Frame& within, const Lanes (&step)[6],
                       NewtonPoint& at) {
  // Up to here the powers below leave less than 1e-17.
  constexpr double kSmallRad = 0.01;
  const bool small = !Any(~(LargestOf(step) <= kSmallRad));
  for (int j = 0; j < 6; ++j) {
    const Lanes s = step[j];
    at.joints[j] += s;
    if (small) {
      const Lanes s2 = s * s;
      const SinCos<Lanes> more = {s * (1 - s2 * (1.0 / 6 - s2 * (1.0 / 120))),
                                  1 - s2 * (0.5 - s2 * (1.0 / 24 - s2 * (1.0 / 720)))};
      at.angle[j] = at.angle[j] * more;
    } else {
      at.angle[j] = SinCosOf(at.joints[j] + chain.links[j].zero);
    }
  }
  FindResidual(chain, within, at);
}

/// The inverse of a matrix given by columns; not finite where there is none.
inline Matrix<Lanes> InverseOfColumns(const Vector<Lanes>& a, const Vector<Lanes>& b,
                                      const Vector<Lanes>& c) {
  const Vector<Lanes> bc = Cross(b, c);
  const Lanes per_volume = 1 / Dot(a, bc);
  return {{per_volume * bc, per_volume * Cross(c, a), per_volume * Cross(a, b)}};
}

/// Solves six equations in blocks, [A B; C D] step = right, by the inverse of A and that of
/// D - C inverse(A) B. A singular block leaves a step that is not finite.
template <const Blocks& blocks>
void SolveBlocks(const Lanes (&columns)[6][6], const Lanes (&right)[6], Lanes (&step)[6]) {
  const auto part = [&](int row, const Lanes(&of)[6]) {
    return Vector<Lanes>{
        {of[blocks.rows[row]], of[blocks.rows[row + 1]], of[blocks.rows[row + 2]]}};
  };
  const auto column = [&](int row, int k) { return part(row, columns[blocks.joints[k]]); };
  const Matrix<Lanes> a = InverseOfColumns(column(0, 0), column(0, 1), column(0, 2));
  const auto c_times = [&](const Vector<Lanes>& v) {
    return v[0] * column(3, 0) + v[1] * column(3, 1) + v[2] * column(3, 2);
  };
  Vector<Lanes> ab[3];
  Vector<Lanes> rest[3];
  for (int k = 0; k < 3; ++k) {
    ab[k] = a * column(0, 3 + k);
    rest[k] = column(3, 3 + k) - c_times(ab[k]);
  }
  const Vector<Lanes> alone = a * part(0, right);
  const Vector<Lanes> second =
      InverseOfColumns(rest[0], rest[1], rest[2]) * (part(3, right) - c_times(alone));
  const Vector<Lanes> first = alone - (second[0] * ab[0] + second[1] * ab[1] + second[2] * ab[2]);
  for (int k = 0; k < 3; ++k) {
    step[blocks.joints[k]] = first[k];
    step[blocks.joints[3 + k]] = second[k];
  }
}

/// How the joints have to turn for the tip to move by `moved`, to first order.
/// @param moved as `NewtonPoint::residual`
template <const Blocks& blocks>
void StepFor(const NewtonPoint& at, const Lanes (&moved)[6], Lanes (&step)[6]) {
  // Seen at joint 5, where the wrist's centre is: most joints behind it leave that in place.
  const ChainPose<Lanes>& pose = at.pose;
  const Vector<Lanes>& centre = pose.point[4];
  const Vector<Lanes> more =
      Cross(Vector<Lanes>{{moved[3], moved[4], moved[5]}}, centre - pose.point[5]);
  const Lanes right[6] = {moved[0] + more[0], moved[1] + more[1], moved[2] + more[2],
                          moved[3],           moved[4],           moved[5]};
  Lanes columns[6][6];
  for (int j = 0; j < 6; ++j) {
    const Vector<Lanes> lever = Cross(pose.axis[j], centre - pose.point[j]);
    for (int i = 0; i < 3; ++i) {
      columns[j][i] = lever[i];
      columns[j][3 + i] = pose.axis[j][i];
    }
  }
  SolveBlocks<blocks>(columns, right, step);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_NEWTON_H_
