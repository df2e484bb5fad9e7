#ifndef QAL_KINEMATICS_IKFUNC_H_
#define QAL_KINEMATICS_IKFUNC_H_

/// @file
/// The fixed interface: kinematics, jogs, lines and joint moves of one arm a process.

#include <vector>

#include "../core/pos.h"
#include "../core/roadpoint.h"

/// Kinematics and motion planning of a six-axis arm. All operations are static and keep no state.
///
/// Conventions that hold throughout:
/// - Lengths are in the solver's unit, metres for every constant here; angles in radians.
/// - Positions and orientations are of the tool centre in the arm's base frame. Quaternions are
///   Hamilton, w first, tool frame to base frame. Euler triples are {roll, pitch, yaw} for
///   R = Rz(yaw) * Ry(pitch) * Rx(roll).
/// - A joint vector is 6 doubles, joint 1 first. Joints 1 to 3 are the big axes, 4 to 6 the small.
/// - Waypoints of a trajectory are one control cycle, 0.005 s, apart.
/// - Solution choice: a solution is admissible when every joint lies in
///   [-2.967059678, 2.967059678] rad (and, where a bound is given, within the bound of its
///   reference joint, equality included). Its distance is the plain sum of the absolute joint
///   differences, not wrapped. The nearest admissible one wins, the solver's earlier one in a tie.
///   A solution at distance exactly 0 doesn't hold against a later admissible one: 0 is also the
///   mark of "none yet". Solutions that don't have six joints are passed over. A joint that is NaN
///   is never refused.
/// - Nudge: each joint above 0 loses 1e-5 rad, every other gains 1e-5 rad.
/// - Pointers must not be null and must point to as many elements as said.
/// - Messages to standard error are raw bytes; lines to standard output go through `std::cout`.
///   Where forward kinematics fails inside another operation, `ArmFk`'s message comes, whatever
///   that operation's result, and before its own messages.
/// - Nothing throws but the containers (std::bad_alloc), the streams where the host has switched
///   their exceptions on, and a solver that throws; all of these pass through. They leave waypoints
///   as they were, and in a vector or an array whole points only: what was there, or the beginning
///   of the trajectory.
/// - Operations may run at once on distinct data as far as the solver allows it, and while
///   `std::cout` is synchronised with stdio, as it is unless the host has switched that off.
/// - Only the range of an `int` bounds the points of an S-curve line and of a ramped joint move: a
///   jerk next to nothing, or joints turning for hours, need gigabytes.
class QAL_API Ikfunc {
 public:
  /// An object without contents: every operation is static and needs none.
  Ikfunc();

  /// @name Forward kinematics
  /// @{

  /// Pose of six joint angles.
  ///
  /// The solver's rotation matrix becomes a quaternion in single precision: each magnitude is
  /// sqrt((1 +- r00 +- r11 +- r22) / 4), the largest one (w before x before y before z in a tie) is
  /// positive, and the others take their signs from the off-diagonal sums and differences. Each
  /// component is a float value held in a double. Half a turn about x gives (0, 1, 0, 0).
  /// @param arm_pos     out: position [m, base frame], as the solver gives it
  /// @param arm_ori     out: orientation (w first), its largest component not negative
  /// @param joint_solve 6 joints [rad]
  /// @return false, with both outputs untouched and "Error while converting to quaternion!\n" on
  ///         standard error, when a magnitude is NaN: with a NaN on the matrix's diagonal, or with
  ///         infinities there that cancel. Others pass. A NaN elsewhere in the matrix counts as a
  ///         negative sum or difference, one in the position is written as it is, and a single
  ///         infinity on the diagonal gives NaN components.
  static bool ArmFk(Pos& arm_pos, Ori& arm_ori, double* joint_solve);

  /// Pose of a waypoint's own joints, written to its `position` and `orientation`; `jointpos` and
  /// `ik_flag` stay. On failure (as above) the whole waypoint stays.
  static bool ArmFk(RoadPoint& arm_pos);

  /// @}
  /// @name Inverse kinematics, nearest solution
  /// @{

  /// Solves a waypoint's pose for the joints nearest a reference.
  ///
  /// When the pose is that of `joint` already (each coordinate within 1e-5 m, each quaternion
  /// component within 0.0001) the result is true and nothing is written. A NaN agrees with any
  /// number there: a pose that is NaN throughout counts as known. When the solver finds nothing, it
  /// is queried once more for the pose of the nudged reference joints moved by the difference
  /// between the target and the reference's pose. Where forward kinematics fails, the reference's
  /// pose is (0, 0, 0) with the zero quaternion.
  /// @param cur_stat in/out: the pose to solve. Success: `jointpos` and `ik_flag` = true; the pose
  ///                 stays as given, also when the second query was the one answered.
  /// @param joint    6 reference joints [rad]; may be `cur_stat.jointpos`
  /// @return false when the solver finds nothing both times: `cur_stat` is then the shifted target,
  ///         with zero joints and a false flag. Also false when no solution is admissible:
  ///         `cur_stat` then stays as it was. No message of its own either way.
  static bool ArmIk(RoadPoint& cur_stat, double* joint);

  /// Whether `ArmIk(cur_stat, cur_stat.jointpos)` succeeds. The waypoint is left as it was.
  static bool ArmIk(RoadPoint& cur_stat);

  /// Whether the pose of `testpoint.jointpos` has the position `testpoint.position`, within 0.002 m
  /// on each axis (equality passes). Orientation plays no part. True also when forward kinematics
  /// fails, which has then written its message.
  static bool ChekcArmPointok(RoadPoint testpoint);

  /// Whether the solver finds anything for a waypoint's pose; if not, moves the waypoint to where
  /// its joints are.
  /// @param cur_stat in/out: untouched when the solver finds anything, be it admissible or not (its
  ///                 joints too, even where they don't match). Otherwise its joints become those of
  ///                 the step-bounded `ArmJointIk` against themselves, 0.0436332 rad at most,
  ///                 `ik_flag` becomes true, and its pose the pose of these joints, however far
  ///                 that is from the one given. Where forward kinematics fails, the one given
  ///                 stays.
  /// @return true for both; false when `ArmJointIk` fails: `cur_stat` untouched, `ArmJointIk`'s
  ///         message on standard error, then the line "ARM IK is error" on standard output.
  static bool ArmCheckAndCountSimilarIk(RoadPoint& cur_stat);

  /// @}
  /// @name Inverse kinematics within a step bound
  /// All three write nothing on failure, never change a pose, and say on standard error either
  /// "Failed to get  ik solution ArmJointIK \n" (the solver found nothing, fallbacks included) or
  /// "Failed to get joint ik solution\n" (it did, but none admissible within the bound). A bound
  /// that is NaN bounds nothing; a negative one admits nothing (but joints that are NaN).
  /// @{

  /// Solves a waypoint's pose within a step bound of reference joints.
  ///
  /// Fallback: the pose of the nudged reference joints. An unreachable target is so answered with
  /// the reference configuration, to within the nudge, and a trajectory holds its joints.
  /// @param cur_stat             in/out: pose to solve; success: `jointpos`, `ik_flag` = true
  /// @param joint                6 reference joints [rad]; may be `cur_stat.jointpos`
  /// @param max_joint_step_range bound of each joint's move [rad]
  static bool ArmJointIk(RoadPoint& cur_stat, double* joint, double max_joint_step_range);

  /// Solves the pose of `dis_stat` within a step bound of `cur_stat`'s joints.
  ///
  /// Fallback: the pose of `cur_stat`'s nudged joints, plus the position difference of the two
  /// waypoints, plus the Euler-angle difference from `cur_stat`'s joints to the target; the bound
  /// is then taken from the nudged joints.
  /// @param cur_stat             only read
  /// @param dis_stat             in/out: pose to solve; success: `jointpos`, `ik_flag` = true
  /// @param max_joint_step_range bound of each joint's move [rad]
  static bool ArmJointIk(RoadPoint& cur_stat, RoadPoint& dis_stat, double max_joint_step_range);

  /// Solves a waypoint's pose, reached by the straight step `dis`, within a step bound.
  ///
  /// First fallback: the pose of `cur_stat`'s own joints (not `joint`), moved by `dis`. Second
  /// fallback: the pose of the same joints nudged, moved by `dis`.
  /// @param cur_stat             in/out: pose to solve; success: `jointpos`, `ik_flag` = true
  /// @param dis                  the step that led here [m, base frame]
  /// @param joint                6 reference joints [rad]; may be `cur_stat.jointpos`
  /// @param max_joint_step_range bound of each joint's move [rad]
  static bool ArmLineMoveIk(RoadPoint& cur_stat, const Pos& dis, double* joint,
                            double max_joint_step_range);

  /// @}
  /// @name Jog
  /// @{

  /// One jog step from the current waypoint, with its joints solved.
  ///
  /// No joint may move further than 1000 * |step|. When the solver finds nothing for the target,
  /// the same jog is tried once from the pose of the nudged joints; `result` then has that pose.
  /// @param cur_stat   current waypoint, only read; its joints are the reference
  /// @param coordinate 1: tool frame; any other value: base frame
  /// @param move_mode  0, 1, 2: translation along x, y, z; 3, 4, 5: rotation about x, y, z, in the
  ///                   tool frame only. Anything else and a rotation in the base frame solve the
  ///                   current pose again.
  /// @param step       signed length [m] or angle [rad]. One of 0 leaves no joint any room: it
  ///                   succeeds only where the solver gives the current joints back exactly, which
  ///                   from a pose of `ArmFk`, in single precision, it hardly ever does.
  /// @param result     out, on success only: pose, joints, `ik_flag` = true; may be `cur_stat`
  /// @return false, with `result` untouched and a message on standard error:
  ///         "2 Failed to get  ik solution\n" when both queries found nothing,
  ///         "Failed to get  ik solution\n" when no solution is admissible.
  static bool ArmIk(RoadPoint& cur_stat, int coordinate, int move_mode, double step,
                    RoadPoint& result);

  /// @}
  /// @name Straight lines, fixed step
  /// The tool keeps the start orientation; the last point is the end point. With a speed setting
  /// one step is speed * 0.00004 m, with a precision factor precis * 0.0002 m. Each point is solved
  /// against the joints of the one before; the solving operation's message comes before those here.
  /// @{

  /// How many points a straight line needs: whole steps in its length, plus the end point.
  ///
  /// A dry run: every point is solved (`ArmLineMoveIk`, bound 100 rad per metre of step), then the
  /// end point (`ArmIk` against its own joints). 0.0102 m at speed 10 gives 26.
  /// @param s_point start, joints known
  /// @param e_point end
  /// @param speed   step setting, at least 1
  /// @return the count, at least 1;
  ///         0: a point of the line has no solution, and is printed to standard output;
  ///         -1: the end point has none: "the end point is error!\n" on standard error, and the
  ///         line's last point printed;
  ///         -2: the points are no pair (more than 1 m apart on an axis, or a quaternion component
  ///         more than 0.0001): "CountLineSize error the point data is" and both points on standard
  ///         output. Also -2, silently, for a speed below 1 or a length that is not a number.
  static int CountLineSize(RoadPoint s_point, RoadPoint e_point, int speed);

  /// Fills an array with the points of a straight line; companion of `CountLineSize`.
  ///
  /// Point i lies at fraction i / `step_count`; the last element is `e_point` as given, unsolved,
  /// so the last interval is two steps long. Orientations that differ are cut to four decimals and
  /// compared again, and the points carry the cut one. A point that doesn't solve (bound 20 rad per
  /// metre of step, from the joints before) is tried once more with its coordinates cut to six
  /// decimals. It is solved by `ArmJointIk`: a point out of reach is answered silently, with the
  /// joints before to within the nudge, so count first. A `speed` of 0 leaves no joint any room:
  /// each point has to be one where the solver gives the joints before back exactly. A negative one
  /// admits no point.
  /// @param s_point     start, joints known
  /// @param e_point     end
  /// @param step_count  number of elements to write, at least 1
  /// @param point_array out: `step_count` elements
  /// @param speed       step setting, that of `CountLineSize`
  /// @return true when all points are written; false when the orientations differ after the cut
  /// ("CountLineSize error the point data
  ///         is" and both points on standard output, nothing written) or a point has no solution
  ///         ("CountLineToBuffer ik error at" with its index, and the point, on standard output;
  ///         elements before it are written). Also false, silently with nothing written, for a
  ///         `step_count` below 1.
  static bool CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                RoadPoint* point_array, int speed);

  /// Fills an array with a straight line of `precis` * 0.0002 m steps.
  ///
  /// Points at fractions 0, 1/n, ... (n-1)/n, then the end point, n = trunc(length / step). Each is
  /// solved by `ArmJointIk` within 0.0436332 rad of the one before, the end point within that of
  /// its own joints. So a point out of reach is answered silently, with the joints before to within
  /// the nudge, and `ik_flag` true. A point without an admissible solution keeps the joints before,
  /// and their flag; `ArmJointIk`'s message alone tells.
  /// @param s_point     start, joints known
  /// @param e_point     end, with joints
  /// @param precis      step factor, above 0
  /// @param point_array out: n + 1 elements, which the caller works out by the same formula
  /// @return the number of elements written, or -2, silently with nothing written: orientations not
  ///         exactly equal, `precis` not above 0, or a count that doesn't fit an `int`.
  static int CountLineToBuffer(RoadPoint s_point, RoadPoint e_point, double precis,
                               RoadPoint* point_array);

  /// @}
  /// @name Straight line, speed ramp
  /// @{

  /// Plans a straight line whose step grows by 2e-5 m a cycle up to `speed` times that, cruises,
  /// and falls back.
  ///
  /// Steps of 0, 1, ... speed units up, whole steps of `speed` units, then speed, ... 1 units down;
  /// the jump to the end point covers what is left, less than one cruise step (the whole line for a
  /// speed below 1). 2 * speed + cruise steps + 2 points. Every point has the start orientation and
  /// is solved within 0.518 rad of the one before, but for the last: that is `e_point` as given,
  /// unsolved.
  ///
  /// The direction comes from the slopes against the first axis along which the points differ.
  /// Where this difference is 1e154 times smaller than another, the steps have no length or are
  /// NaN.
  /// @param s_point    start, joints known
  /// @param e_point    end, within 1 m on each axis and 0.0001 in each quaternion component
  /// @param point_road out: cleared and refilled
  /// @param speed      cruise step in units of 2e-5 m. 0 gives the solved start point and
  ///                   `e_point`; below 0 (long enough a line granted) just `e_point`.
  /// @return true when planned; true also, with `point_road` untouched, when the line is shorter
  ///         than its ramps, speed * (speed + 1) * 2e-5 m, or its length is not a number.
  ///         false when the points are no pair ("CountLineToBuffer error the point data is" and
  ///         both points on standard output, `point_road` untouched), or a point has no solution
  ///         (the point printed, on the ramp down after the line "ik error joint at" with its index
  ///         there; `point_road` holds the points before it).
  static bool CountLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                std::vector<RoadPoint>* point_road, int speed);

  /// @}
  /// @name Straight line, S-curve
  /// @{

  /// Starts a straight line on a jerk-limited time law: the first phase, sampled every 5 ms.
  ///
  /// Position and orientation (the straight way between the Euler triples, never wrapped) go along
  /// by the same fraction jerk * t^3 / (6 * length) until the phase time (length / (2 *
  /// jerk))^(1/3), cut to whole cycles; that is at most a twelfth of the line. The rest of the
  /// profile is not part of this operation, and `e_point` is not appended. 0.01 m with a jerk of 10
  /// has a phase of 79 ms and so 15 points.
  ///
  /// Each point is solved within 0.518 rad of the one before (one that has no solution keeps its
  /// joints, with `ArmJointIk`'s message), and no joint may need more than twice `max_joint`.
  /// @param s_point    start, joints known. One out of reach is replaced as by
  /// @param e_point    end              ... `ArmCheckAndCountSimilarIk`; the caller's stay.
  /// @param point_road out, by case:
  ///                   - a line no longer than 2 * max_jerk * (0.02 s)^3: cleared, then the two end
  ///                     points, after "Smin distance is" and "length distance is" with both
  ///                     lengths on standard output;
  ///                   - a line longer than 2 * max_jerk * T^3, T the acceleration's build-up time
  ///                     in ms: untouched;
  ///                   - otherwise the first phase is appended to what is there, after "can't go to
  ///                     mast ver!\n" on standard error.
  /// @param max_v      velocity limit; has no effect
  /// @param max_acc    [m/s^2], above 0, infinity included; selects the case and limits nothing:
  ///                   the first phase ends at max_jerk * (length / (2 * max_jerk))^(1/3)
  /// @param max_jerk   the jerk of the first phase [m/s^3], above 0 and finite
  /// @param max_joint  motor speed limit [rpm] for `CheckRobotJointStep`: as it is between the two
  ///                   end points of a short line, doubled between points of the first phase
  /// @return 1 when done, in all three cases;
  ///         -1: an end point can't be reached: "s_point and e_point Ik error!\n" on standard
  ///         error, `point_road` untouched; or a joint step is too large: the check's lines, then
  ///         "Check Robot Joint Step Error!\n" on standard error, `point_road` untouched for a
  ///         short line and cleared in the first phase; -2, `point_road` untouched: the
  ///         acceleration is built up within 20 ms: "max_acc is too small can't reach!\n" on
  ///         standard error. Also -2, silently, where that doesn't apply but a limit is not above
  ///         0, the jerk is infinite, or the phase time doesn't fit an `int` (a length of NaN).
  static int CountSRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                         std::vector<RoadPoint>* point_road, float max_v,
                                         float max_acc, float max_jerk, int max_joint);

  /// @}
  /// @name Joint moves, all joints in proportion
  /// Take care: `CountCurveLineToBuffer` fills an array, `CountCurvelLineToBuffer` (with an l) a
  /// vector, and `CountCurvelLineSize` (with an l) counts for the array. A waypoint's pose is the
  /// forward kinematics of its joints; where that fails (message on standard error) it keeps the
  /// pose of the waypoint before, in the array the pose that the element had.
  /// @{

  /// How many waypoints a fixed-step joint move needs, start and end included.
  ///
  /// The leading joint advances by speed * 0.0001745329 rad, held in single precision; travels are
  /// between angles cut to six decimals (`SectionNum`). 0.5 rad at speed 100 gives 29.
  /// @param s_point start joints
  /// @param e_point end joints
  /// @param speed   hundredths of a degree per waypoint, at least 1
  /// @return the count, at least 1; 0 for a speed below 1 or a count that doesn't fit an `int`
  static int CountCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed);

  /// Fills an array with a fixed-step joint move; companion of `CountCurvelLineSize`.
  ///
  /// Waypoint i has the joints at fraction i / `step_count`; the last is `e_point` as given, so the
  /// last interval is two steps long. `ik_flag` of the elements before it stays as it was.
  /// @param s_point     start joints
  /// @param e_point     end, joints and pose
  /// @param step_count  number of elements to write, at least 1
  /// @param point_array out: `step_count` elements
  /// @return true; false, with nothing written, for a `step_count` below 1
  static bool CountCurveLineToBuffer(RoadPoint s_point, RoadPoint e_point, int step_count,
                                     RoadPoint* point_array);

  /// Plans a joint move whose leading joint speeds up by 0.0001745329 rad per cycle each cycle,
  /// cruises, and slows down; the other joints keep the proportions of their travels.
  ///
  /// With n = speed / 2: a ramp of 0, 1, ... n units, whole cruise steps of n units or a little
  /// more (up to 2 n where there is one), and n, ... 2 units, 2 n + cruise + 1 waypoints in all;
  /// `e_point` as given closes the ramp, with a step of 1 unit and, without a cruise, of what is
  /// left of the travel, up to n units. A travel too short for n takes the largest n that fits,
  /// without a cruise, in units of up to 1 + 2 / n; one below two units just `s_point` and
  /// `e_point` as they are. Waypoints carry `s_point`'s `ik_flag`.
  /// @param s_point    start, joints and pose
  /// @param e_point    end, likewise
  /// @param point_road out: cleared and refilled
  /// @param speed      twice the top speed in units per cycle, at least 2
  /// @return true; false, with `point_road` untouched, for a speed below 2 or a count that doesn't
  ///         fit an `int`
  static bool CountCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                      std::vector<RoadPoint>* point_road, int speed);

  /// @}
  /// @name Joint moves, synchronised trapezoids
  /// Each joint ramps up, cruises and ramps down by itself; all take the cycles of the slowest. A
  /// joint that is to move no more than its dead band (4.22584e-06 rad, from joint 4 on
  /// 5.06242e-06 rad) stands still until the end point.
  /// @{

  /// How many cycles a synchronised joint move takes: those of the slower of the two groups'
  /// leading joints at the limits given, rounded. So the limits are not kept: the planned move may
  /// exceed the speed by a quarter and the acceleration by half, in few cycles by more
  /// (docs/trajectories.md).
  /// @param s_point start joints
  /// @param e_point end joints
  /// @param speed   motor speed limit [percent of 3000 rpm], at least 1
  /// @param max_acc motor acceleration limit [rpm/s], at least 1
  /// @return the count; 0 when no joint moves. Also 0 for a limit below 1 or a count that doesn't
  ///         fit an `int`.
  static int CountRunCurvelLineSize(RoadPoint s_point, RoadPoint e_point, int speed, int max_acc);

  /// Plans a synchronised joint move of N = `CountRunCurvelLineSize` cycles.
  ///
  /// N waypoints: after cycle 1, 2, ... N - 1, with the pose of their joints (where forward
  /// kinematics fails, with its message, the pose of the waypoint before) and `s_point`'s
  /// `ik_flag`, then `e_point` as given. The start is not among them. A move of 5 cycles or less is
  /// just `s_point` and `e_point`. Holds 6 * N doubles during the call.
  /// @param s_point    start, joints and pose
  /// @param e_point    end, likewise
  /// @param point_road out: cleared and refilled
  /// @param speed      motor speed limit [percent of 3000 rpm], at least 1
  /// @param max_acc    motor acceleration limit [rpm/s], at least 1
  /// @return true, after a line on standard output: "the joint num is" and N, or "the all joint
  ///         count is true" and N for the short move. false, silently with `point_road` untouched,
  ///         for a limit below 1 and for a move of more than 46340 cycles.
  static bool CountRunCurvelLineToBuffer(RoadPoint s_point, RoadPoint e_point,
                                         std::vector<RoadPoint>* point_road, int speed,
                                         int max_acc);

  /// @}
  /// @name Orientation and comparison helpers
  /// @{

  /// Roll, pitch, yaw of a quaternion, taken as it is (not normalised).
  ///
  ///     roll  = atan2(2 (w x + y z), 1 - 2 (x^2 + y^2))   in [-pi, pi]
  ///     pitch = asin(2 (w y - x z))                       in [-pi/2, pi/2]
  ///     yaw   = atan2(2 (w z + x y), 1 - 2 (y^2 + z^2))   in [-pi, pi]
  ///
  /// A pitch outside asin's range is NaN, as it may be for a quaternion that is longer than 1.
  ///
  /// (1, 1, 0, 0) gives a roll of atan2(2, -1) = 2.0344439.
  /// @param orientation w first
  /// @param EulerAngle  out: {roll, pitch, yaw} [rad]
  static void QuaternionToEulerAngle(Ori orientation, double* EulerAngle);

  /// Quaternion of roll, pitch, yaw: qz(yaw) * qy(pitch) * qx(roll), all four components written.
  ///
  ///         | cy cp   cy sp sr - sy cr   cy sp cr + sy sr |
  ///     R = | sy cp   sy sp sr + cy cr   sy sp cr - cy sr |   c, s: cosine, sine of
  ///         |  -sp         cp sr              cp cr       |   roll r, pitch p, yaw y
  ///
  /// {pi, 0, 0} gives (0, 1, 0, 0) to rounding. w may be negative.
  /// @param orientation out: w first
  /// @param EulerAngle  {roll, pitch, yaw} [rad]
  static void EulerAngleToQuaternion(Ori& orientation, double* EulerAngle);

  /// Euler triple of `roadpoint2`'s orientation minus that of `roadpoint1`'s, by component and
  /// never wrapped: a yaw from 3.1 to -3.1 gives -6.2.
  /// @param roadpoint1 its orientation is subtracted
  /// @param roadpoint2 from this one's
  /// @param EulerDis   out: 3 differences [rad]
  static void QuaternionToEulerDis(RoadPoint roadpoint1, RoadPoint roadpoint2, double* EulerDis);

  /// Replaces the orientation by that of its Euler triple plus `EulerDis`. The sign of the
  /// quaternion may change even for {0, 0, 0}. Nothing else of the waypoint is touched.
  /// @param roadpoint1 in/out
  /// @param EulerDis   3 differences [rad]
  static void QuaternionAddEuler(RoadPoint& roadpoint1, double* EulerDis);

  /// `num` cut to six decimals: trunc(num * 1e6 + 0.5), an `int`, times 1e-6 held in single
  /// precision. 1.0 gives 0.9999999974752427; -1.2345678 gives -1.234566996883018. A value that
  /// doesn't fit (about 2147.48 and more, NaN) comes back unchanged.
  static double SectionNum(double num);

  /// Whether two poses agree: the three coordinates within `pos_range`, then the four quaternion
  /// components within `ori_range`. Each difference is rounded to float first; equality passes, and
  /// so does NaN, also as the difference of two equal infinities. q and -q are different.
  static bool PositionCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float pos_range,
                              float ori_range);

  /// Whether the six joints agree within `joint_range` [rad]; differences as in `PositionCompare`.
  static bool JointCompare(RoadPoint roadpoint1, RoadPoint roadpoint2, float joint_range);
  /// @}

 private:
  // ---- Scalars ----

  /// 1.0 for x >= 0 (also -0.0), otherwise -1.0 (also NaN).
  static double SIGN(double x);
  /// sqrt(a^2 + b^2 + c^2 + d^2), summed in this order.
  static double NORM(double a, double b, double c, double d);
  /// As `SectionNum`, to four decimals; a value that doesn't fit comes back unchanged.
  static double SectionFourNum(double num);
  /// Whether six joints agree within 0.00872664 rad (half a degree), in double precision.
  static bool PointAngTest(double* a, double* b);

  // ---- Joint speed ----

  /// Whether each joint's step between two waypoints is within what its motor does in one cycle:
  /// max_joint_speed_rpm * 1.04719e-05 * 50 rad over the gear ratio, 363 for joints 1 to 3 and 303
  /// for joints 4 to 6. Equality and NaN pass. The first joint over it is told in two lines on
  /// standard output: "the big diff is" or "the small diff is" with its step, and "max speed step"
  /// with its limit [rad].
  static bool CheckRobotJointStep(RoadPoint& point1, RoadPoint& point2, int max_joint_speed_rpm);

  // ---- Trapezoidal profiles; `radio` is the joint's gear ratio, `step_time` the cycle [s] ----

  /// Signed travel of each joint [rad], in single precision, 0 within its dead band. NaN stays.
  static void countjointdis(RoadPoint s_point, RoadPoint e_point, float* arm_run_joint);
  /// Cycles that one joint needs for `max_run_dis` [rad] at `joint_max_speed` [rpm] and `joint_acc`
  /// [rpm/s]. 0 when a limit is not above 0 or the count doesn't fit an `int`.
  static int countmaxruntime(double max_run_dis, double joint_max_speed, int joint_acc,
                             double step_time, int radio);
  /// Cruise cycles of a joint that covers `run_dis` [rad] in `n` cycles at `acc` [rpm/s]:
  /// sqrt(n^2 - 4 run_dis / g), g the growth of its step per cycle. -1 when it can't, or `acc` is
  /// below 1.
  static int caltimeslover(int n, double run_dis, double step_time, int radio, int acc);
  /// Steps of one joint in each cycle [rad], as magnitudes: a ramp that covers `joint_distance`
  /// exactly, whatever acceleration that takes (with an odd count and no cruise its sum is larger
  /// by 0.5 / (a (a - 1)), a the ramp's cycles).
  ///
  /// Where no ramp cycle is left to accelerate in (`max_speed_count` equal to `alljointruncount`),
  /// and for a single cycle, the travel is split evenly.
  /// @param joint_distance   the joint's travel [rad]
  /// @param alljointruncount cycles of the move
  /// @param max_speed_count  cycles of the cruise
  /// @param joint_id         0 to 5; any other value counts as a small axis
  /// @param result           out: `alljointruncount` entries; nothing when that is below 1
  /// @param max_acc          has no effect
  static void getJointStepLength(float joint_distance, int alljointruncount, int max_speed_count,
                                 int joint_id, double* result, int max_acc);

  // ---- Pose encoding ----

  /// A waypoint's pose as the solver takes it: `eerot[9]`, row-major, from the normalised
  /// quaternion; `eetrans[3]`, the position unchanged. The zero quaternion gives a matrix of NaN,
  /// which a solver has to refuse.
  static void CountEerotEetrans(RoadPoint& tempPoint, double* eerot, double* eetrans);

  // ---- Frame moves ----

  /// A displacement of the tool frame in the base frame, scaled by |end_ori|^2.
  static Pos EndMoveXYZ(const Ori& end_ori, const Pos& mov_dst);
  /// `ori_pos` + `dis`.
  static Pos WorldMoveXYZ(const Pos& ori_pos, const Pos& dis);
  /// `end_ori` turned about one tool axis: that of the first non-zero component of `rel_ori` [rad]
  /// in the order x, y, z; the others are ignored. `end_ori` itself when all three are 0.
  static Ori EndRotXYZ(const Ori& end_ori, const Roz& rel_ori);
  /// `end_pos` moved by `mov_dst`, given in its tool frame; joints and flag are copied.
  static RoadPoint RelatMove(const RoadPoint& end_pos, const Pos& mov_dst);
  /// `end_pos` turned about a tool axis as by `EndRotXYZ`; joints and flag are copied.
  static RoadPoint RelatRot(const RoadPoint& end_pos, const Roz& rot_dst);
  /// Position and quaternion difference by component, 1 minus 2; zero joints, false flag.
  static RoadPoint PointDis(RoadPoint& roadpoint1, RoadPoint& roadpoint2);
  /// Position and quaternion sum by component, not normalised; zero joints, false flag.
  static RoadPoint PointAdd(RoadPoint& roadpoint1, RoadPoint& roadpoint_dis);
  /// Pose of one jog step (see the jog `ArmIk`); joints and flag are those of `cur_stat`.
  static RoadPoint EndMove(const RoadPoint& cur_stat, int coordinate, int move_mode, double step);
};

#endif  // QAL_KINEMATICS_IKFUNC_H_
