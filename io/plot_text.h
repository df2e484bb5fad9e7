#ifndef QAL_IO_PLOT_TEXT_H_
#define QAL_IO_PLOT_TEXT_H_

#include <string>

#include "plot_panels.h"

namespace qal::io {

/// The limits of a panel in words: "limits +-49.59 (1-3), +-59.41 (4-6) assumed"; empty: none.
std::string LimitsText(const PlotPanel& panel);

}  // namespace qal::io

#endif  // QAL_IO_PLOT_TEXT_H_
