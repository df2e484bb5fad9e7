#ifndef QAL_IO_PLAN_TEXT_H_
#define QAL_IO_PLAN_TEXT_H_

#include <qal/plan/binding.h>
#include <qal/plan/motion.h>

#include <string>

#include "error_text.h"

namespace qal::io {

/// A failure to plan in words, without a line end: where on the way, why, the last joints and
/// position that are reached, and what to do.
/// @param path what is planned: "line" or "move"
std::string PlanFailureText(const PlanFailure& failure, const std::string& path,
                            const TextUnits& units = {});

/// "joint jerk of joint 2", "tool speed".
std::string BindingText(const Binding& binding);

/// The same for programs: "joint_jerk", "tool_speed".
std::string BindingKey(const Binding& binding);

}  // namespace qal::io

#endif  // QAL_IO_PLAN_TEXT_H_
