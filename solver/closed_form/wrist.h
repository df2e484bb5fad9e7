#ifndef QAL_SOLVER_CLOSED_FORM_WRIST_H_
#define QAL_SOLVER_CLOSED_FORM_WRIST_H_

#include "geometry.h"

namespace qal::closed_form {

/// Sine of the second wrist angle below which first and third axis count as one line. The direction
/// of the bend is then lost in the last digits; leaving it out moves no matrix element further.
constexpr double kWristSingularSine = 1e-11;

/// Three rotations: about axis a, the axis after it (b), and a again. The matrix of
///
///     R = Ra(first) * Rb(second) * Ra(third)
///
/// has cos(second) in row a, column a; sin(first) sin(second) and -cos(first) sin(second) in the
/// other two rows (b, c) of this column.
template <class L, int a>
struct Wrist {
  static constexpr int b = (a + 1) % 3;
  static constexpr int c = (a + 2) % 3;

  L first, second, third;  ///< [rad]

  /// Sine of the second angle, not negative.
  QAL_INLINED static L Bend(const Matrix<L>& m) {
    return Sqrt<L>(m[b][a] * m[b][a] + m[c][a] * m[c][a]);
  }

  /// The first angle with which the second angle is not negative; `otherwise` where it is singular.
  QAL_INLINED static SinCos<L> First(const Matrix<L>& m, const L& bend,
                                     const SinCos<L>& otherwise) {
    const MaskOf<L> singular = bend < Each<L>(kWristSingularSine);
    const L per_bend = 1.0 / Select<L>(singular, Each<L>(1), bend);
    return {Select<L>(singular, otherwise.sine, m[b][a] * per_bend),
            Select<L>(singular, otherwise.cosine, -m[c][a] * per_bend)};
  }

  /// The angles. Second and third come from what the inverse of the first leaves: so they make up
  /// for whatever rounding has done to it, which near the singularity is much.
  QAL_INLINED static Wrist Solve(const Matrix<L>& matrix, const SinCos<L>& first) {
    const Matrix<L> m = Rotated<a>(Inverse(first), matrix);
    return {Atan2(first), Atan2(SinCos<L>{-m[c][a], m[a][a]}), Atan2(SinCos<L>{-m[b][c], m[b][b]})};
  }

  /// The same rotation with the wrist flipped where the mask holds.
  QAL_INLINED Wrist FlippedWhere(const MaskOf<L>& mask) const {
    return {Select<L>(mask, first + kPi, first), NegatedWhere(mask, second),
            Select<L>(mask, third + kPi, third)};
  }
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_WRIST_H_
