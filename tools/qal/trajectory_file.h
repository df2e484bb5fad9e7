#ifndef QAL_TOOLS_QAL_TRAJECTORY_FILE_H_
#define QAL_TOOLS_QAL_TRAJECTORY_FILE_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "trajectory.h"
#include "trajectory_ros.h"

namespace qal::tools {

enum class FileFormat { kCsv, kJson, kRos };

extern const std::vector<std::string> kFormatNames;  // csv, json, ros

/// The format called `name`, or, when that is empty, the one that the ending of `path` tells: .csv,
/// .json, .yaml or .yml.
/// @param option the option that names a format, for the message
/// @throw UsageError when there is no such ending
FileFormat FormatOf(const std::string& name, const std::string& path, const std::string& option);

/// A trajectory file that a command reads.
class TrajectoryInput {
 public:
  /// Adds the positional argument `name`, --from and --joint-names.
  void AddTo(CLI::App& command, const std::string& name);

  /// What messages call the file.
  std::string name() const { return path_ == "-" ? "standard input" : path_; }
  /// Names of the joints in ROS files.
  const JointNames& names() const { return names_; }

  /// The file's trajectory, at least one sample. Times are not checked for their order.
  /// @throw UsageError "NAME: line N: REASON", in one line
  LocatedTrajectory Read() const;

 private:
  std::string path_;
  std::string format_;
  JointNames names_ = DefaultJointNames();
};

/// Where a sample stands: "sample 12 (line 14)", counted from sample 0 and line 1; without the line
/// where there is none.
std::string Place(const LocatedTrajectory& trajectory, size_t sample);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TRAJECTORY_FILE_H_
