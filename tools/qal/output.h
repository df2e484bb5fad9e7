#ifndef QAL_TOOLS_QAL_OUTPUT_H_
#define QAL_TOOLS_QAL_OUTPUT_H_

#include <CLI/App.hpp>
#include <functional>
#include <memory>
#include <string>

#include "../../io/trajectory.h"
#include "../common/arm_option.h"
#include "tables.h"
#include "trajectory_output.h"
#include "units.h"

namespace qal::tools {

/// Where a command's answer goes.
class Output {
 public:
  /// Adds --json, --csv and, where the CSV file is of a trajectory, --full.
  void AddTo(CLI::App& command, bool trajectory);

  /// Adds --json and, for a trajectory in any format, -o.
  void AddTrajectoryTo(CLI::App& command);

  /// Before any work is done for a file.
  /// @throw UsageError when its name tells no format, or an option isn't for its format
  void Check() const;
  bool json() const { return json_; }
  /// Writes the CSV file if one is wanted, then `data`, the table or the JSON text, to standard
  /// output. The file comes first, so that a reader which closes the pipe early doesn't lose it.
  /// @param csv makes the file's text
  void Write(const std::string& data, const std::function<std::string()>& csv) const;
  /// The same with a trajectory for the file.
  void Write(const std::string& data, const io::FileTrajectory& trajectory, const Arm& arm) const;

 private:
  bool json_ = false;
  bool full_ = false;
  std::string csv_;
  TrajectoryOutput trajectory_;
};

/// What every command takes that works with the arm.
struct CommonOptions {
  std::shared_ptr<ArmOption> arm;
  Units units;
  Output output;

  /// @param shared_arm the tool's
  void AddTo(CLI::App& command, const std::shared_ptr<ArmOption>& shared_arm, bool trajectory);
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_OUTPUT_H_
