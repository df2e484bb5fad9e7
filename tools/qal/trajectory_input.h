#ifndef QAL_TOOLS_QAL_TRAJECTORY_INPUT_H_
#define QAL_TOOLS_QAL_TRAJECTORY_INPUT_H_

#include <CLI/App.hpp>
#include <string>

#include "../../io/files.h"
#include "../../io/trajectory_file.h"
#include "../common/values.h"

namespace qal::tools {

/// A trajectory file that a command reads.
class TrajectoryInput {
 public:
  /// Adds the positional argument `name`, --from and --joint-names.
  /// @param what   may be given, for the help
  /// @param endings of such files
  void AddTo(CLI::App& command, const std::string& name, const std::string& what = "trajectory",
             const std::string& endings = kTrajectoryFiles);

  /// What messages call the file.
  std::string name() const { return io::NameOf(path_); }
  const std::string& path() const { return path_; }
  /// Names of the joints in ROS files: those that --joint-names gives, else the arm's.
  /// @throw UsageError when --joint-names are not six different ones
  io::JointNames Names(const Arm& arm) const;

  /// The file's trajectory, at least one sample, and its notes on standard error. Times are not
  /// checked for their order.
  /// @throw UsageError "NAME: line N: REASON", in one line
  io::LocatedTrajectory Read(const Arm& arm) const;
  /// The same of another file, by the same options.
  io::LocatedTrajectory Read(const Arm& arm, const std::string& path) const;

 private:
  std::string path_;
  std::string format_;
  std::string names_;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_TRAJECTORY_INPUT_H_
