#ifndef QAL_PLAN_PATH_FOLLOWER_H_
#define QAL_PLAN_PATH_FOLLOWER_H_

#include <optional>

#include "joint_path.h"
#include "screws.h"
#include "tool_path.h"

// Internal: the joints that keep the tool on a path.
namespace qal {

/// What says which joints belong to a place of a path.
class PlaceSolver {
 public:
  virtual ~PlaceSolver() = default;

  /// Newton's method from `guess`, which is exact to rounding once it converges.
  /// @return the joints and their derivatives along the path; nothing where it doesn't converge, or
  ///         where the arm is singular
  virtual std::optional<PathPoint> Solve(double s, const Joints& guess) const = 0;

  /// How far joints are from where they should have the tool, in metres or radians.
  virtual double Deviation(double s, const Joints& joints) const = 0;
};

/// The joints that have the tool on a path of it, next to given ones.
class ToolSolver final : public PlaceSolver {
 public:
  /// @param begin the place at which the tool's path begins
  ToolSolver(const Screws& screws, const ToolPath& path, double begin)
      : screws_(screws), path_(path), begin_(begin) {}
  std::optional<PathPoint> Solve(double s, const Joints& guess) const override;
  double Deviation(double s, const Joints& joints) const override;

 private:
  const Screws& screws_;
  const ToolPath& path_;
  double begin_;
};

/// The joints' axes as twists, and how these change with joints that move.
class MovingAxes {
 public:
  explicit MovingAxes(const std::array<Twist, 6>& axes) : axes_(axes) {}

  /// Takes the joints' first derivatives.
  void SetFirst(const Joints& first);
  /// Takes the second ones, after the first.
  void SetSecond(const Joints& second);

  const Twist& axis(size_t j) const { return axes_[j]; }
  const Twist& change(size_t j) const { return changes_[j]; }
  const Twist& second_change(size_t j) const { return second_changes_[j]; }

 private:
  const std::array<Twist, 6>& axes_;
  Joints first_ = {};
  std::array<Twist, 6> before_ = {};  // the motion of the joints before each
  std::array<Twist, 6> changes_ = {};
  std::array<Twist, 6> second_changes_ = {};
};

/// Follows a path from the last point of `joints` on, without a jump to another solution. Between
/// the points that are solved the joints are polynomials that leave the path by less than 1e-10 m
/// and 1e-10 rad: each piece is as short as that takes.
/// @return the place that is reached: `to`, or where there is no way on
double Follow(const PlaceSolver& solver, double to, JointPath& joints);

}  // namespace qal

#endif  // QAL_PLAN_PATH_FOLLOWER_H_
