#ifndef QAL_IO_ARM_SETTINGS_H_
#define QAL_IO_ARM_SETTINGS_H_

#include <qal/model/description.h>

#include "document.h"

namespace qal::io {

/// The settings of an arm file: `name`, `cycle_s`, `[limits]`, `[motors]`, `[base]` and `[tool]`.
/// Whether the numbers are possible ones is for the arm to say that is made with them.
/// @throw UsageError as Fields
ArmSettings ReadArmSettings(const Fields& file);

}  // namespace qal::io

#endif  // QAL_IO_ARM_SETTINGS_H_
