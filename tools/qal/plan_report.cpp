#include "plan_report.h"

#include <fmt/format.h>
#include <qal/model/chain.h>
#include <qal/solve/kinematics.h>

#include <cmath>

#include "../../io/error.h"
#include "../../io/error_text.h"

namespace qal::tools {

using namespace io;

namespace {

Vec3 PositionOf(const Target& target, const Arm& arm) {
  if (const auto* pose = std::get_if<Pose>(&target)) return pose->position;
  const Result<Pose> pose = Forward(arm, std::get<Joints>(target));
  if (pose) return pose->position;
  throw Failure(fmt::format("no pose at a corner: {}", ErrorText(pose.error())));
}

Vec3 EndOf(const ArcAbout& arc, const Vec3& start) {
  const double length = std::hypot(arc.axis.x, arc.axis.y, arc.axis.z);
  const Vec3 axis = {arc.axis.x / length, arc.axis.y / length, arc.axis.z / length};
  Transform there, back, from;
  there.position = arc.centre;
  back.position = {-arc.centre.x, -arc.centre.y, -arc.centre.z};
  from.position = start;
  return (there * RotationAbout(axis, arc.angle_rad) * back * from).position;
}

// Where the tool is at the end of a step that a corner may follow.
Vec3 EndOf(const ProgramStep& step, const Arm& arm, const Vec3& start) {
  if (const auto* joint = std::get_if<JointStep>(&step)) return PositionOf(joint->to, arm);
  if (const auto* line = std::get_if<LineStep>(&step)) return PositionOf(line->to, arm);
  const auto& arc = std::get<ArcStep>(step).arc;
  if (const auto* through = std::get_if<ArcThrough>(&arc)) return PositionOf(through->to, arm);
  return EndOf(std::get<ArcAbout>(arc), start);
}

// Where each corner is, had it not been rounded.
std::vector<Vec3> CornersOf(const PlannedProgram& planned, Arm arm) {
  const std::vector<RoundedCorner>& corners = planned.motion.corners();
  std::vector<Vec3> positions;
  for (size_t step = 0; step < planned.file.program.steps.size(); ++step) {
    const ProgramStep& what = planned.file.program.steps[step];
    if (const auto* tool = std::get_if<ToolStep>(&what)) {
      if (const Result<Arm> with_tool = arm.WithTool(tool->tool)) arm = *with_tool;
    }
    const size_t next = positions.size();
    if (next == corners.size() || corners[next].step != step) continue;
    // A step begins at a corner or at a stop, where the tool is.
    const bool at_corner = next > 0 && corners[next - 1].step + 1 == step;
    const Vec3 start = at_corner
                           ? positions.back()
                           : planned.motion.PoseAt(planned.motion.step_begins_s()[step]).position;
    positions.push_back(EndOf(what, arm, start));
  }
  return positions;
}

}  // namespace

ReportProgram ProgramOfReport(const PlannedProgram& planned, const Arm& arm) {
  const std::vector<StepPlace>& places = planned.file.places;
  ReportProgram report;
  for (size_t i = 0; i < places.size(); ++i) {
    report.steps.push_back(
        {planned.motion.step_begins_s()[i], places[i].label + ": " + places[i].what});
  }
  const std::vector<Vec3> positions = CornersOf(planned, arm);
  for (size_t i = 0; i < positions.size(); ++i) {
    const RoundedCorner& corner = planned.motion.corners()[i];
    report.corners.push_back({corner.step, positions[i], corner.radius_m, corner.deviation_m,
                              corner.begin_s, corner.end_s});
  }
  return report;
}

}  // namespace qal::tools
