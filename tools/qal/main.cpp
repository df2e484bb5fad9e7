#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../common/arm_option.h"
#include "../common/run.h"
#include "../common/values.h"
#include "commands.h"
#include "number_option.h"

namespace {

using namespace qal::tools;
using namespace qal::io;

// The text of a help option, for those who look for a command.
void AddHelp(CLI::App& app) {
  const auto about = std::make_shared<std::vector<std::string>>();
  CLI::App* help = app.add_subcommand("help", "Describe a command, with an example");
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  TakesListOf(help->add_option("COMMAND", *about, "the command; without it, all are listed"), names)
      ->type_name("");
  help->footer("Example: qal help line");
  help->callback([&app, about] {
    const CLI::App* command = &app;
    std::string prefix = app.get_name();
    for (const std::string& name : *about) {
      try {
        command = command->get_subcommand(name);
      } catch (const CLI::OptionNotFound&) {
        throw UsageError(fmt::format("'{}' is no command; {} lists them", name,
                                     command == &app ? "qal help" : "qal help explain"));
      }
      prefix += ' ' + command->get_name();
    }
    // Not app.help(), which is the help of the command that was given: of this one.
    WriteStandardOutput(
        app.get_formatter()->make_help(command, prefix, CLI::AppFormatMode::Normal));
  });
}

void Describe(CLI::App& app) {
  app.description(
      "Kinematics and trajectories of a six-axis arm. Angles in rad and lengths in m unless --deg\n"
      "or --mm is given. The arm is that of --arm FILE, else of QAL_ARM in the environment, else\n"
      "the reference arm.");
  app.footer(
      "qal help COMMAND describes a command, with an example.\n"
      "Exit status: 0 done, 1 no solution or a violation, 2 bad usage.\n"
      "Example: qal plan examples/welding_seam.toml -o seam.csv && qal verify seam.csv");
  const auto arm = std::make_shared<ArmOption>();
  arm->AddTo(app);
  app.set_version_flag(
      "--version", [arm] { return arm->Version("qal"); },
      "the version, and the arm that would be used");
  app.require_subcommand(0, 1);
  for (auto* add : {AddFk, AddIk, AddJog, AddLine, AddJoint, AddPlan, AddExplain, AddConvert,
                    AddVerify, AddReport, AddPlot, AddReach})
    add(app, arm);
  AddHelp(app);
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only for lack of memory, without a message
int main(int argc, char** argv) {
  KeepStandardOutputForData();
  return RunTool("qal", GatherLists(ArgumentsOf(argc, argv)), Describe);
}
