#ifndef QAL_PLAN_PATH_FOLLOWER_H_
#define QAL_PLAN_PATH_FOLLOWER_H_

#include <optional>

#include "joint_path.h"
#include "line_path.h"
#include "screws.h"

// Internal: the joints that keep the tool on a path.
namespace qal {

/// Solves places of a path for the joints next to given ones.
class PathSolver {
 public:
  PathSolver(const Screws& screws, const LinePath& path) : screws_(screws), path_(path) {}

  /// Newton's method from `guess`, which is exact to rounding once it converges.
  /// @return the joints and their derivatives along the path; nothing where it doesn't converge, or
  ///         where the arm is singular
  std::optional<PathPoint> Solve(double s, const Joints& guess) const;

  /// How far joints are from where the path has the tool: the larger of the distance [m] and the
  /// angle [rad].
  double Deviation(double s, const Joints& joints) const;

 private:
  const Screws& screws_;
  const LinePath& path_;
};

/// A path's joints, as far as they could be followed.
struct FollowedPath {
  JointPath joints;
  double stopped = 1;  ///< s beyond which there is no way on; 1: the whole path
};

/// Follows a path from joints that have its start, without a jump to another solution. Between the
/// points that are solved the joints are polynomials that leave the path by less than 1e-10 m and
/// 1e-10 rad: each piece is as short as that takes.
FollowedPath Follow(const PathSolver& solver, const Joints& start);

}  // namespace qal

#endif  // QAL_PLAN_PATH_FOLLOWER_H_
