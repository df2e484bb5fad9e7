#include "move.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "../../io/error.h"
#include "../../io/metrics.h"
#include "../../io/trajectory_json.h"
#include "../../src/kinematics/solve/solution_choice.h"
#include "../common/library_lines.h"
#include "agreement.h"
#include "solutions.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

double Move::Length() const { return Distance(start.position, end.position); }

void Ends::AddTo(CLI::App& command) {
  from_.AddTo(command, "--from", kJointsShape, "start: six joint angles [rad; --deg: deg]");
  to_.AddTo(command, "--to", kJointsShape, "end: six joint angles [rad; --deg: deg]");
  to_pose_.AddTo(command, "--to-pose", kPoseShape,
                 "end: x y z [m; --mm: mm] qw qx qy qz, or x y z with --rpy,\n"
                 "or x y z alone, which keeps the start's orientation");
  rpy_.AddTo(command, "--rpy", kRpyShape, kRpyHelp);
  by_.AddTo(command, "--by", "X Y Z",
            "end: this far from the start, x y z in the base frame [m; --mm: mm]");
}

Move Ends::Read(const Units& units) const {
  if (to_.given() + to_pose_.given() + by_.given() != 1) {
    throw UsageError("one of --to, --to-pose and --by is expected, for the end");
  }
  if (rpy_.given() && !to_pose_.given()) throw UsageError("--rpy goes with --to-pose");
  Move move;
  move.start = AtJoints(ReadArmJoints(from_, units));
  move.end_is_pose = !to_.given();
  if (to_.given()) {
    move.end = AtJoints(ReadArmJoints(to_, units));
    return move;
  }
  move.end = move.start;
  if (to_pose_.given()) {
    const RoadPoint pose = ReadPose(to_pose_, rpy_, units, &move.start.orientation);
    move.end.position = pose.position;
    move.end.orientation = SignedAs(pose.orientation, move.start.orientation);
  } else {
    const auto by = by_.Read(3, fmt::format("x y z [{}]", units.length()));
    const Pos offset(units.Metres(by[0]), units.Metres(by[1]), units.Metres(by[2]));
    move.end.position = move.start.position + offset;
  }
  return move;
}

void SolveEnd(Move& move, const Units& units) {
  if (move.end_is_pose)
    move.end = SolveNear(move.end, move.start, kNoStepBound,
                         "at the end, " + PoseText(move.end, units), units);
}

void RefuseOthers(const std::string& profile, std::initializer_list<const Numbers*> all,
                  std::initializer_list<const Numbers*> taken) {
  for (const Numbers* option : all) {
    if (option->given() && std::find(taken.begin(), taken.end(), option) == taken.end()) {
      throw UsageError(fmt::format("{} does not go with --profile {}", option->name(), profile));
    }
  }
}

namespace {

std::string Summary(const RoadPoint& start, const std::vector<RoadPoint>& points,
                    const Units& units) {
  // The step to the first point counts as well.
  std::vector<RoadPoint> way = {start};
  way.insert(way.end(), points.begin(), points.end());
  const auto metrics = Measure(FromWaypoints(way), SolverArm());
  const Peaks& steps = metrics[kJointStep];
  const auto step = std::max_element(
      steps.begin(), steps.end(), [](const auto& a, const auto& b) { return a->value < b->value; });
  double length_m = 0.0;
  for (size_t i = 1; i < points.size(); ++i) {
    length_m += Distance(points[i - 1].position, points[i].position);
  }
  const auto row = [](const std::string& label, const std::string& value) {
    return fmt::format("{:<40} {}\n", label, value);
  };
  return row("points", std::to_string(points.size())) +
         row("duration [s]", Decimal(FromWaypoints(points).back().time_s, 3)) +
         row(fmt::format("way of the tool [{}]", units.length()),
             Decimal(units.Length(length_m), LengthDecimals(units))) +
         row(fmt::format("largest joint step [{}]", units.angle()),
             fmt::format("{}, joint {}, to point {}",
                         Decimal(units.Angle((*step)->value), AngleDecimals(units)),
                         step - steps.begin() + 1, (*step)->sample - 1)) +
         row(fmt::format("largest gap of joints and position [{}]", units.length()),
             fmt::format("{:.3g}", units.Length(metrics[kPositionError][0]->value))) +
         "first point\n" + PointRows(points.front(), units) + "last point\n" +
         PointRows(points.back(), units);
}

}  // namespace

void RunMove(const Ends& ends, const Units& units, const Output& output,
             const std::function<std::vector<RoadPoint>(Move&)>& plan) {
  Trajectory trajectory;
  std::string data;
  {
    const LibraryLines lines;
    Move move = ends.Read(units);
    const std::vector<RoadPoint> points = plan(move);
    trajectory = FromWaypoints(points);
    data = output.json() ? ToJson(trajectory).dump() + '\n' : Summary(move.start, points, units);
  }
  output.Write(trajectory, data);
}

}  // namespace qal::tools
