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
template <int a>
struct Wrist {
  static constexpr int b = (a + 1) % 3;
  static constexpr int c = (a + 2) % 3;

  Lanes first, second, third;  ///< [rad]

  /// Sine of the second angle, not negative.
  static Lanes Bend(const Matrix<Lanes>& m) { return Sqrt(m[b][a] * m[b][a] + m[c][a] * m[c][a]); }

  /// The first angle with which the second angle is not negative; `otherwise` where it is singular.
  static SinCos<Lanes> First(const Matrix<Lanes>& m, Lanes bend, const SinCos<Lanes>& otherwise) {
    const Mask singular = bend < kWristSingularSine;
    const Lanes per_bend = 1 / (singular ? kOne : bend);
    return {singular ? otherwise.sine : m[b][a] * per_bend,
            singular ? otherwise.cosine : -m[c][a] * per_bend};
  }

  /// The angles. Second and third come from what the inverse of the first leaves: so they make up
  /// for whatever rounding has done to it, which near the singularity is much.
  static Wrist Solve(const Matrix<Lanes>& matrix, const SinCos<Lanes>& first) {
    const Matrix<Lanes> m = Rotated<a>(Inverse(first), matrix);
    return {Atan2(first), Atan2({-m[c][a], m[a][a]}), Atan2({-m[b][c], m[b][b]})};
  }

  /// The same rotation with the wrist flipped.
  Wrist Flipped() const { return {first + kPi, -second, third + kPi}; }
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_WRIST_H_
