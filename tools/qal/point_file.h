#ifndef QAL_TOOLS_QAL_POINT_FILE_H_
#define QAL_TOOLS_QAL_POINT_FILE_H_

#include <qal/solve/kinematics.h>

#include <functional>
#include <string>

#include "../../io/trajectory_csv.h"
#include "output.h"

namespace qal::tools {

/// Reads the rows of a CSV file of joints or poses.
/// @param path -: standard input
/// @throw UsageError "FILE: ..."
io::PointRows ReadPointFile(const std::string& path, io::PointKind kind);

/// Solves a row of a file.
using RowSolver = std::function<Result<State>(const io::FileSample& row)>;

/// Solves each row of a CSV file and writes for each its joints and pose, or why there is none, as
/// table, JSON or CSV.
/// @param path -: standard input
/// @throw Failure when a row has no solution; all is written before
void SolveFile(const std::string& path, io::PointKind kind, const io::LoadedArm& loaded,
               const CommonOptions& options, const RowSolver& solve);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_POINT_FILE_H_
