#ifndef QAL_TOOLS_QAL_REACH_STUDY_OPTIONS_H_
#define QAL_TOOLS_QAL_REACH_STUDY_OPTIONS_H_

#include <qal/study/reach.h>

#include <CLI/App.hpp>
#include <string>

#include "number_option.h"
#include "reach_placement.h"
#include "units.h"

namespace qal::tools {

/// The options that say what a reach study studies.
struct ReachStudyOptions {
  NumberOption box, step, directions, spins, tilt, toward, line, along;
  std::string poses;  ///< file of them

  void AddTo(CLI::App& reach);

  /// @param read out: what is known of the poses of a file, if there are any
  /// @throw UsageError when options are missing or don't go together; the study itself isn't judged
  ReachStudy Read(const Units& units, PlacementPoses& read) const;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_REACH_STUDY_OPTIONS_H_
