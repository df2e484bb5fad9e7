#ifndef QAL_IO_PLOT_SVG_H_
#define QAL_IO_PLOT_SVG_H_

#include <string>
#include <vector>

#include "plot_panels.h"

namespace qal::io {

/// A picture of panels above each other over the same time.
struct Plot {
  std::string title;
  std::vector<std::string> lines;  ///< below the title
  double begin_s, end_s;
  std::vector<double> time_s;  ///< of the panels' values
  std::vector<PlotPanel> panels;
  int width_px;
};

// What a plot's width may be [px].
constexpr int kNarrowestPlot = 360;
constexpr int kWidestPlot = 4000;

/// The picture in SVG: the same bytes for the same plot. Curves have as many points as can be seen,
/// whatever the number of samples. A limit is drawn where its panel shows it without the curves
/// becoming small, and is named in any case.
std::string PlotSvg(const Plot& plot);

}  // namespace qal::io

#endif  // QAL_IO_PLOT_SVG_H_
