#ifndef QAL_IO_FRAME_H_
#define QAL_IO_FRAME_H_

#include <qal/model/pose.h>

#include <optional>
#include <string>
#include <vector>

#include "document.h"

namespace qal::io {

/// `keys`, and those of an orientation: `rpy`, `rpy_deg`, `quat_wxyz`.
std::vector<std::string> WithOrientationKeys(std::vector<std::string> keys);

/// Rotations about the fixed x, y and z axes, in this order [rad]: the triple of a key, or of the
/// same with `_deg`; zeros without either.
/// @throw UsageError where both are there
Vec3 ReadRpy(const Fields& fields, const std::string& key);

/// The orientation that one of the keys gives, of length 1; nothing without any.
/// @throw UsageError where there are two, or a quaternion of length 0
std::optional<Quat> ReadOrientation(const Fields& fields);

/// A frame by `xyz` [m] and an orientation; what isn't there is that of the frame around it.
Transform ReadFrame(const Fields& fields);

}  // namespace qal::io

#endif  // QAL_IO_FRAME_H_
