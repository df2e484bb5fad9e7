#ifndef QAL_TOOLS_ARM_TABLE_H_
#define QAL_TOOLS_ARM_TABLE_H_

#include <nlohmann/json.hpp>
#include <string>

#include "read_arm.h"

namespace qal::tools {

/// The arm in a table of Denavit-Hartenberg, modified Denavit-Hartenberg or ortho-parallel
/// parameters.
/// @param path what messages call the table
/// @throw UsageError as ReadArm
Arm ReadTable(const nlohmann::json& table, const std::string& path, const ReadOptions& options);

/// A TOML or JSON file's text as a table.
/// @throw UsageError "PATH, line N: ..." when it isn't well-formed
nlohmann::json ParseToml(const std::string& text, const std::string& path);
nlohmann::json ParseJson(const std::string& text, const std::string& path);

}  // namespace qal::tools

#endif  // QAL_TOOLS_ARM_TABLE_H_
