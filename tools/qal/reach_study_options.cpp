#include "reach_study_options.h"

#include "../../io/error.h"
#include "../../io/files.h"
#include "../common/values.h"
#include "point_file.h"

namespace qal::tools {

using namespace io;

namespace {

Vec3 VectorAt(const std::vector<double>& numbers, size_t first, const Units& units) {
  return {units.Metres(numbers[first]), units.Metres(numbers[first + 1]),
          units.Metres(numbers[first + 2])};
}

Vec3 DirectionIn(const NumberOption& option) {
  const std::vector<double> axis = option.Read(3, "3 numbers: a direction");
  return {axis[0], axis[1], axis[2]};
}

PlacementPoses ReadPoses(const ReachStudyOptions& options, ReachStudy& study) {
  for (const NumberOption* option :
       {&options.directions, &options.spins, &options.tilt, &options.toward}) {
    if (!option->given()) continue;
    throw UsageError(option->name() +
                     " does not go with --poses: the poses are what is tried in each cell");
  }
  PointRows rows = ReadPointFile(options.poses, PointKind::kPoses);
  for (const FileSample& row : rows.points.samples) study.poses.push_back(*row.pose);
  return {NameOf(options.poses), std::move(rows.points.lines)};
}

}  // namespace

void ReachStudyOptions::AddTo(CLI::App& reach) {
  box.AddTo(reach, "--box", "XMIN .. ZMAX",
            "box to study: XMIN YMIN ZMIN XMAX YMAX ZMAX [m, base frame; --mm: mm];\n"
            "with --poses positions of the arm's base, in the frame of the poses");
  step.AddTo(reach, "--step", "N", "edge of a cell [m; --mm: mm]");
  directions.AddTo(reach, "--directions", "N",
                   "directions of the tool's z axis that are tried in each cell, spread\n"
                   "evenly (default: 100)");
  tilt.AddTo(reach, "--tilt", "N",
             "only directions within this angle of --toward [rad; --deg: deg]\n"
             "(default: all)");
  toward.AddTo(reach, "--toward", "X Y Z",
               "direction in the base frame that the tool's z axis has without tilt\n"
               "(default: 0 0 -1, down)");
  spins.AddTo(reach, "--spins", "N",
              "rolls about each direction, one of which has to be reached (default: 1)");
  line.AddTo(reach, "--line", "N",
             "the tool has to arrive on a straight line of this length, all of it without a\n"
             "change of branch [m; --mm: mm] (default: no line)");
  along.AddTo(reach, "--along", "X Y Z",
              "where the line leads, in the base frame (default: along the tool's z axis)");
  TakesFile(reach.add_option(
                "--poses", poses,
                "from which positions of the base are these poses reached: a CSV file with the\n"
                "columns x_m,y_m,z_m,qw,qx,qy,qz, in place of directions; -: standard input"),
            kPointFiles);
}

ReachStudy ReachStudyOptions::Read(const Units& units, PlacementPoses& read) const {
  if (!box.given()) throw UsageError("--box is missing: XMIN YMIN ZMIN XMAX YMAX ZMAX");
  if (!step.given()) throw UsageError("--step is missing: the edge of a cell");
  const std::vector<double> corners = box.Read(6, "6 numbers: XMIN YMIN ZMIN XMAX YMAX ZMAX");
  ReachStudy study;
  study.box_min = VectorAt(corners, 0, units);
  study.box_max = VectorAt(corners, 3, units);
  study.step_m = units.Metres(step.Read(1, "a length")[0]);
  if (line.given()) study.line_m = units.Metres(line.Read(1, "a length")[0]);
  if (along.given()) {
    if (!line.given()) throw UsageError("--along is the direction of --line, which is missing");
    study.line_direction = DirectionIn(along);
  }
  if (!poses.empty()) {
    read = ReadPoses(*this, study);
    return study;
  }
  if (directions.given()) study.directions = directions.ReadWhole(1, 100000);
  if (spins.given()) study.spins = spins.ReadWhole(1, 36);
  if (tilt.given()) study.tilt_cone_rad = units.Radians(tilt.Read(1, "an angle")[0]);
  if (toward.given()) study.tilt_axis = DirectionIn(toward);
  return study;
}

}  // namespace qal::tools
