#ifndef QAL_TOOLS_QAL_OUTPUT_H_
#define QAL_TOOLS_QAL_OUTPUT_H_

#include <CLI/App.hpp>
#include <functional>
#include <memory>
#include <string>

#include "../../io/trajectory.h"
#include "../common/arm_option.h"
#include "tables.h"
#include "units.h"

namespace qal::tools {

/// Where a command's answer goes.
class Output {
 public:
  /// Adds --json, --csv and, where the CSV file is of a trajectory, --full.
  void AddTo(CLI::App& command, bool trajectory);

  bool json() const { return json_; }
  bool full() const { return full_; }
  /// Writes the CSV file if one is wanted, then `data`, the table or the JSON text, to standard
  /// output. The file comes first, so that a reader which closes the pipe early doesn't lose it.
  /// @param csv makes the file's text
  void Write(const std::string& data, const std::function<std::string()>& csv) const;

 private:
  bool json_ = false;
  bool full_ = false;
  std::string csv_;
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
