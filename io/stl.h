#ifndef QAL_IO_STL_H_
#define QAL_IO_STL_H_

#include <string_view>

#include "mesh.h"

namespace qal::io {

/// The triangles of an STL file, binary or ASCII, told by its content: their corners, in the file's
/// unit. Normals are passed over, as the order of the corners says the same.
/// @param most how many there may be
/// @return three corners a triangle
/// @throw UsageError when it is cut off, no STL, has no triangle or too many
std::vector<Vec3> ParseStl(std::string_view file, size_t most);

}  // namespace qal::io

#endif  // QAL_IO_STL_H_
