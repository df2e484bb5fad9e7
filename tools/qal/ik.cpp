#include <fmt/format.h>
#include <qal/model/rotations.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "../../io/error.h"
#include "../../io/trajectory_csv.h"
#include "../common/values.h"
#include "ik_arguments.h"
#include "point_file.h"
#include "pose_option.h"
#include "solution_table.h"

namespace qal::tools {

using namespace io;

namespace {

// Why a pose is without a solution, or without an admissible one.
std::string WhyUnsolved(const Error& error, const Units& units) {
  const bool refused = error.reason == Reason::kJointRange || error.reason == Reason::kStepBound;
  return (refused ? "none of its solutions is admissible; the nearest: " : "") +
         ErrorText(error, units.text());
}

std::string VerdictOn(const ExplainedSolution& solution, bool chosen) {
  if (solution.refusal) return ErrorText(*solution.refusal);
  return chosen ? "chosen" : "admissible";
}

std::string SolutionJson(const std::vector<ExplainedSolution>& solutions, size_t chosen,
                         const LoadedArm& loaded) {
  Json list = Json::array();
  for (size_t i = 0; i < solutions.size(); ++i) {
    const auto& [joints, branch, distance_rad, refusal] = solutions[i];
    list.push_back({{"joints_rad", joints},
                    {"branch", branch ? Json(BranchName(*branch)) : Json(nullptr)},
                    {"distance_rad", distance_rad},
                    {"admissible", !refusal},
                    {"chosen", i == chosen},
                    {"verdict", VerdictOn(solutions[i], i == chosen)}});
  }
  return Json{{"arm", ArmJson(loaded)}, {"solutions", list}}.dump(2) + '\n';
}

void RunAll(const IkArguments& arguments, const LoadedArm& loaded, const Pose& pose,
            const IkRequest& request) {
  const Units& units = arguments.common.units;
  const Output& output = arguments.common.output;
  const auto candidates = Inverse(loaded.arm, pose, request.near, request.options);
  if (!candidates) {
    throw Failure(fmt::format("no solution at {}: {}", PoseText(pose, units),
                              ErrorText(candidates.error(), units.text())));
  }
  std::vector<ExplainedSolution> solutions;
  for (const auto& [joints, distance_rad, refusal] : *candidates) {
    solutions.push_back({joints, BranchOf(loaded.arm, joints), distance_rad, refusal});
  }
  // The first one that has the joints: a solver may give the same ones several times.
  const Result<State> nearest = Nearest(loaded.arm, pose, request.near, request.options);
  size_t chosen = 0;
  while (nearest && chosen < candidates->size() &&
         ((*candidates)[chosen].refusal || (*candidates)[chosen].joints != nearest->joints)) {
    ++chosen;
  }
  if (!nearest) chosen = candidates->size();
  const auto table = [&] {
    return SolutionTable(solutions, units,
                         [chosen](size_t i) { return i == chosen ? "chosen" : "admissible"; });
  };
  output.Write(output.json() ? SolutionJson(solutions, chosen, loaded) : ArmRow(loaded) + table(),
               [] { return std::string(); });
  if (!nearest) {
    throw Failure(fmt::format("none of the {} solutions is admissible", candidates->size()));
  }
}

void RunOne(const IkArguments& arguments, const LoadedArm& loaded, const Pose& pose,
            const IkRequest& request) {
  const auto& [arm_option, units, output] = arguments.common;
  const Result<State> solved = Nearest(loaded.arm, pose, request.near, request.options);
  if (!solved) {
    throw Failure(fmt::format("no solution at {}: {}", PoseText(pose, units),
                              WhyUnsolved(solved.error(), units)));
  }
  double distance_rad = 0.0;
  for (size_t j = 0; j < 6; ++j) distance_rad += std::fabs(solved->joints[j] - request.near[j]);
  Json json = {{"arm", ArmJson(loaded)}};
  json.update(StateJson(*solved));
  json["distance_rad"] = distance_rad;
  output.Write(output.json() ? json.dump(2) + '\n'
                             : ArmRow(loaded) + StateRows(*solved, units) +
                                   Row(fmt::format("distance [{}]", units.angle()),
                                       {units.Angle(distance_rad)}, AngleDecimals(units)),
               [&solved] {
                 return ToCsv({{0.0, solved->joints, solved->pose}});
               });
}

void RunIk(const IkArguments& arguments) {
  arguments.Check();
  const LoadedArm loaded = arguments.common.arm->Load();
  IkRequest request = arguments.ReadRequest();
  if (!arguments.file.empty()) {
    return SolveFile(arguments.file, PointKind::kPoses, loaded, arguments.common,
                     [&](const FileSample& row) {
                       auto solved = Nearest(loaded.arm, *row.pose, request.near, request.options);
                       if (solved) request.near = solved->joints;
                       return solved;
                     });
  }
  const Pose pose = ReadPose(arguments.pose, arguments.rpy, arguments.common.units);
  arguments.all ? RunAll(arguments, loaded, pose, request)
                : RunOne(arguments, loaded, pose, request);
}

}  // namespace

void IkArguments::AddTo(CLI::App& ik, const SharedArm& arm) {
  pose.AddTo(ik, "--pose", kPoseShape, kPoseHelp);
  rpy.AddTo(ik, "--rpy", kRpyShape, kRpyHelp);
  TakesFile(
      ik.add_option(
          "--file", file,
          "a CSV file of poses in place of --pose, with the columns x_m,y_m,z_m,qw,qx,qy,qz;\n"
          "each row is solved near the solution of the row before, the first near --near;\n"
          "-: standard input"),
      kPointFiles);
  AddRequestTo(ik);
  common.AddTo(ik, arm, false);
  ik.add_flag("--all", all,
              "list every solution, its distance from --near, its branch, and why it was refused")
      ->excludes(ik.get_option("--csv"));
}

void IkArguments::AddRequestTo(CLI::App& ik) {
  near.AddTo(ik, "--near", kJointsShape,
             "reference joints [rad; --deg: deg]: the nearest solution is chosen, by\n"
             "the sum of the joint differences (default: all 0)");
  step_bound.AddTo(ik, "--step-bound", "N",
                   "largest move of each joint from the reference [rad; --deg: deg]\n"
                   "(default: any)");
}

void IkArguments::Check() const {
  if (!file.empty() && (pose.given() || rpy.given() || all)) {
    throw UsageError("--pose, --rpy and --all do not go with --file");
  }
}

IkRequest IkArguments::ReadRequest() const {
  const Units& units = common.units;
  IkRequest request = {};
  if (near.given()) request.near = ReadJoints(near, units);
  if (step_bound.given()) {
    request.options.step_bound_rad = units.Radians(step_bound.ReadWithin(0.0, 1000.0));
  }
  return request;
}

void AddIk(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<IkArguments>();
  CLI::App* ik = app.add_subcommand(
      "ik", "Inverse kinematics: the joint angles of a pose, within the arm's limits");
  arguments->AddTo(*ik, arm);
  ik->footer(
      "Exit status: 0 done, 1 when the pose, or a row of the file, has no admissible solution.\n"
      "Example: qal ik --pose 0.45 0.1 0.5 --rpy 0 3.14159 0 --near 0 0.3 0.2 0 1 0");
  ik->callback([arguments] { RunIk(*arguments); });
}

}  // namespace qal::tools
