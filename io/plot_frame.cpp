#include "plot_frame.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qal::io {

PlotScale ScaleOf(const PlotPanel& panel, double bottom, double top) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  const auto include = [&](double value) {
    if (!std::isfinite(value)) return;
    low = std::min(low, value);
    high = std::max(high, value);
  };
  for (const PlotCurve& curve : panel.curves) {
    std::for_each(curve.values.begin(), curve.values.end(), include);
  }
  for (const PlotMark& mark : panel.marks) include(mark.value);
  if (panel.from_zero || !(low <= high)) include(0);
  const double span = high - low;
  // Each limit by itself, so that one that is far away doesn't take the place of a near one.
  const double lowest = low;
  const double highest = high;
  for (const PlotLimit& limit : panel.limits) {
    const double beyond = std::max(limit.value - highest, lowest - limit.value);
    if (beyond <= span / 2) include(limit.value);
  }
  // Of a curve that stays where it is, a little on both sides, more than its rounding.
  const double size = std::max(std::fabs(low), std::fabs(high));
  const double least = std::max(1e-6 * size, 1e-9);
  const double margin = high - low > least ? 0.06 * (high - low) : std::max(0.05 * size, 1e-3);
  return {low - margin, high + margin, bottom, top};
}

MarkPlaces::Label MarkPlaces::Place(const PlotPoint& mark, const std::string& text) {
  constexpr double kCharacter = 6.4;  // [px], about
  constexpr double kHeight = 12;      // [px]
  constexpr double kBeside = 8;       // [px]
  const double width = kCharacter * static_cast<double>(text.size());
  const bool fits_right = mark.x + kBeside + width <= right_;
  const double begin = fits_right ? mark.x + kBeside : mark.x - kBeside - width;
  const auto taken = [&](double bottom) {
    return std::any_of(taken_.begin(), taken_.end(), [&](const Box& box) {
      return begin < box.right && begin + width > box.left &&
             std::fabs(bottom - box.bottom) < kHeight;
    });
  };
  // As near to the mark as there is room.
  const double first = std::clamp(mark.y - 6, top_ + kHeight, bottom_ - 3);
  double bottom = first;
  for (double off = 0; off < bottom_ - top_ && taken(bottom); off += kHeight) {
    const double below = first + off;
    bottom = below < bottom_ && !taken(below) ? below : std::max(first - off, top_ + kHeight);
  }
  taken_.push_back({begin, begin + width, bottom});
  return {{fits_right ? begin : begin + width, bottom}, fits_right ? "start" : "end", begin, width};
}

}  // namespace qal::io
