#ifndef QAL_IO_REACH_VTI_H_
#define QAL_IO_REACH_VTI_H_

#include <string>

#include "reach_file.h"

namespace qal::io {

/// A whole reach study as VTK's XML ImageData, for ParaView: its cells with what HDF5 has of them.
std::string ReachVti(const ReachFile& whole);

}  // namespace qal::io

#endif  // QAL_IO_REACH_VTI_H_
