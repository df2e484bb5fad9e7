#ifndef QAL_STUDY_REACH_H_
#define QAL_STUDY_REACH_H_

/// @file
/// Reach studies: from which directions the tool reaches the cells of a box; from which places of
/// the arm's base it reaches poses.

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "../solve/batch.h"

namespace qal {

/// What is studied: a box of cells, and the orientations of the tool that are tried at the centre
/// of each.
///
/// Cells are cubes with edges of `step_m`, as few as cover the box and centred on it; a box without
/// extent along an axis has one layer there. The tool works along its z axis. The directions of
/// that axis are spread evenly over the cap within `tilt_cone_rad` of `tilt_axis`: direction k of n
/// is turned by k golden sections of a turn about the tilt axis, and has the share (k + 1/2) / n of
/// the cap's area between itself and that axis. Over the whole sphere this is the Fibonacci lattice
/// (Gonzalez, Measurement of areas on a sphere using Fibonacci and latitude-longitude lattices,
/// Mathematical Geosciences 42, 2010), which is the default. A single direction is the
/// tilt axis itself.
///
/// What is left of an orientation is its roll about the tool's z axis. The base frame taken by the
/// shortest way from its z axis to the tilt axis, and on by the shortest way to the direction, is
/// roll 0; spin r of s is rolled by r / s of a turn more. (Of the ways from z to -z the one about x
/// is taken.)
///
/// With `poses` it is the placement of the arm's base that is studied: cells are positions of the
/// base, which keeps its orientation, and what is tried in each are the poses, which take the place
/// of the directions. A pose at p is for a base at c, with the arm's own base at b (`Arm::base`),
/// the pose of the same orientation at p - c + b, in this order.
struct ReachStudy {
  Vec3 box_min = {0, 0, 0};     ///< corner of the box [m, base frame]
  Vec3 box_max = {0, 0, 0};     ///< the opposite corner [m, base frame], nowhere below the other
  double step_m = 0.05;         ///< edge of a cell [m]
  int directions = 100;         ///< of the tool's z axis, 1 to 100000
  int spins = 1;                ///< rolls about each direction, 1 to 36
  Vec3 tilt_axis = {0, 0, -1};  ///< the cap's middle [base frame], of any length
  double tilt_cone_rad = 3.14159265358979323846;  ///< of the cap, from its middle, 0 to pi [rad]
  /// Length of the straight approach on which the tool has to arrive [m]; 0: none. What is tried in
  /// a cell is then its end. A solution counts when the joints go on from it without a jump to
  /// another one and within their limits along all of the line, back to where it begins; which is
  /// to say, when `PlanLine` can follow the line from there to this solution.
  double line_m = 0;
  /// Where the approach leads [base frame], of any length; nothing: along the tool's z axis.
  std::optional<Vec3> line_direction = {};
  /// Poses of the tool that are to be reached, up to `kMostReachPoses`, in a frame that stands
  /// still while the base takes one cell's place after the other; the box is in it, too. The four
  /// members before are then not looked at. Empty: no placement is studied.
  std::vector<Pose> poses = {};
};

/// The cells of a study. They are counted from 0, along x first, then y, then z.
struct ReachGrid {
  std::array<size_t, 3> count;  ///< of cells along x, y and z
  Vec3 first;                   ///< centre of cell 0 [m, the box's frame]
  double step_m;                ///< edge of a cell [m]

  /// How many cells there are.
  size_t cells() const { return count[0] * count[1] * count[2]; }
  /// The centre of a cell [m, the box's frame].
  QAL_API Vec3 Centre(size_t cell) const;
};

/// A study has no more cells.
constexpr size_t kMostReachCells = 1000000000;
/// Nor more poses.
constexpr size_t kMostReachPoses = 1000000;
/// In so many parts an approach is cut to look for its smallest singular value.
constexpr int kReachLineParts = 16;

/// The cells of a study.
/// @return kNotFinite; kNotAnOrientation; kSetting when the study is none, `detail` names what of
///         it
QAL_API Result<ReachGrid> GridOf(const ReachStudy& study);

/// How many directions are tried in each cell; of a placement how many poses.
QAL_API int DirectionsOf(const ReachStudy& study);

/// The orientations that are tried in each cell: those of direction d are number d * spins to
/// (d + 1) * spins - 1; of a placement those of the poses, one each.
/// @return as `GridOf`
QAL_API Result<std::vector<Quat>> OrientationsOf(const ReachStudy& study);

/// What a study says of one cell. The best solution of an orientation is the one whose joints stay
/// furthest from their limits. Of a box's cell the best of all orientations is told: how well the
/// tool can work there. Of a placement, where all poses have to be reached, the pose is told whose
/// best solution stays least far: how well the worst of them is reached. In a tie it is the first
/// orientation, and the solver's first solution of it.
struct ReachCell {
  uint32_t directions = 0;   ///< how many of them are reached: in at least one of their spins there
                             ///< is an admissible solution, with the study's approach if any
  uint32_t solutions = 0;    ///< admissible ones of all orientations together
  int32_t orientation = -1;  ///< of the told solution; -1, and NaN below: nothing is reached
  Joints joints = {kNone, kNone, kNone, kNone, kNone, kNone};  ///< the told solution [rad]
  /// From its nearest limit [rad], the smallest on the approach if any; infinity without limits.
  double margin_rad = kNone;
  /// As in `Singularities`, at its joints, or the smallest of `kReachLineParts` + 1 places on its
  /// approach; of a placement the smallest of all reached poses' best solutions.
  double smallest_singular_value = kNone;

 private:
  static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
};

/// Studies some of the cells, on all cores. A cell's answer is that of `Inverse` for each of its
/// poses (of a placement, for each pose as the base at the cell sees it), with the middle of each
/// joint's range as reference, and the same bits whatever cells are studied with it and by however
/// many threads.
/// @param arm     the arm with the tool (`Arm::WithTool`)
/// @param study   box and orientations
/// @param first   cell to begin with
/// @param last    the one after the last cell
/// @param options threads; `progress` is told how many directions of cells are done, of
///                (last - first) * DirectionsOf(study)
/// @return last - first cells; the errors of `GridOf`; kSetting when there are no such cells;
///         kInterrupted when `progress` stopped it; an error of `Inverse` other than kOutOfReach
QAL_API Result<std::vector<ReachCell>> Reach(const Arm& arm, const ReachStudy& study, size_t first,
                                             size_t last, const BatchOptions& options = {});

}  // namespace qal

#endif  // QAL_STUDY_REACH_H_
