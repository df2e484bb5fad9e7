#include "arm_option.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdlib>

#include "child.h"
#include "read_options.h"
#include "values.h"
#include "version.h"

namespace qal::tools {

void ArmOption::AddTo(CLI::App& command) {
  TakesArm(command.add_option(
      "--arm", path_,
      "the arm: URDF, table (TOML, JSON), arm file or solver library; -: standard\n"
      "input (default: QAL_ARM in the environment, else the reference arm)"));
  AddLinkOptions(command, read_);
}

const char* ArmOfEnvironment() { return std::getenv("QAL_ARM"); }

io::LoadedArm ArmOption::Load() const {
  return io::ResolveArm(path_, ArmOfEnvironment(), read_, GoOnInChild);
}

std::string VersionOf(const std::string& tool) { return fmt::format("{} {}", tool, QAL_VERSION); }

std::string ArmOption::Version(const std::string& tool) const {
  return fmt::format("{}\narm: {}", VersionOf(tool), io::ArmHeading(Load()));
}

}  // namespace qal::tools
