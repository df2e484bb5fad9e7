#include "forward.h"

#include <cmath>

// The components w, x, y, z of a quaternion are worked out side by side, in the compiler's vector
// types, and without a branch on the rotation: poses come in no order that the processor could
// predict.

namespace qal {

namespace {

using Doubles [[gnu::vector_size(32)]] = double;
using Floats [[gnu::vector_size(16)]] = float;
using Flags [[gnu::vector_size(16)]] = int;  // -1 for true, 0 for false

Flags Select(Flags which, Flags yes, Flags no) { return (which & yes) | (~which & no); }

/// Magnitudes of the components of the rotation matrix `r`. Everything past the sums is single
/// precision: stored orientations carry float values.
Floats Magnitudes(const double* r) {
  const Doubles four_squares = Doubles{r[0], r[0], r[4], r[8]} +
                               Doubles{r[4], -r[4], -r[0], -r[0]} +
                               Doubles{r[8], -r[8], -r[8], -r[4]} + 1.0;
  Floats m = __builtin_convertvector(four_squares * 0.25, Floats);
  m = m < 0.0f ? Floats{} : m;  // rounding of a vanishing component; NaN stays NaN
  for (int i = 0; i < 4; ++i) m[i] = std::sqrt(m[i]);
  return m;
}

/// Whether a - b is not negative, in elements 0 and 1, and whether a + b is not, in 2 and 3. NaN
/// counts as negative.
Flags NotNegative(double a, double b) {
  using TwoDoubles [[gnu::vector_size(16)]] = double;
  // The same bits as twice as many flags. NOLINTNEXTLINE(*-reinterpret-cast)
  return reinterpret_cast<Flags>(TwoDoubles{a - b, a + b} >= 0.0);
}

/// Which components are positive when the largest one is: those whose product with it is. Of equal
/// ones the first counts as the largest.
Flags Positive(const double* r, Floats m) {
  const Flags wx_yz = NotNegative(r[7], r[5]);
  const Flags wy_xz = NotNegative(r[2], r[6]);
  const Flags wz_xy = NotNegative(r[3], r[1]);
  const Flags wx_yz_wy_xz = __builtin_shufflevector(wx_yz, wy_xz, 0, 2, 4, 6);
  const Flags with_w = Flags{-1, 0, 0, 0} | __builtin_shufflevector(wx_yz_wy_xz, wz_xy, 0, 0, 2, 4);
  const Flags with_x = Flags{0, -1, 0, 0} | __builtin_shufflevector(wx_yz_wy_xz, wz_xy, 0, 0, 6, 3);
  const Flags with_y = Flags{0, 0, -1, 0} | __builtin_shufflevector(wx_yz_wy_xz, wz_xy, 2, 6, 6, 1);
  const Flags with_z = Flags{0, 0, 0, -1} | __builtin_shufflevector(wx_yz_wy_xz, wz_xy, 4, 3, 1, 1);

  const Floats neighbour = __builtin_shufflevector(m, m, 1, 0, 3, 2);
  const Floats pair = m > neighbour ? m : neighbour;
  const Floats other_pair = __builtin_shufflevector(pair, pair, 2, 3, 0, 1);
  const Flags largest = m >= (pair > other_pair ? pair : other_pair);
  const Flags is_w = __builtin_shufflevector(largest, largest, 0, 0, 0, 0);
  const Flags is_x = __builtin_shufflevector(largest, largest, 1, 1, 1, 1);
  const Flags is_y = __builtin_shufflevector(largest, largest, 2, 2, 2, 2);
  return Select(is_w, with_w, Select(is_x, with_x, Select(is_y, with_y, with_z)));
}

}  // namespace

bool ForwardPose(const Context& arm, const double* joints, Pos& position, Ori& orientation) {
  double eetrans[3];
  double eerot[9];
  arm.solver.Forward(joints, eetrans, eerot);

  const Floats magnitude = Magnitudes(eerot);
  const Doubles m = __builtin_convertvector(magnitude, Doubles);
  const Doubles square = m * m;
  const double norm = std::sqrt(square[0] + square[1] + square[2] + square[3]);
  if (std::isnan(norm)) {  // so is a magnitude
    arm.Tell(Event::kNoPose);
    return false;
  }
  const Floats signed_m = Positive(eerot, magnitude) ? magnitude : -magnitude;
  const Floats q =
      __builtin_convertvector(__builtin_convertvector(signed_m, Doubles) / norm, Floats);
  position = Pos(eetrans[0], eetrans[1], eetrans[2]);
  orientation = Ori(static_cast<double>(q[0]), static_cast<double>(q[1]), static_cast<double>(q[2]),
                    static_cast<double>(q[3]));
  return true;
}

}  // namespace qal
