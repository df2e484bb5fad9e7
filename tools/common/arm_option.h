#ifndef QAL_TOOLS_COMMON_ARM_OPTION_H_
#define QAL_TOOLS_COMMON_ARM_OPTION_H_

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "../../io/loaded_arm.h"

namespace qal::tools {

/// QAL_ARM, the arm where no option names one; null when it isn't set.
const char* ArmOfEnvironment();

/// The options that say which arm a command works with: --arm, --base and --tip.
class ArmOption {
 public:
  void AddTo(CLI::App& command);

  /// The arm that --arm names, else QAL_ARM in the environment, else the reference arm. With a
  /// solver library the tool goes on in a child process.
  /// @throw as io::ResolveArm and GoOnInChild
  io::LoadedArm Load() const;

  /// What --version says: "TOOL 1.0.0", and in the next line the arm that the tool would use.
  std::string Version(const std::string& tool) const;

 private:
  std::optional<std::string> path_;
  io::ReadOptions read_;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_ARM_OPTION_H_
