#ifndef QAL_CORE_POS_H_
#define QAL_CORE_POS_H_

/// @file
/// Positions and displacements.

#include "export.h"

/// A position of the tool centre, or a displacement [the solver's length unit, metres here].
///
/// Positions are in the frame of the inverse-kinematics solver, the arm's base frame.
/// 24 bytes; the layout and the out-of-line members are part of the binary interface.
class QAL_API Pos {
 public:
  double x;  ///< coordinate along x [m]
  double y;  ///< coordinate along y [m]
  double z;  ///< coordinate along z [m]

  /// (0, 0, 0).
  Pos();
  /// The position (`x_m`, `y_m`, `z_m`) [m].
  Pos(double x_m, double y_m, double z_m) : x(x_m), y(y_m), z(z_m) {}

  // Compiled in the library, not in the header: a class whose copy is not trivial travels by
  // reference when passed by value, and callers built earlier rely on that.
  /// A copy, every bit of it.
  Pos(const Pos& other);
  /// Takes all three coordinates.
  Pos& operator=(const Pos& other) = default;

  /// Component-wise sum.
  Pos operator+(const Pos& other) const;
  /// Component-wise difference, this minus `other`.
  Pos operator-(const Pos& other) const;
  /// True when the three coordinates are exactly equal; false when one is NaN.
  bool operator==(const Pos& other) const;
};

#endif  // QAL_CORE_POS_H_
