#ifndef QAL_TOOLS_QAL_TRAJECTORY_OUTPUT_H_
#define QAL_TOOLS_QAL_TRAJECTORY_OUTPUT_H_

#include <CLI/App.hpp>
#include <string>

#include "../../io/trajectory_file.h"

namespace qal::tools {

/// A trajectory file that a command writes.
class TrajectoryOutput {
 public:
  /// Adds the argument or option `name`, --to, --ros and --full.
  /// @return the first of them
  CLI::Option* AddTo(CLI::App& command, const std::string& name);

  bool given() const { return !path_.empty(); }
  bool to_standard_output() const { return path_ == "-"; }

  /// Before any work is done for the file.
  /// @throw UsageError when the name tells no format, or an option isn't for its format
  void Check() const;
  /// Writes the file, whole or not at all; for - to standard output.
  /// @param names of the joints in a ROS file
  /// @throw UsageError as `Check`, and when the file can't be written or can't hold the times
  void Write(const io::FileTrajectory& trajectory, const Arm& arm,
             const io::JointNames& names) const;

 private:
  io::FileFormat Format() const { return io::FormatToWrite(to_, path_, "--to"); }

  std::string path_;
  std::string to_;
  std::string ros_;
  bool full_ = false;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TRAJECTORY_OUTPUT_H_
