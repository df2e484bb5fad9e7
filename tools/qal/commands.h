#ifndef QAL_TOOLS_QAL_COMMANDS_H_
#define QAL_TOOLS_QAL_COMMANDS_H_

#include <CLI/App.hpp>
#include <memory>

#include "../common/arm_option.h"

namespace qal::tools {

/// The arm's options are one for the tool, so that they may stand before the command as well as
/// behind it.
using SharedArm = std::shared_ptr<ArmOption>;

// Each adds one command. It runs when the command line has been parsed, writes its data to standard
// output, and throws UsageError or Failure.

void AddFk(CLI::App& app, const SharedArm& arm);
void AddIk(CLI::App& app, const SharedArm& arm);
void AddJog(CLI::App& app, const SharedArm& arm);
void AddLine(CLI::App& app, const SharedArm& arm);
void AddJoint(CLI::App& app, const SharedArm& arm);
void AddPlan(CLI::App& app, const SharedArm& arm);
void AddExplain(CLI::App& app, const SharedArm& arm);
void AddConvert(CLI::App& app, const SharedArm& arm);
void AddVerify(CLI::App& app, const SharedArm& arm);
void AddPlot(CLI::App& app, const SharedArm& arm);
void AddReach(CLI::App& app, const SharedArm& arm);
void AddReport(CLI::App& app, const SharedArm& arm);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_COMMANDS_H_
