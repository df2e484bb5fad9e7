#ifndef QAL_IO_TRAJECTORY_FILE_H_
#define QAL_IO_TRAJECTORY_FILE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trajectory.h"
#include "trajectory_ros.h"

namespace qal::io {

enum class FileFormat { kCsv, kJson, kRos };

/// What the formats are called: csv, json, ros.
extern const std::vector<std::string> kFormatNames;

/// The format called so, or none.
std::optional<FileFormat> FormatNamed(const std::string& name);

/// The format of a file that is to be written: the one called `name`, or, when that is empty, the
/// one that the ending of `path` tells: .csv, .json, .yaml or .yml.
/// @param option the option that names a format, for the message
/// @throw UsageError when there is no such ending
FileFormat FormatToWrite(const std::string& name, const std::string& path,
                         const std::string& option);

/// What a written trajectory has beside its samples.
struct TrajectoryExtras {
  bool full = false;  ///< CSV: rates and motor speeds as well
  RosInterface ros = RosInterface::kMessage;
  JointNames names = {};  ///< of the joints, for ROS
};

/// A trajectory as the text of a file.
/// @throw UsageError when the format can't hold the times
std::string TrajectoryText(const FileTrajectory& trajectory, const Arm& arm, FileFormat format,
                           const TrajectoryExtras& extras);

/// The format of a text, told from how it begins.
FileFormat FormatOf(std::string_view text);

/// Reads a trajectory file, at least one sample. Times are not checked for their order.
/// @param path   -: standard input
/// @param format none: told from the content
/// @param names  of the joints in a ROS file
/// @throw UsageError "NAME: line N: REASON"; also for numbers that `ExpectMeasurable` refuses
LocatedTrajectory ReadTrajectory(const std::string& path, std::optional<FileFormat> format,
                                 const RosNames& names);

}  // namespace qal::io

#endif  // QAL_IO_TRAJECTORY_FILE_H_
