#ifndef QAL_IO_REACH_FILE_H_
#define QAL_IO_REACH_FILE_H_

#include <qal/study/reach.h>

#include <string>
#include <vector>

namespace qal::io {

/// A reach study, or some of its cells one after the other.
struct ReachFile {
  std::string description;  ///< the study's, as JSON
  ReachStudy study = {};    ///< the same
  size_t first = 0;         ///< cell of the study
  std::vector<ReachCell> cells = {};

  /// The cell behind the last one.
  size_t end() const { return first + cells.size(); }
};

/// Writes an HDF5 file, whole or not at all. Its datasets, with units and a sentence each, are in
/// docs/reach.md. The same cells give the same bytes.
/// @throw UsageError as WriteFile
void WriteReachFile(const std::string& path, const ReachFile& file);

/// @throw UsageError "PATH: ..." when it can't be read, or is no file of a reach study
ReachFile ReadReachFile(const std::string& path);

/// Files of one study that together have all of its cells, as one.
/// @param names of the files, for messages
/// @throw UsageError when a file is of another study, or cells are missing or there twice
ReachFile MergeReachFiles(std::vector<ReachFile> files, const std::vector<std::string>& names);

}  // namespace qal::io

#endif  // QAL_IO_REACH_FILE_H_
