#ifndef QAL_TOOLS_COMMON_READ_OPTIONS_H_
#define QAL_TOOLS_COMMON_READ_OPTIONS_H_

#include <CLI/App.hpp>

#include "../../io/description.h"

namespace qal::tools {

/// Adds the options that say which links of a URDF are the base and the tip.
inline void AddLinkOptions(CLI::App& app, io::ReadOptions& options) {
  app.add_option("--base,--base-link", options.base,
                 "base link of a URDF (default: the one without a parent)")
      ->type_name("LINK");
  app.add_option("--tip,--tip-link", options.tip,
                 "tip link of a URDF (default: where six joints end)")
      ->type_name("LINK");
}

/// Adds the options that say how a description is to be read: those above, --mm and --deg.
inline void AddReadOptions(CLI::App& app, io::ReadOptions& options) {
  AddLinkOptions(app, options);
  app.add_flag("--mm", options.millimetres, "the description's lengths are in mm, not m");
  app.add_flag("--deg", options.degrees, "a table's angles are in degrees, not rad");
}

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_READ_OPTIONS_H_
