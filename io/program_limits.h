#ifndef QAL_IO_PROGRAM_LIMITS_H_
#define QAL_IO_PROGRAM_LIMITS_H_

#include <qal/plan/program.h>

#include <optional>
#include <string>
#include <vector>

#include "document.h"

namespace qal::io {

/// What a step may do, and how its end is passed.
struct StepSettings {
  LineLimits limits;
  std::optional<Zone> zone = {};  ///< none: the motion stops there
};

/// `keys`, and those of a move: its scale and its zone; with `tool` those of a tool's way as well.
std::vector<std::string> WithSettingKeys(std::vector<std::string> keys, bool tool);

/// The settings of a step or of `[limits]`; what isn't there is as in `otherwise`.
/// @throw UsageError as Fields; for a limit not above 0, a scale not above 0 and up to 100 percent,
///        a zone below 0
StepSettings ReadStepSettings(const Fields& fields, const StepSettings& otherwise);

}  // namespace qal::io

#endif  // QAL_IO_PROGRAM_LIMITS_H_
