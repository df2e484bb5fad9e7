#ifndef QAL_PLAN_REGION_H_
#define QAL_PLAN_REGION_H_

#include <array>
#include <cstddef>

// Internal: states of a motion along a path.
namespace qal {

/// A state on a path: the square of the speed, and the acceleration, both of the path's parameter.
struct PathState {
  double square;        ///< (ds/dt)^2
  double acceleration;  ///< d2s/dt2, half the derivative of the square with respect to s
};

/// A half plane of states: those with square * s + acceleration * a <= bound.
struct HalfPlane {
  double square;
  double acceleration;
  double bound;

  double Excess(const PathState& state) const {
    return square * state.square + acceleration * state.acceleration - bound;
  }
};

/// A convex set of states: a polygon by its corners, counter-clockwise; also a line, a point, or
/// nothing.
class Region {
 public:
  /// Corners of a simplified region at the most.
  static constexpr size_t kFewCorners = 8;

  struct Corner {
    PathState state;
    bool known;      ///< whether `outside` is; not of new corners
    double outside;  ///< the user's: above 0 where the corner doesn't belong to the region
  };

  // What is beyond the corners that there are is neither set nor read.
  Region() {}  // NOLINT(modernize-use-equals-default): that one would set it
  /// A rectangle.
  Region(const PathState& low, const PathState& high);
  /// A line.
  static Region Between(const PathState& a, const PathState& b);

  size_t size() const { return size_; }
  Corner& operator[](size_t i) { return corners_[i]; }
  const Corner& operator[](size_t i) const { return corners_[i]; }

  /// Half planes that make up the region: one inside of each edge; of a line two along it, and one
  /// at each end.
  size_t edges() const { return size_ == 2 ? 4 : size_; }
  HalfPlane Edge(size_t i) const;

  /// Takes away what is outside.
  void Cut(const HalfPlane& plane);
  /// Cuts the corners off that are outside or not known.
  void KeepInside();
  /// Cuts the least corners off until there are few.
  void Simplify();

 private:
  // A cut adds one at the most; what is beyond this many is cut off.
  static constexpr size_t kMostCorners = 32;

  std::array<Corner, kMostCorners> corners_;
  size_t size_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_REGION_H_
