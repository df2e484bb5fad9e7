#ifndef QAL_IO_PLOT_FRAME_H_
#define QAL_IO_PLOT_FRAME_H_

#include <string>
#include <vector>

#include "plot_panels.h"
#include "plot_scale.h"

namespace qal::io {

/// What of a panel's values is in the picture: its curves and marks, and those limits that leave
/// the curves half of it.
PlotScale ScaleOf(const PlotPanel& panel, double bottom, double top);

/// Finds places for the texts of marks, such that they don't hide each other.
class MarkPlaces {
 public:
  MarkPlaces(double right, double top, double bottom) : right_(right), top_(top), bottom_(bottom) {}

  struct Label {
    PlotPoint at;        ///< of the text's baseline
    const char* anchor;  ///< "start" or "end"
    double left, width;  ///< about what the text covers
  };
  /// Beside the mark, on the side where there is room.
  Label Place(const PlotPoint& mark, const std::string& text);

 private:
  struct Box {
    double left, right, bottom;
  };
  double right_, top_, bottom_;
  std::vector<Box> taken_;
};

}  // namespace qal::io

#endif  // QAL_IO_PLOT_FRAME_H_
