#include "region.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

// Twice the area of a triangle, positive when it is passed counter-clockwise.
double Area(const PathState& a, const PathState& b, const PathState& c) {
  return (b.square - a.square) * (c.acceleration - a.acceleration) -
         (b.acceleration - a.acceleration) * (c.square - a.square);
}

// Whether two corners are one but for rounding: an edge between them would lead anywhere.
// @param largest of the region's, as one of them may be 0
bool Same(const PathState& a, const PathState& b, const PathState& largest) {
  constexpr double kRounding = 1e-12;
  return std::fabs(a.square - b.square) <= kRounding * largest.square &&
         std::fabs(a.acceleration - b.acceleration) <= kRounding * largest.acceleration;
}

}  // namespace

Region::Region(const PathState& low, const PathState& high) : size_(4) {
  corners_[0] = {low, false, 0};
  corners_[1] = {{high.square, low.acceleration}, false, 0};
  corners_[2] = {high, false, 0};
  corners_[3] = {{low.square, high.acceleration}, false, 0};
}

Region Region::Between(const PathState& a, const PathState& b) {
  Region line;
  line.corners_[0] = {a, false, 0};
  line.corners_[1] = {b, false, 0};
  line.size_ = 2;
  return line;
}

HalfPlane Region::Edge(size_t i) const {
  const size_t corner = i % size_;
  const PathState& a = corners_[corner].state;
  const PathState& b = corners_[corner + 1 == size_ ? 0 : corner + 1].state;
  const double along_square = b.square - a.square;
  const double along_acceleration = b.acceleration - a.acceleration;
  if (i >= size_) {
    return {along_square, along_acceleration,
            along_square * b.square + along_acceleration * b.acceleration};
  }
  return {along_acceleration, -along_square,
          along_acceleration * a.square - along_square * a.acceleration};
}

// I. E. Sutherland and G. W. Hodgman, "Reentrant polygon clipping", CACM 17 (1974).
void Region::Cut(const HalfPlane& plane) {
  double excess[kMostCorners] = {};
  bool all = true;
  PathState largest = {0, 0};
  for (size_t i = 0; i < size_; ++i) {
    const PathState& corner = corners_[i].state;
    excess[i] = plane.Excess(corner);
    all = all && excess[i] <= 0;
    largest.square = std::max(largest.square, std::fabs(corner.square));
    largest.acceleration = std::max(largest.acceleration, std::fabs(corner.acceleration));
  }
  if (all) return;
  std::array<Corner, kMostCorners + 2> kept;
  size_t count = 0;
  const auto keep = [&](const Corner& corner) {
    if (count == 0 || !Same(corner.state, kept[count - 1].state, largest)) kept[count++] = corner;
  };
  for (size_t i = 0; i < size_; ++i) {
    const size_t next = i + 1 == size_ ? 0 : i + 1;
    if (excess[i] <= 0) keep(corners_[i]);
    if ((excess[i] < 0 && excess[next] > 0) || (excess[i] > 0 && excess[next] < 0)) {
      const double part = excess[i] / (excess[i] - excess[next]);
      const PathState& a = corners_[i].state;
      const PathState& b = corners_[next].state;
      keep({{a.square + part * (b.square - a.square),
             a.acceleration + part * (b.acceleration - a.acceleration)},
            false,
            0});
    }
  }
  if (count > 1 && Same(kept[0].state, kept[count - 1].state, largest)) --count;
  size_ = std::min(count, kMostCorners);
  std::copy_n(kept.begin(), size_, corners_.begin());
}

void Region::KeepInside() {
  auto* const end = corners_.begin() + static_cast<std::ptrdiff_t>(size_);
  size_ = static_cast<size_t>(
      std::remove_if(corners_.begin(), end,
                     [](const Corner& c) { return !c.known || c.outside > 0; }) -
      corners_.begin());
}

// The corner of the highest speed stays: motions at a limit of speed pass through it.
void Region::Simplify() {
  while (size_ > kFewCorners) {
    size_t least = 0;
    size_t fastest = 0;
    double least_area = INFINITY;
    for (size_t i = 1; i < size_; ++i) {
      if (corners_[i].state.square > corners_[fastest].state.square) fastest = i;
    }
    for (size_t i = 0; i < size_; ++i) {
      if (i == fastest) continue;
      const double area = Area(corners_[i == 0 ? size_ - 1 : i - 1].state, corners_[i].state,
                               corners_[i + 1 == size_ ? 0 : i + 1].state);
      if (area < least_area) {
        least_area = area;
        least = i;
      }
    }
    std::copy(corners_.begin() + static_cast<std::ptrdiff_t>(least) + 1,
              corners_.begin() + static_cast<std::ptrdiff_t>(size_),
              corners_.begin() + static_cast<std::ptrdiff_t>(least));
    --size_;
  }
}

}  // namespace qal
