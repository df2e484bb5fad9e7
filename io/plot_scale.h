#ifndef QAL_IO_PLOT_SCALE_H_
#define QAL_IO_PLOT_SCALE_H_

#include <string>
#include <vector>

namespace qal::io {

/// Numbers from `low` to `high` on a length, which may go backwards.
struct PlotScale {
  double low, high;
  double from, to;  ///< where these are [px]

  double At(double value) const { return from + (value - low) / (high - low) * (to - from); }
};

struct PlotTick {
  double value;
  std::string text;
};

/// Round numbers within a range, a step of 1, 2 or 5 times a power of ten apart.
/// @param low  below `high`
/// @param most how many there may be, 2 or more
std::vector<PlotTick> TicksOf(double low, double high, int most);

struct PlotPoint {
  double x, y;  ///< [px]
};

/// A curve with as many points as the eye can tell: of each column of a pixel the first, the
/// lowest, the highest and the last, and of these those that a straight line between others
/// doesn't draw to a twentieth of a pixel.
/// @param points from left to right
std::vector<PlotPoint> Thinned(const std::vector<PlotPoint>& points);

}  // namespace qal::io

#endif  // QAL_IO_PLOT_SCALE_H_
