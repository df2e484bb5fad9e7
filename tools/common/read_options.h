#ifndef QAL_TOOLS_COMMON_READ_OPTIONS_H_
#define QAL_TOOLS_COMMON_READ_OPTIONS_H_

#include <CLI/App.hpp>

#include "../../io/description.h"

namespace qal::tools {

/// Adds the options that say how a description is to be read: --base, --tip, --mm, --deg and
/// --exact-angles.
inline void AddReadOptions(CLI::App& app, io::ReadOptions& options) {
  app.add_option("--base", options.base, "base link (else the one without a parent)")
      ->type_name("LINK");
  app.add_option("--tip", options.tip, "tip link (else where six joints end)")->type_name("LINK");
  app.add_flag("--mm", options.millimetres, "lengths are in millimetres, not metres");
  app.add_flag("--deg", options.degrees, "a table's angles are in degrees, not radians");
  app.add_flag("--exact-angles", options.exact_angles,
               "read angles such as 1.5708 as the multiples of 15 degrees that they stand for");
}

}  // namespace qal::tools

#endif  // QAL_TOOLS_COMMON_READ_OPTIONS_H_
