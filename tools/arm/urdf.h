#ifndef QAL_TOOLS_ARM_URDF_H_
#define QAL_TOOLS_ARM_URDF_H_

#include <string>

#include "read_arm.h"

namespace qal::tools {

/// The arm in the text of a URDF. Fixed joints are taken over; whatever is beside the chain from
/// base to tip is left aside.
/// @param path what messages call the text
/// @throw UsageError as ReadArm
Arm ReadUrdf(const std::string& text, const std::string& path, const ReadOptions& options);

}  // namespace qal::tools

#endif  // QAL_TOOLS_ARM_URDF_H_
