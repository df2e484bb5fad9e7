#include "explain.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>

#include "../../io/explanation_json.h"
#include "../../io/files.h"
#include "solution_table.h"

namespace qal::tools {

using namespace io;

namespace {

// The failing point, the joints before it, and the point's solutions.
std::string FailingPointRows(const ExplainedRequest& request, const Units& units) {
  const Explanation& why = request.why;
  if (!why.point) return "";
  const auto& [p, q] = why.point->pose;
  std::vector<double> before = NumbersOf(why.before);
  for (double& joint : before) joint = units.Angle(joint);
  std::string rows =
      "failing point\n" +
      Row(fmt::format("position x y z [{}]", units.length()),
          {units.Length(p.x), units.Length(p.y), units.Length(p.z)}, LengthDecimals(units)) +
      Row("orientation qw qx qy qz", {q.w, q.x, q.y, q.z}, kComponentDecimals) +
      (request.what == "pose" ? "reference\n" : "last before it\n") +
      Row(fmt::format("joints 1 to 6 [{}]", units.angle()), before, AngleDecimals(units));
  if (request.before) rows += TextRow("configuration", BranchName(*request.before));
  if (why.solutions.empty()) return rows;
  return rows + "solutions of the failing point, with the distance from the joints above\n" +
         SolutionTable(why.solutions, units, [](size_t) { return "admissible"; });
}

std::string BranchRows(const ExplainedRequest& request, const Units& units) {
  if (request.branches.empty()) return "";
  std::string rows = "start configurations, the quickest first\n   start";
  for (int j = 1; j <= 6; ++j) {
    rows += fmt::format(" {:>11}", fmt::format("q{} [{}]", j, units.angle()));
  }
  rows += fmt::format(" {:>12} {:>21} {:>14}  {:<41}  {}\n", "duration [s]",
                      fmt::format("limit margin [{}]", units.angle()), "singular value", "branch",
                      "the line");
  for (size_t i = 0; i < request.branches.size(); ++i) {
    const BranchAudit& audit = request.branches[i];
    rows += fmt::format("{:>8}", i + 1);
    for (const double joint : audit.start) {
      rows += fmt::format(" {:>11}", Decimal(units.Angle(joint), 6));
    }
    const bool measured = !audit.failure;
    const std::string margin =
        audit.joint < 0 ? "none"
                        : fmt::format("{:.5g}, joint {}", units.Angle(audit.smallest_margin_rad),
                                      audit.joint + 1);
    rows +=
        fmt::format(" {:>12} {:>21} {:>14}  {:<41}  {}\n",
                    measured ? Decimal(audit.duration_s, 3) : "-", measured ? margin : "-",
                    measured ? fmt::format("{:.4g}", audit.smallest_singular_value) : "-",
                    audit.branch ? BranchName(*audit.branch) : "-", AuditText(audit, units.text()));
  }
  return rows;
}

std::string RemedyRows(const ExplainedRequest& request) {
  if (request.why.works()) return "";
  if (request.remedies.empty()) return "no single change was found that makes it work\n";
  std::string rows = "what makes it work, each tried, the smallest change first\n";
  for (size_t i = 0; i < request.remedies.size(); ++i) {
    const auto& [kind, text, command, keys] = request.remedies[i];
    rows += fmt::format("{}. {}\n", i + 1, text);
    if (!command.empty()) rows += fmt::format("   {}\n", command);
    if (!keys.empty()) rows += fmt::format("   {}\n", keys);
  }
  return rows;
}

std::string Table(const LoadedArm& loaded, const ExplainedRequest& request, const std::string& rows,
                  const Units& units) {
  std::string table = ArmRow(loaded) + Headline(request, units.text()) + '\n';
  for (const std::string& line : ReasonLines(request, units.text())) table += line + '\n';
  return table + rows + FailingPointRows(request, units) + BranchRows(request, units) +
         RemedyRows(request);
}

}  // namespace

void WriteExplained(const CommonOptions& common, const ReportOption& report,
                    const LoadedArm& loaded, const ExplainedAnswer& answer) {
  const ExplainedRequest& request = answer.request;
  const Json explanation = ExplanationJson(request);
  if (report.given()) {
    Report page = {"", "qal explain " + request.what, {}, explanation};
    if (!answer.motion.empty()) {
      // The motion as far as it gets has other times.
      Json& point = page.explanation["point"];
      if (!request.why.works() && point.is_object()) point["time_s"] = nullptr;
      page.motions.push_back(
          {request.why.works() ? request.what : "as far as it gets",
           FindingsOf(loaded, {answer.motion, {}}, LimitsOf(loaded.arm), false)});
    }
    report.Write(loaded, std::move(page));
  }
  const Json json = {{"arm", ArmJson(loaded)}, {"explanation", explanation}};
  WriteStandardOutput(common.output.json() ? json.dump() + '\n'
                                           : Table(loaded, request, answer.rows, common.units));
  if (!request.why.works()) throw Failure(Headline(request, common.units.text()));
}

std::map<std::string, Quantity> EndQuantities() {
  return {{"--from", Quantity::kAngle},
          {"--to", Quantity::kAngle},
          {"--to-pose", Quantity::kPose},
          {"--rpy", Quantity::kAngle},
          {"--by", Quantity::kLength}};
}

void SetEnd(CommandLine& command, const Pose& pose) {
  for (const char* other : {"--to", "--rpy", "--by"}) command.Remove(other);
  command.SetNumbers("--to-pose", NumbersOf(pose));
}

void SetEnd(CommandLine& command, const Joints& joints) {
  for (const char* other : {"--to-pose", "--rpy", "--by"}) command.Remove(other);
  command.SetNumbers("--to", NumbersOf(joints));
}

Transform MovedTool(const Arm& arm, const Vec3& by) {
  Transform move;
  move.position = by;
  return arm.tool() * move;
}

std::string ToolKeys(const Arm& arm, const Vec3& by) {
  const auto [x, y, z] = MovedTool(arm, by).position;
  return fmt::format("[tool] xyz = [{}, {}, {}]", x, y, z);
}

void AddExplain(CLI::App& app, const SharedArm& arm) {
  CLI::App* explain = app.add_subcommand(
      "explain",
      "Why a pose, a line, a joint move or a program fails, and what would make it work");
  explain->require_subcommand(0, 1);
  AddExplainPose(*explain, arm);
  AddExplainPoses(*explain, arm);
  AddExplainLine(*explain, arm);
  AddExplainJoint(*explain, arm);
  AddExplainProgram(*explain, arm);
  explain->footer(
      "Each takes what the command takes that it explains: put explain before the command that\n"
      "failed. qal help explain COMMAND describes one; docs/explain.md says what each cause "
      "means.\n"
      "Exit status: 0 it works, 1 it fails, 2 bad usage.\n"
      "Example: qal explain line --from 0 0.3 0.2 0 1 0 --by 0.5 0 0");
}

}  // namespace qal::tools
