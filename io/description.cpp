#include "description.h"

#include <fmt/format.h>

#include "document.h"
#include "error.h"
#include "table.h"
#include "units.h"
#include "urdf.h"

namespace qal::io {

void ExpectUrdfOptions(const ReadOptions& options) {
  if (options.degrees) throw UsageError("--deg is for tables; a URDF's angles are radians");
}

void ExpectTableOptions(const ReadOptions& options) {
  if (options.base.empty() && options.tip.empty()) return;
  throw UsageError("--base and --tip are for URDFs; a table has no links");
}

ArmDescription ParseDescription(const std::string& text, const std::string& path,
                                const ReadOptions& options) {
  const Content content = ContentOf(text);
  if (content == Content::kLibrary) {
    throw UsageError(
        fmt::format("{}: a library; a URDF or a table of parameters is expected", path));
  }
  ArmDescription arm;
  if (content == Content::kXml) {
    ExpectUrdfOptions(options);
    arm = ReadUrdf(text, path, options);
  } else {
    const Document document =
        content == Content::kJson ? ParseJson(text, path) : ParseToml(text, path);
    ExpectTableOptions(options);
    arm = ReadTable(Fields(document), options);
  }
  CheckScale(arm, path, options);
  return arm;
}

}  // namespace qal::io
