#ifndef QAL_IO_TABLE_H_
#define QAL_IO_TABLE_H_

#include "description.h"
#include "document.h"

namespace qal::io {

/// The arm in a table of Denavit-Hartenberg, modified Denavit-Hartenberg or ortho-parallel
/// parameters.
/// @throw UsageError as ParseDescription
ArmDescription ReadTable(const Fields& table, const ReadOptions& options);

}  // namespace qal::io

#endif  // QAL_IO_TABLE_H_
