#ifndef QAL_TOOLS_QAL_EXPLAIN_H_
#define QAL_TOOLS_QAL_EXPLAIN_H_

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "../../io/error.h"
#include "../../io/explanation_text.h"
#include "../common/run.h"
#include "command_line.h"
#include "commands.h"
#include "output.h"
#include "report_option.h"

namespace qal::tools {

// `qal explain` has commands of its own, for what each of the others does.

void AddExplainPose(CLI::App& explain, const SharedArm& arm);
void AddExplainPoses(CLI::App& explain, const SharedArm& arm);
void AddExplainLine(CLI::App& explain, const SharedArm& arm);
void AddExplainJoint(CLI::App& explain, const SharedArm& arm);
void AddExplainProgram(CLI::App& explain, const SharedArm& arm);

/// What `qal explain` answers.
struct ExplainedAnswer {
  io::ExplainedRequest request;
  std::string rows = {};           ///< what else the table has
  io::FileTrajectory motion = {};  ///< how far it gets, for a report
};

/// Writes the report if one is wanted, and the answer as a table or as JSON.
/// @throw Failure when it doesn't work; all is written before
void WriteExplained(const CommonOptions& common, const ReportOption& report,
                    const io::LoadedArm& loaded, const ExplainedAnswer& answer);

/// Whether a command line does what it is told to, whose arguments are read as a shell gives them.
/// @param run does it, but writes nothing; throws when it can't be done
template <class Arguments>
bool Works(const CommandLine& command, const std::function<void(const Arguments&)>& run) {
  Arguments arguments;
  CLI::App app;
  arguments.AddTo(app, std::make_shared<ArmOption>());
  try {
    app.parse(ForParser(command.Arguments()));
    run(arguments);
    return true;
  } catch (const io::Failure&) {
    return false;
  } catch (const io::UsageError&) {
    return false;
  }
}

/// x y z qw qx qy qz.
inline std::vector<double> NumbersOf(const Pose& pose) {
  const auto& [p, q] = pose;
  return {p.x, p.y, p.z, q.w, q.x, q.y, q.z};
}

inline std::vector<double> NumbersOf(const Joints& joints) {
  return {joints.begin(), joints.end()};
}

/// What the options of a move's ends have.
std::map<std::string, Quantity> EndQuantities();

/// Takes another pose for the end.
void SetEnd(CommandLine& command, const Pose& pose);
/// The same with joints.
void SetEnd(CommandLine& command, const Joints& joints);

/// The arm's tool moved along its own axes.
Transform MovedTool(const Arm& arm, const Vec3& by);
/// The same as an arm file has it: "[tool] xyz = [0, 0, 0.12]".
std::string ToolKeys(const Arm& arm, const Vec3& by);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_EXPLAIN_H_
