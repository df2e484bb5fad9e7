#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/solve/inverse.h"
#include "../../src/kinematics/solve/solution_choice.h"
#include "../common/library_lines.h"
#include "agreement.h"
#include "commands.h"
#include "output.h"
#include "solutions.h"
#include "waypoints.h"

namespace qal::tools {

using namespace io;

namespace {

struct IkArguments {
  Numbers pose;
  Numbers rpy;
  Numbers near;
  Numbers step_bound;
  bool all = false;
  Units units;
  Output output;
};

struct Question {
  RoadPoint target;
  RoadPoint reference;
  double bound_rad = kNoStepBound;
};

Question ReadQuestion(const IkArguments& arguments) {
  Question question;
  question.target = ReadPose(arguments.pose, arguments.rpy, arguments.units);
  Joints near{};
  if (arguments.near.given()) near = ReadJoints(arguments.near, arguments.units);
  if (arguments.step_bound.given()) {
    question.bound_rad = arguments.units.Radians(arguments.step_bound.ReadWithin(0.0, 1000.0));
  }
  question.reference = AtJoints(near);
  question.target.orientation =
      SignedAs(question.target.orientation, question.reference.orientation);
  return question;
}

std::string Answer(const IkArguments& arguments, const Question& question,
                   const RoadPoint& solved) {
  double distance_rad = 0.0;
  for (int j = 0; j < 6; ++j) {
    distance_rad += std::fabs(solved.jointpos[j] - question.reference.jointpos[j]);
  }
  if (arguments.output.json()) {
    Json json = PointJson(solved);
    json["distance_rad"] = distance_rad;
    return json.dump(2) + '\n';
  }
  const Units& units = arguments.units;
  return PointRows(solved, units) + Row(fmt::format("distance [{}]", units.angle()),
                                        {units.Angle(distance_rad)}, AngleDecimals(units));
}

std::string SolutionTable(const std::vector<Solution>& solutions, const Units& units) {
  std::string table = "solution";
  for (int j = 1; j <= 6; ++j) {
    table += fmt::format(" {:>11}", fmt::format("q{} [{}]", j, units.angle()));
  }
  table += fmt::format(" {:>15}  verdict\n", fmt::format("distance [{}]", units.angle()));
  for (const Solution& solution : solutions) {
    table += fmt::format("{:>8}", &solution - solutions.data() + 1);
    for (const double joint : solution.joints_rad) {
      table += fmt::format(" {:>11}", Decimal(units.Angle(joint), 6));
    }
    table += fmt::format(
        " {:>15}  {}{}\n", Decimal(units.Angle(solution.distance_rad), 6),
        solution.admissible ? "" : "refused: ", solution.chosen ? "chosen" : solution.verdict);
  }
  return table;
}

std::string SolutionJson(const std::vector<Solution>& solutions) {
  Json list = Json::array();
  for (const Solution& solution : solutions) {
    list.push_back({{"joints_rad", solution.joints_rad},
                    {"distance_rad", solution.distance_rad},
                    {"admissible", solution.admissible},
                    {"chosen", solution.chosen},
                    {"verdict", solution.verdict}});
  }
  return Json{{"solutions", list}}.dump(2) + '\n';
}

void RunAll(const IkArguments& arguments) {
  Question question;
  std::vector<Solution> solutions;
  {
    const LibraryLines lines;
    question = ReadQuestion(arguments);
    solutions = FindSolutions(question.target, question.reference.jointpos, question.bound_rad,
                              arguments.units);
  }
  if (solutions.empty()) {
    throw Failure(fmt::format("no solution at {}: out of reach, the solver finds no joints for it",
                              PoseText(question.target, arguments.units)));
  }
  arguments.output.Write({}, arguments.output.json() ? SolutionJson(solutions)
                                                     : SolutionTable(solutions, arguments.units));
  if (std::none_of(solutions.begin(), solutions.end(),
                   [](const Solution& solution) { return solution.chosen; })) {
    throw Failure(fmt::format("none of the {} solutions is admissible", solutions.size()));
  }
  if (question.bound_rad == kNoStepBound &&
      Ikfunc::PositionCompare(question.target, question.reference, kSamePositionM,
                              kSameOrientation)) {
    Note("the pose is that of --near: without --all, these joints are the answer");
  }
}

void RunIk(const IkArguments& arguments) {
  if (arguments.all) return RunAll(arguments);
  Question question;
  RoadPoint solved;
  {
    const LibraryLines lines;
    question = ReadQuestion(arguments);
    solved = SolveNear(question.target, question.reference, question.bound_rad,
                       "at " + PoseText(question.target, arguments.units), arguments.units);
  }
  arguments.output.Write(FromWaypoints({solved}), Answer(arguments, question, solved));
}

}  // namespace

void AddIk(CLI::App& app) {
  const auto arguments = std::make_shared<IkArguments>();
  CLI::App* ik = app.add_subcommand("ik", "Inverse kinematics: the joint angles of a pose");
  arguments->pose.AddTo(*ik, "--pose", kPoseShape, kPoseHelp);
  arguments->rpy.AddTo(*ik, "--rpy", kRpyShape, kRpyHelp);
  arguments->near.AddTo(*ik, "--near", kJointsShape,
                        "reference joints [rad; --deg: deg]: the nearest solution is chosen, by\n"
                        "the sum of the joint differences (default: all 0)");
  arguments->step_bound.AddTo(*ik, "--step-bound", "N",
                              "largest move of each joint from --near [rad; --deg: deg]\n"
                              "(default: any)");
  arguments->units.AddTo(*ik);
  arguments->output.AddTo(*ik);
  ik->add_flag("--all", arguments->all,
               "list every solution, its distance from --near, and why it was refused")
      ->excludes(ik->get_option("--csv"));
  ik->footer("Example: qal ik --pose 0.45 0.1 0.5 --rpy 0 3.14159 0 --near 0 0.3 0.2 0 1 0");
  ik->callback([arguments] { RunIk(*arguments); });
}

}  // namespace qal::tools
