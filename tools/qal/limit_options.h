#ifndef QAL_TOOLS_QAL_LIMIT_OPTIONS_H_
#define QAL_TOOLS_QAL_LIMIT_OPTIONS_H_

#include <CLI/App.hpp>
#include <array>

#include "../../io/judgement.h"
#include "number_option.h"

namespace qal::tools {

/// The options that ask for limits, and --strict.
class LimitOptions {
 public:
  void AddTo(CLI::App& command);

  /// The arm's limits, and what the options put in their place.
  /// @throw UsageError when an option has another number of values, or one below 0
  io::Limits Read(const Arm& arm) const;
  /// Whether an assumed limit is like any other.
  bool strict() const { return strict_; }

 private:
  std::array<NumberOption, io::kMetricCount> limits_;
  bool strict_ = false;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_LIMIT_OPTIONS_H_
