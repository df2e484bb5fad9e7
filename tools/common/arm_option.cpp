#include "arm_option.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace qal::tools {

void ArmOption::AddTo(CLI::App& command) {
  command
      .add_option("--arm", path_,
                  "the arm: URDF, table (TOML, JSON), arm file or solver library; -: standard\n"
                  "input (default: QAL_ARM in the environment, else the reference arm)")
      ->type_name("FILE");
  command.add_option("--base-link", read_.base, "of a URDF (default: the link without a parent)")
      ->type_name("LINK");
  command.add_option("--tip-link", read_.tip, "of a URDF (default: where six joints end)")
      ->type_name("LINK");
}

io::LoadedArm ArmOption::Load() const {
  return io::ResolveArm(path_, std::getenv("QAL_ARM"), read_);
}

std::string ArmOption::Version(const std::string& tool) const {
  return fmt::format("{} {}\narm: {}", tool, QAL_VERSION, io::ArmHeading(Load()));
}

}  // namespace qal::tools
