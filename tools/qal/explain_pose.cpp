#include <fmt/format.h>
#include <qal/explain/explain.h>

#include <memory>

#include "../../io/files.h"
#include "../../io/trajectory_csv.h"
#include "../common/values.h"
#include "explain.h"
#include "ik_arguments.h"
#include "point_file.h"
#include "pose_option.h"

namespace qal::tools {

using namespace io;

namespace {

struct ExplainPoseArguments {
  IkArguments ik;
  std::string poses;
  ReportOption report;
  const CLI::App* command = nullptr;
};

// Makes the commands of what would make a pose work, or poses.
class PoseRemedyMaker {
 public:
  // Solves what is asked for; throws when that can't be.
  using Solve = std::function<void(const IkArguments&)>;
  PoseRemedyMaker(const ExplainPoseArguments& arguments, const Arm& arm, std::string what,
                  Solve solve)
      : arguments_(arguments), arm_(arm), what_(std::move(what)), solve_(std::move(solve)) {}

  std::vector<Remedy> All(const Explanation& why) const {
    std::vector<Remedy> remedies;
    for (const Change& change : why.changes) {
      if (auto remedy = Make(change)) remedies.push_back(*std::move(remedy));
    }
    return remedies;
  }

 private:
  std::optional<Remedy> Make(const Change& change) const;
  CommandLine Ik() const;

  const ExplainPoseArguments& arguments_;
  const Arm& arm_;
  std::string what_;
  Solve solve_;
};

CommandLine PoseRemedyMaker::Ik() const {
  CommandLine ik("qal ik", *arguments_.command, arguments_.ik.common.units,
                 {{"--pose", Quantity::kPose},
                  {"--rpy", Quantity::kAngle},
                  {"--near", Quantity::kAngle},
                  {"--step-bound", Quantity::kAngle}},
                 {"--json"});
  if (!arguments_.poses.empty()) ik.Set("--file", arguments_.poses);
  return ik;
}

std::optional<Remedy> PoseRemedyMaker::Make(const Change& change) const {
  Remedy remedy = {ChangeKey(change.kind),
                   ChangeText(change, what_, arguments_.ik.common.units.text())};
  const bool one = what_ == "pose";
  CommandLine ik = Ik();
  switch (change.kind) {
    case Change::Kind::kTool:
      remedy.keys = ToolKeys(arm_, change.vector);
      return remedy;
    case Change::Kind::kStart:
      ik.SetNumbers("--near", NumbersOf(change.joints));
      break;
    case Change::Kind::kStepBound:
      ik.SetNumbers("--step-bound", {change.value});
      break;
    default:
      if (!one) return remedy;  // another file
      ik.Remove("--rpy");
      ik.SetNumbers("--pose", NumbersOf(change.pose));
  }
  if (!Works<IkArguments>(ik, solve_)) return std::nullopt;
  remedy.command = ik.Text();
  return remedy;
}

void ExpectSolved(const Result<State>& solved) {
  if (!solved) throw Failure(ErrorText(solved.error()));
}

void ExplainOne(const ExplainPoseArguments& arguments, const LoadedArm& loaded) {
  const IkArguments& ik = arguments.ik;
  const auto [near, options] = ik.ReadRequest();
  const Pose pose = ReadPose(ik.pose, ik.rpy, ik.common.units);
  ExplainedAnswer answer;
  ExplainedRequest& request = answer.request;
  request = {"pose", ExplainPose(loaded.arm, pose, near, options)};
  if (request.why.works()) {
    const auto solved = Nearest(loaded.arm, pose, near, options);
    if (solved) answer.rows = StateRows(*solved, ik.common.units);
    return WriteExplained(ik.common, arguments.report, loaded, answer);
  }
  const PoseRemedyMaker maker(arguments, loaded.arm, "pose", [&loaded](const IkArguments& tried) {
    const auto asked = tried.ReadRequest();
    ExpectSolved(Nearest(loaded.arm, ReadPose(tried.pose, tried.rpy, tried.common.units),
                         asked.near, asked.options));
  });
  request.remedies = maker.All(request.why);
  WriteExplained(ik.common, arguments.report, loaded, answer);
}

std::vector<TimedPose> TimedOf(const PointRows& rows, double cycle_s) {
  std::vector<TimedPose> poses;
  for (const FileSample& sample : rows.points.samples) {
    const double time_s = rows.timed ? sample.time_s : static_cast<double>(poses.size()) * cycle_s;
    poses.push_back({*sample.pose, time_s});
  }
  return poses;
}

void ExplainFile(const ExplainPoseArguments& arguments, const std::string& path,
                 const LoadedArm& loaded) {
  const IkArguments& ik = arguments.ik;
  const PointRows rows = ReadPointFile(path, PointKind::kPoses);
  const auto [near, options] = ik.ReadRequest();
  const std::vector<TimedPose> poses = TimedOf(rows, loaded.arm.cycle_s().value);
  ExplainedAnswer answer;
  ExplainedRequest& request = answer.request;
  request = {"poses", ExplainPoses(loaded.arm, poses, near, options)};
  Explanation& why = request.why;
  request.place = NameOf(path);
  if (why.point) request.place += fmt::format(", line {}", rows.points.lines[why.point->index]);
  for (const TimedPose& timed : poses) request.path.push_back(timed.pose.position);
  if (!why.works()) {
    const PoseRemedyMaker maker(arguments, loaded.arm, "poses", [&](const IkArguments& tried) {
      auto asked = tried.ReadRequest();
      for (const TimedPose& timed : poses) {
        const auto solved = Nearest(loaded.arm, timed.pose, asked.near, asked.options);
        ExpectSolved(solved);
        asked.near = solved->joints;
      }
    });
    request.before = BranchOf(loaded.arm, why.before);
    request.remedies = maker.All(why);
    for (Remedy& remedy : request.remedies) {
      if (remedy.kind != ChangeKey(Change::Kind::kEnd)) continue;
      remedy.keys = fmt::format("up to line {}", rows.points.lines[why.point->index - 1]);
    }
  }
  WriteExplained(ik.common, arguments.report, loaded, answer);
}

}  // namespace

void AddExplainPose(CLI::App& explain, const SharedArm& arm) {
  const auto arguments = std::make_shared<ExplainPoseArguments>();
  CLI::App* pose = explain.add_subcommand("pose", "Why qal ik has no joints for a pose");
  arguments->ik.AddTo(*pose, arm);
  arguments->report.AddTo(*pose);
  arguments->command = pose;
  pose->footer(
      "With --file as qal explain poses.\n"
      "Exit status: 0 the pose works, 1 it fails.\n"
      "Example: qal explain pose --pose 0.9 0 0.5 --rpy 0 3.14159 0");
  pose->callback([arguments] {
    const IkArguments& ik = arguments->ik;
    ik.Check();
    arguments->report.Check();
    const LoadedArm loaded = ik.common.arm->Load();
    ik.file.empty() ? ExplainOne(*arguments, loaded) : ExplainFile(*arguments, ik.file, loaded);
  });
}

void AddExplainPoses(CLI::App& explain, const SharedArm& arm) {
  const auto arguments = std::make_shared<ExplainPoseArguments>();
  CLI::App* poses = explain.add_subcommand(
      "poses", "Why poses of a file can't be passed one after the other, at the arm's speed");
  TakesFile(poses->add_option(
                "FILE", arguments->poses,
                "CSV file of poses, with the columns x_m,y_m,z_m,qw,qx,qy,qz, and time_s, without\n"
                "which they are one control cycle apart; -: standard input"),
            kPointFiles)
      ->required();
  arguments->ik.AddRequestTo(*poses);
  arguments->ik.common.AddTo(*poses, arm, false);
  arguments->report.AddTo(*poses);
  arguments->command = poses;
  poses->footer(
      "Each pose is taken by the admissible solution nearest the one before, the first nearest\n"
      "--near; from the second on, no joint may be quicker than its arm's velocity, or go farther\n"
      "than --step-bound.\n"
      "Exit status: 0 they work, 1 they fail.\n"
      "Example: qal explain poses poses.csv --near 0 0.3 0.2 0 1 0");
  poses->callback([arguments] {
    arguments->report.Check();
    ExplainFile(*arguments, arguments->poses, arguments->ik.common.arm->Load());
  });
}

}  // namespace qal::tools
