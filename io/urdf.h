#ifndef QAL_IO_URDF_H_
#define QAL_IO_URDF_H_

#include <string>

#include "description.h"

namespace qal::io {

/// The arm in the text of a URDF. Fixed joints are taken over; whatever is outside the chain from
/// base to tip is left aside.
/// @param path what messages call the text
/// @throw UsageError as ParseDescription
ArmDescription ReadUrdf(const std::string& text, const std::string& path,
                        const ReadOptions& options);

}  // namespace qal::io

#endif  // QAL_IO_URDF_H_
