#include <fmt/format.h>
#include <qal/model/chain.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <exception>
#include <sstream>

#include "../../io/arm_file.h"
#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/messages.h"
#include "../common/read_options.h"
#include "checks.h"

namespace {

using namespace qal;

constexpr const char* kDescription =
    "Checks a solver library, libik.so, in a process of its own, so that nothing it does ends the\n"
    "check. Exit status: 0 sound, 1 faults found (with --strict notes, too), 2 bad usage, or not "
    "a\n"
    "library that can be loaded.";

struct Arguments {
  ikcheck::Session::Options options;
  bool json = false;
  bool strict = false;
  std::string arm;
  io::ReadOptions read;
};

void Describe(CLI::App& app, Arguments& arguments) {
  app.name("ikcheck");
  app.description(kDescription);
  app.footer(ikcheck::FindingsHelp());
  app.set_version_flag("--version", "ikcheck " QAL_VERSION);
  ikcheck::Session::Options& options = arguments.options;
  app.add_option("library", options.library, "the solver library")->required();
  app.add_option("--poses", options.poses, "random joint sets to check with")
      ->check(CLI::Range(1, 10000000))
      ->capture_default_str();
  app.add_option("--seed", options.seed, "of the random numbers")->capture_default_str();
  app.add_option("--timeout", options.timeout_s, "longest time that a call may take [s]")
      ->check(CLI::Range(0.1, 3600.0))
      ->capture_default_str();
  app.add_option(
         "--urdf,--table", arguments.arm,
         "the arm that the solver should be for: URDF, table of parameters (TOML, JSON) or\n"
         "arm file; base and tip frames have to agree, too")
      ->type_name("FILE");
  tools::AddReadOptions(app, arguments.read);
  app.add_flag("--json", arguments.json, "print the report as JSON");
  app.add_flag("--strict", arguments.strict, "let notes count as faults in the exit status");
}

ikcheck::Pose Forward(const ArmDescription& arm, const ikcheck::Joints& joints) {
  const Transform tip = TipFrame(arm, joints);
  ikcheck::Pose pose = {{tip.position.x, tip.position.y, tip.position.z}, {}};
  std::copy(tip.rotation, tip.rotation + 9, pose.rotation);
  return pose;
}

int Run(int argc, char** argv) {
  CLI::App app;
  Arguments arguments;
  Describe(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app.exit(error, text, text) != 0) throw io::UsageError(error.what());
    io::WriteStandardOutput(text.str());
    return io::kDone;
  }
  if (!arguments.arm.empty()) {
    const ArmDescription arm = io::ReadDescription(arguments.arm, arguments.read);
    arguments.options.arm = [arm](const ikcheck::Joints& joints) { return Forward(arm, joints); };
  }
  const ikcheck::Report report = ikcheck::RunChecks(arguments.options);
  io::WriteStandardOutput(arguments.json ? report.JsonText() : report.Text());
  const bool bad = arguments.strict ? report.HasFindings() : report.HasFaults();
  return bad ? io::kFailed : io::kDone;
}

}  // namespace

int main(int argc, char** argv) {
  // A reader that closes the pipe early is no fault; the write says so.
  (void)std::signal(SIGPIPE, SIG_IGN);
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {  // what can't be used, and what the machine doesn't have
    io::SayOnError("ikcheck", error.what());
    return io::kBadUsage;
  }
}
