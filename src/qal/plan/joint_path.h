#ifndef QAL_PLAN_JOINT_PATH_H_
#define QAL_PLAN_JOINT_PATH_H_

#include <array>
#include <cstddef>
#include <vector>

#include "../model/frames.h"

// Internal: joints along a path.
namespace qal {

/// The largest difference of two joints, of all six [rad].
inline double LargestDifference(const Joints& a, const Joints& b) {
  double largest = 0;
  for (size_t j = 0; j < a.size(); ++j) largest = Larger(largest, std::fabs(a[j] - b[j]));
  return largest;
}

/// Six joints at a place of a path, and their derivatives with respect to its parameter s.
struct PathPoint {
  double s;
  Joints value;  ///< [rad]
  Joints first;
  Joints second;
  Joints third;
};

/// Joints as piecewise polynomials of degree 7 of a parameter s from 0 to 1. Neighbouring pieces
/// agree in the joints and their first three derivatives.
class JointPath {
 public:
  JointPath() = default;
  /// A path that begins with a point.
  explicit JointPath(const PathPoint& begin) : last_(begin) {}

  /// One more point, at a larger s.
  void Append(const PathPoint& point);
  /// What goes on where this one ends, with all that it agrees in.
  void Append(const JointPath& path);
  /// Takes away what comes after a place, or before.
  void CutAfter(double s);
  void CutBefore(double s);

  const PathPoint& last() const { return last_; }
  size_t size() const { return pieces_.size(); }
  double begin(size_t piece) const { return pieces_[piece].begin; }
  double length(size_t piece) const { return pieces_[piece].length; }

  /// The piece that holds s. Quick where it is `near` or one after it.
  size_t PieceAt(double s, size_t near = 0) const;
  PathPoint At(double s, size_t piece) const;
  PathPoint At(double s) const { return At(s, PieceAt(s)); }

 private:
  struct Piece {
    double begin;
    double length;
    std::array<Joints, 8> coefficient;  // of powers of (s - begin) / length
  };
  std::vector<Piece> pieces_;
  PathPoint last_ = {};
};

/// A place in a piece, `part` of it from its beginning, from 0 to 1; but towards the ends of the
/// path such places come closer together, as the cube.
double PlaceIn(const JointPath& path, size_t piece, double part);

}  // namespace qal

#endif  // QAL_PLAN_JOINT_PATH_H_
