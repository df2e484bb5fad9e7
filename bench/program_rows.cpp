#include <cstdio>
#include <nlohmann/json.hpp>

#include "../src/qal/plan/run_path.h"
#include "rows_main.h"
#include "seeded_programs.h"

// Writes the rows that program_optimum.py reads: program_rows COUNT [FILE...], programs of the
// reference arm and of those of the files in turn.

namespace qal::bench {
namespace {

using Json = nlohmann::json;

Json OrNull(double limit) { return std::isfinite(limit) ? Json(limit) : Json(); }

// The tool's derivatives at a place. Where a section has no limits of the tool, none are wanted; at
// its ends those of the neighbour are.
ToolRates ToolAt(const LimitedPath& path, double s) {
  size_t section = path.SectionAt(s);
  const bool begins = s == path.sections[section].begin;
  if (path.sections[section].tool == nullptr && begins && section > 0) --section;
  return path.sections[section].tool == nullptr ? ToolRates{} : path.sections[section].ToolAt(s);
}

void AddPoint(const LimitedPath& path, const PathPoint& joints, Json& row) {
  const ToolRates tool = ToolAt(path, joints.s);
  const auto add = [&](const char* key, const Joints& of_joints, const Vector3& position,
                       const Vector3& turn) {
    Json columns = of_joints;
    for (const Vector3& vector : {position, turn}) {
      for (int i = 0; i < 3; ++i) columns.push_back(vector[i]);
    }
    row[key].push_back(columns);
  };
  row["s"].push_back(joints.s);
  add("dq", joints.first, tool.velocity, tool.turn);
  add("ddq", joints.second, tool.acceleration, tool.turn_acceleration);
  add("dddq", joints.third, tool.jerk, tool.turn_jerk);
}

void AddLimits(const PathSection& section, Json& row) {
  const auto add = [&](const char* key, const Joints& joints, double tool, double turn) {
    Json limits = joints;
    limits.push_back(OrNull(tool));
    limits.push_back(OrNull(turn));
    row["limits"][key].push_back(limits);
  };
  const bool free = section.tool == nullptr;
  const ToolLimits tool = free ? ToolLimits() : section.tool_limits;
  add("velocity", section.joint_velocity, tool.speed, tool.turn_speed);
  add("acceleration", section.joint_acceleration, tool.acceleration, tool.turn_acceleration);
  add("jerk", section.joint_jerk, tool.jerk, tool.turn_jerk);
}

// Closer where the path bends and at its ends; and where limits change, none but for rounding
// there.
std::vector<double> PlacesOf(const LimitedPath& path) {
  constexpr int kParts = 12;  // of each piece
  std::vector<double> places;
  size_t border = 1;
  for (size_t piece = 0; piece < path.joints.size(); ++piece) {
    for (int i = 0; i < kParts; ++i) {
      const double s = PlaceIn(path.joints, piece, static_cast<double>(i) / kParts);
      const double apart = path.joints.length(piece) * 1e-6;
      const auto add = [&](double place) {
        if (places.empty() || place > places.back() + apart) places.push_back(place);
      };
      for (; border < path.sections.size() && path.sections[border].begin < s + apart; ++border) {
        const double begin = path.sections[border].begin;
        if (begin < places.back() + apart) places.pop_back();
        add(begin);
      }
      add(s);
    }
  }
  places.push_back(path.end());
  return places;
}

Json RowOf(const LimitedPath& path, double duration_s) {
  Json row = {{"duration_s", duration_s}, {"borders", Json::array()}};
  for (const PathSection& section : path.sections) {
    AddLimits(section, row);
    if (section.begin > path.begin()) row["borders"].push_back(section.begin);
  }
  for (const double s : PlacesOf(path)) AddPoint(path, path.joints.At(s), row);
  return row;
}

// The runs from stop to stop, made again as the plan has them.
Json RowOf(Arm arm, const SeededProgram& drawn, const ProgramMotion& motion) {
  Json row = {{"duration_s", motion.duration_s()}, {"runs", Json::array()}};
  double rest_s = motion.duration_s();
  const auto& steps = drawn.program.steps;
  const auto begin_of = [&](size_t step) {
    return step < steps.size() ? motion.step_begins_s()[step] : motion.duration_s();
  };
  State here = drawn.corners[0];
  for (size_t step = 0; step < steps.size();) {
    if (const auto* tool = std::get_if<ToolStep>(&steps[step])) {
      arm = *arm.WithTool(tool->tool);
      here = {here.joints, *Forward(arm, here.joints)};
    }
    if (!IsMotion(steps[step])) {
      ++step;
      continue;
    }
    RunPath run(arm, drawn.program, step, here);
    while (!run.done()) (void)run.Extend();  // it does, as there is a plan
    const LimitedPath& path = run.made().path;
    if (path.joints.size() > 0) {
      const double duration_s = begin_of(run.next_step()) - begin_of(step);
      row["runs"].push_back(RowOf(path, duration_s));
      rest_s -= duration_s;
      here = {path.joints.last().value, run.end_pose()};
    }
    step = run.next_step();
  }
  row["rest_s"] = std::max(0.0, rest_s);
  return row;
}

int WriteRows(int count, const std::vector<Arm>& arms) {
  unsigned seed = 20261125;
  int tried = 0;
  for (int written = 0; written < count; ++seed) {
    const Arm& arm = arms[seed % arms.size()];
    const SeededProgram drawn = SeededPrograms(arm, seed).Next();
    const auto motion = PlanProgram(arm, drawn.program);
    ++tried;
    if (!motion || motion->duration_s() == 0) continue;
    Json row = RowOf(arm, drawn, *motion);
    row["name"] = arm.name() + " seed " + std::to_string(seed);
    std::printf("%s\n", row.dump().c_str());
    ++written;
  }
  (void)std::fprintf(stderr, "%d of %d programs have a plan\n", count, tried);
  return 0;
}

}  // namespace
}  // namespace qal::bench

int main(int argc, char** argv) { return qal::bench::RowsMain(argc, argv, qal::bench::WriteRows); }
