#include "read_arm.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "../../io/error.h"
#include "../../io/files.h"
#include "table.h"
#include "units.h"
#include "urdf.h"

namespace qal::tools {

using namespace io;

using nlohmann::json;

json ParseToml(const std::string& text, const std::string& path) {
  try {
    std::ostringstream as_json;
    as_json << toml::json_formatter(toml::parse(text));
    return json::parse(as_json.str());
  } catch (const toml::parse_error& error) {
    throw UsageError(fmt::format("{}, line {}: not well-formed TOML ({})", path,
                                 error.source().begin.line, error.description()));
  }
}

json ParseJson(const std::string& text, const std::string& path) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    throw UsageError(fmt::format("{}, line {}: not well-formed JSON", path,
                                 1 + std::count(text.begin(), end, '\n')));
  } catch (const json::out_of_range&) {
    throw UsageError(fmt::format("{}: a number is too large", path));
  }
}

Arm ReadArm(const std::string& path, const ReadOptions& options) {
  const std::string ending = std::filesystem::path(path).extension();
  if (ending == ".xacro") {
    throw UsageError(fmt::format("{}: a xacro file; run xacro on it and give its output", path));
  }
  const bool urdf = ending == ".urdf" || ending == ".xml";
  if (!urdf && ending != ".toml" && ending != ".json") {
    throw UsageError(fmt::format("{}: .urdf, .xml, .toml or .json is expected", path));
  }
  if (urdf && options.degrees) {
    throw UsageError("--deg is for tables; a URDF's angles are radians");
  }
  if (!urdf && !(options.base.empty() && options.tip.empty())) {
    throw UsageError("--base and --tip are for URDFs; a table has no links");
  }
  const std::string text = ReadFile(path);
  const auto table = [&] {
    return ending == ".toml" ? ParseToml(text, path) : ParseJson(text, path);
  };
  const Arm arm = urdf ? ReadUrdf(text, path, options) : ReadTable(table(), path, options);
  CheckScale(arm, path);
  return arm;
}

}  // namespace qal::tools
