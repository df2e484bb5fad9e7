#ifndef QAL_TOOLS_MKIK_SUMMARY_H_
#define QAL_TOOLS_MKIK_SUMMARY_H_

#include <string>

#include "../../io/loaded_arm.h"
#include "../../src/qal/model/closed_form_model.h"
#include "verify.h"

namespace qal::tools {

/// What was found, in lines to read.
/// @param arm the described arm with its closed form
std::string SummaryText(const io::LoadedArm& arm, const ArmDescription& description,
                        const FittedModel& fitted, const Verification& verification);

/// The same as JSON, for programs: lengths in metres, angles in radians.
std::string SummaryJson(const io::LoadedArm& arm, const ArmDescription& description,
                        const FittedModel& fitted, const Verification& verification);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_SUMMARY_H_
