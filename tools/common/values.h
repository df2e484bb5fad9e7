#ifndef QAL_TOOLS_COMMON_VALUES_H_
#define QAL_TOOLS_COMMON_VALUES_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace qal::tools {

// What a value of an option may be. The option itself carries it, for those who complete command
// lines; nothing else is kept beside the parser's options.

/// Files, as their names mostly end; any other name is taken as well.
constexpr const char* kArmFiles = "*.urdf *.toml *.json *.so";
constexpr const char* kLibraryFiles = "*.so";
constexpr const char* kProgramFiles = "*.toml *.json";
constexpr const char* kPointFiles = "*.csv";
constexpr const char* kTrajectoryFiles = "*.csv *.json *.yaml *.yml";

/// Lets an option take one of these words and no other.
CLI::Option* TakesOneOf(CLI::Option* option, const std::vector<std::string>& words);
/// Says that an option takes some of these words with commas between; it checks them itself.
CLI::Option* TakesListOf(CLI::Option* option, const std::vector<std::string>& words);
/// Says that an option takes a file.
/// @param patterns as above, with spaces between; "*": any
CLI::Option* TakesFile(CLI::Option* option, const std::string& patterns);
/// The same of an arm's file, which may be one of those that are installed.
CLI::Option* TakesArm(CLI::Option* option);

/// What an option says of its values by the functions above.
struct Values {
  enum class Kind { kOther, kOneOf, kListOf, kFile, kArm };
  Kind kind = Kind::kOther;            ///< kOther: numbers, names
  std::vector<std::string> each = {};  ///< words or patterns
};
Values ValuesOf(CLI::Option& option);

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_VALUES_H_
