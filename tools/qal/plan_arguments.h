#ifndef QAL_TOOLS_QAL_PLAN_ARGUMENTS_H_
#define QAL_TOOLS_QAL_PLAN_ARGUMENTS_H_

#include <qal/plan/program.h>

#include <string>

#include "commands.h"
#include "move.h"

namespace qal::tools {

/// What `qal plan` takes.
struct PlanArguments {
  std::string program;
  PlanOptions plan;

  void AddTo(CLI::App& plan_command, const SharedArm& arm);
};

/// What a step's way is called: "line", "arc" or "move".
const char* WayOf(const ProgramStep& step);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_PLAN_ARGUMENTS_H_
