#ifndef QAL_IO_PLOT_PANELS_H_
#define QAL_IO_PLOT_PANELS_H_

#include <string>
#include <vector>

#include "error_text.h"
#include "findings.h"
#include "motion_series.h"

namespace qal::io {

struct PlotCurve {
  int joint;  ///< from 0; -1: of the tool or of all joints
  std::vector<double> values;
};

/// A limit of the joints that have it.
struct PlotLimit {
  double value;
  std::vector<int> joints;  ///< from 0; empty: of the whole panel
  bool assumed = false;
};

/// Where a limit is exceeded.
struct PlotMark {
  double time_s;
  double value;
  std::string text;
  bool violation;  ///< or a note: of a limit that is but assumed
};

/// Curves over time that share their axes, in the units that are to be shown.
struct PlotPanel {
  std::string title;
  std::string unit;
  bool of_intervals = false;  ///< a value holds from the sample before up to its own
  bool from_zero = false;     ///< zero is shown, however far the curves are from it
  std::vector<PlotCurve> curves = {};
  std::vector<PlotLimit> limits = {};
  std::vector<PlotMark> marks = {};
};

/// What the panels are called: angle, velocity, acceleration, jerk, motor, tool, range,
/// singularity.
extern const std::vector<std::string> kPanelNames;

/// The panels of a motion that are called so, in this order. Violations and notes of the findings
/// are marked where one is about a panel's quantity, at the value that was measured.
/// @param names some of kPanelNames
std::vector<PlotPanel> PanelsOf(const Findings& findings, const MotionSeries& series,
                                const std::vector<std::string>& names, const TextUnits& units);

}  // namespace qal::io

#endif  // QAL_IO_PLOT_PANELS_H_
