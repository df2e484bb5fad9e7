#include <fmt/format.h>
#include <qal/model/chain.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <optional>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/loaded_arm.h"
#include "../common/arm_option.h"
#include "../common/read_options.h"
#include "../common/run.h"
#include "../common/values.h"
#include "checks.h"

namespace {

using namespace qal;

struct Arguments {
  std::optional<std::string> library;
  std::optional<std::string> arm;
  ikcheck::Options options;
  bool json = false;
  bool strict = false;
  io::ReadOptions read;
};

// What is to be checked, and the description that it is compared with. The library is not loaded
// here: its code may do anything.
struct Subject {
  std::string library;
  std::optional<io::ArmFile> arm;
};

Subject SubjectOf(const Arguments& arguments) {
  Subject subject = {arguments.library.value_or(""),
                     io::ResolveArmFile(arguments.arm, tools::ArmOfEnvironment(), arguments.read)};
  const std::optional<io::ArmFile>& arm = subject.arm;
  if (!arguments.library && arm) subject.library = arm->solver;
  if (arm && !arm->description) {
    if (arguments.library && arguments.arm) (void)DescriptionIn(*arm);  // says what is missing
    subject.arm.reset();
  }
  return subject;
}

ikcheck::Pose Forward(const ArmDescription& arm, const ikcheck::Joints& joints) {
  const Transform tip = TipFrame(arm, joints);
  return {{tip.position.x, tip.position.y, tip.position.z}, ikcheck::Rotation::Map(tip.rotation)};
}

void Run(const Arguments& arguments) {
  const Subject subject = SubjectOf(arguments);
  if (subject.library.empty()) {
    throw io::UsageError(
        subject.arm ? fmt::format("{}: no solver in this {}; the library to check is expected, "
                                  "as in: ikcheck libik.so --arm {}",
                                  subject.arm->name, subject.arm->kind, subject.arm->name)
                    : "no library; one is expected as LIBRARY, by --arm or in QAL_ARM");
  }
  ikcheck::Options options = arguments.options;
  options.library = subject.library;
  if (subject.arm) {
    const ArmDescription arm = DescriptionIn(*subject.arm);
    options.arm = ikcheck::DescribedArm{
        arm.name, subject.arm->name, subject.arm->kind,
        [arm](const ikcheck::Joints& joints) { return Forward(arm, joints); }};
  }
  const ikcheck::Report report = ikcheck::RunChecks(options);
  io::WriteStandardOutput(arguments.json ? report.JsonText() : report.Text());
  if (!report.Sound() || (arguments.strict && report.HasFindings())) {
    throw io::Failure(fmt::format("{}: {}", subject.library, report.Summary()));
  }
}

std::string Version(const Arguments& arguments) {
  const Subject subject = SubjectOf(arguments);
  return fmt::format(
      "ikcheck {}\narm: {}\nlibrary: {}", QAL_VERSION,
      subject.arm ? DescriptionIn(*subject.arm).name + " from " + subject.arm->name : "none named",
      subject.library.empty() ? "none named" : subject.library);
}

// CLI::Range takes NaN for in range.
CLI::Validator Seconds(double least, double most) {
  const auto check = [=](const std::string& text) {
    double value = std::numeric_limits<double>::quiet_NaN();
    const bool good = CLI::detail::lexical_cast(text, value) && value >= least && value <= most;
    return good ? "" : fmt::format("Value {} not in range {} to {}", text, least, most);
  };
  return {check, ""};
}

void Describe(CLI::App& app, Arguments& arguments) {
  app.description(
      "Checks a solver library, libik.so, in a process of its own, so that nothing it does ends\n"
      "the check.");
  app.footer(ikcheck::FindingsHelp() +
             "\nExit status: 0 sound, 1 faults found (with --strict notes, too), 2 bad usage, or\n"
             "not a library that can be loaded.\n"
             "Example: ikcheck libik.so --arm arm.urdf --strict");
  ikcheck::Options& options = arguments.options;
  tools::TakesFile(
      app.add_option("LIBRARY", arguments.library,
                     "the solver library (default: the one that the arm's file is or names)"),
      tools::kLibraryFiles);
  tools::TakesArm(app.add_option(
      "--arm,--urdf,--table", arguments.arm,
      "the arm that the solver should be for: URDF, table of parameters (TOML, JSON) or\n"
      "arm file; base and tip frames have to agree, too; -: standard input (default:\n"
      "QAL_ARM in the environment)"));
  app.add_option("--poses", options.poses, "random joint sets to check with, 1 to 10000000")
      ->type_name("N")
      ->check(CLI::Range(1, 10000000).description(""))
      ->capture_default_str();
  app.add_option("--seed", options.seed, "seed of the random numbers")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--timeout", options.timeout_s,
                 "longest time that a call may take [s], 0.1 to 3600")
      ->type_name("N")
      ->check(Seconds(0.1, 3600.0))
      ->capture_default_str();
  tools::AddReadOptions(app, arguments.read);
  app.add_flag("--json", arguments.json, "JSON instead of the table");
  app.add_flag("--strict", arguments.strict, "let notes count as faults in the exit status");
  app.set_version_flag(
      "--version", [&] { return Version(arguments); },
      "the version, and the arm and the library that would be used");
  app.callback([&] { Run(arguments); });
}

}  // namespace

// Only for lack of memory, without a message, and for the private option by hand.
// NOLINTNEXTLINE(bugprone-exception-escape): see above
int main(int argc, char** argv) {
  ikcheck::RunHeapCheck(argc, argv);
  Arguments arguments;
  return tools::RunTool("ikcheck", tools::ArgumentsOf(argc, argv),
                        [&](CLI::App& app) { Describe(app, arguments); });
}
