#include "plot_scale.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace qal::io {

namespace {

// A number with the decimals of its step; a minus as it is printed.
std::string TickText(double value, double step) {
  constexpr double kLargePlain = 1e6;
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  constexpr int kMostDecimals = 6;
  const bool plain = std::fabs(value) < kLargePlain && decimals <= kMostDecimals;
  const double size = std::fabs(value);
  const std::string text =
      plain ? fmt::format("{:.{}f}", size, decimals) : fmt::format("{:.6g}", size);
  return value < 0 ? "\u2212" + text : text;
}

// Of points in one column: the first, the lowest, the highest and the last, in their order.
void AddColumn(const std::vector<PlotPoint>& points, size_t begin, size_t end,
               std::vector<PlotPoint>& thinned) {
  const auto [lowest, highest] =
      std::minmax_element(points.begin() + static_cast<std::ptrdiff_t>(begin),
                          points.begin() + static_cast<std::ptrdiff_t>(end),
                          [](const PlotPoint& a, const PlotPoint& b) { return a.y < b.y; });
  std::vector<size_t> kept = {begin, static_cast<size_t>(lowest - points.begin()),
                              static_cast<size_t>(highest - points.begin()), end - 1};
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  for (const size_t i : kept) thinned.push_back(points[i]);
}

double DistanceFrom(const PlotPoint& point, const PlotPoint& a, const PlotPoint& b) {
  const double x = b.x - a.x;
  const double y = b.y - a.y;
  const double square = x * x + y * y;
  const double along =
      square > 0 ? std::clamp(((point.x - a.x) * x + (point.y - a.y) * y) / square, 0.0, 1.0) : 0;
  return std::hypot(point.x - a.x - along * x, point.y - a.y - along * y);
}

// D. H. Douglas and T. K. Peucker, "Algorithms for the reduction of the number of points required
// to represent a digitized line or its caricature", Cartographica 10 (1973), 112-122.
std::vector<PlotPoint> Simplified(const std::vector<PlotPoint>& points) {
  constexpr double kTolerancePx = 0.05;
  if (points.size() < 3) return points;
  std::vector<bool> kept(points.size(), false);
  kept.front() = kept.back() = true;
  std::vector<std::pair<size_t, size_t>> open = {{0, points.size() - 1}};
  while (!open.empty()) {
    const auto [first, last] = open.back();
    open.pop_back();
    size_t farthest = first;
    double distance = kTolerancePx;
    for (size_t i = first + 1; i < last; ++i) {
      const double here = DistanceFrom(points[i], points[first], points[last]);
      if (here > distance) std::tie(distance, farthest) = std::pair(here, i);
    }
    if (farthest == first) continue;
    kept[farthest] = true;
    open.emplace_back(first, farthest);
    open.emplace_back(farthest, last);
  }
  std::vector<PlotPoint> simple;
  for (size_t i = 0; i < points.size(); ++i) {
    if (kept[i]) simple.push_back(points[i]);
  }
  return simple;
}

}  // namespace

std::vector<PlotTick> TicksOf(double low, double high, int most) {
  const double power = std::pow(10, std::floor(std::log10((high - low) / most)));
  double step = power;
  for (const int factor : {1, 2, 5, 10, 20}) {
    step = factor * power;
    if (std::floor(high / step) - std::ceil(low / step) + 1 <= most) break;
  }
  std::vector<PlotTick> ticks;
  for (double i = std::ceil(low / step); i * step <= high; ++i) {
    ticks.push_back({i * step, TickText(i * step, step)});
  }
  return ticks;
}

std::vector<PlotPoint> Thinned(const std::vector<PlotPoint>& points) {
  std::vector<PlotPoint> columns;
  for (size_t begin = 0; begin < points.size();) {
    size_t end = begin + 1;
    while (end < points.size() && std::floor(points[end].x) == std::floor(points[begin].x)) ++end;
    AddColumn(points, begin, end, columns);
    begin = end;
  }
  return Simplified(columns);
}

}  // namespace qal::io
