#include "smallest_vector.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

Vector3 Unit(const Vector3& v) { return (1 / Length(v)) * v; }

// The 26 directions to the faces, edges and corners of a cube, and the hints.
std::vector<Vector3> DirectionsOf(const VectorSearch& search) {
  std::vector<Vector3> directions;
  for (const Vector3& hint : search.hints) {
    if (Length(hint) > 0) directions.push_back(Unit(hint));
  }
  for (int i = 0; i < 27; ++i) {
    const int row = i / 3;
    const int layer = i / 9;
    const Vector3 v = {{i % 3 - 1.0, row % 3 - 1.0, layer - 1.0}};
    if (Length(v) > 0) directions.push_back(Unit(v));
  }
  return directions;
}

// A direction with the length at which it begins to work.
struct Reached {
  Vector3 direction;
  double length;
};

class Searcher {
 public:
  Searcher(const VectorSearch& search, const std::function<bool(const Vector3&)>& works)
      : search_(search), works_(works) {}

  // The best of the first round in which one works.
  std::optional<Reached> Around() const {
    const std::vector<Vector3> directions = DirectionsOf(search_);
    constexpr double kFarther = 4;
    double before = 0;
    while (before < search_.longest) {
      const double tried =
          before == 0 ? search_.shortest
                      : std::min({kFarther * before, before + search_.widest, search_.longest});
      std::optional<Reached> best;
      for (const Vector3& direction : directions) {
        if (!works_((best ? best->length : tried) * direction)) continue;
        best = {direction, Nearer(direction, before, best ? best->length : tried)};
      }
      if (best) return best;
      before = tried;
    }
    return std::nullopt;
  }

  // By other directions about this one.
  Reached Turned(Reached best) const {
    // Less is not worth a turn.
    constexpr double kGain = 0.98;
    for (const double turn : {0.5, 0.25, 0.125, 0.0625}) {
      const Vector3 aside = Aside(best.direction);
      const Vector3 across = Cross(best.direction, aside);
      for (const Vector3& way : {aside, across, -1.0 * aside, -1.0 * across}) {
        const Vector3 direction = std::cos(turn) * best.direction + std::sin(turn) * way;
        if (!works_(kGain * best.length * direction)) continue;
        best = {Unit(direction), Nearer(Unit(direction), best.length / 2, kGain * best.length)};
      }
    }
    return best;
  }

  // Rounded, and a little beyond the place where it begins to work.
  std::optional<Vector3> Rounded(const Reached& reached) const {
    for (const double beyond : {1.005, 1.02, 1.1, 1.3}) {
      const Vector3 vector = beyond * reached.length * reached.direction;
      for (const auto round : {Nearest, Away}) {
        const auto element = [&](int i) {
          return round(vector[i] * search_.per_unit) / search_.per_unit;
        };
        const Vector3 rounded = {{element(0), element(1), element(2)}};
        if (Length(rounded) > 0 && works_(rounded)) return rounded;
      }
    }
    return std::nullopt;
  }

 private:
  static double Nearest(double x) { return std::round(x); }
  // From 0, but for what is next to nothing.
  static double Away(double x) { return std::copysign(std::ceil(std::fabs(x) - 0.1), x); }

  // Where a direction begins to work, between a length at which it doesn't, or that is 0, and one
  // at which it does; to 1 % of the one.
  double Nearer(const Vector3& direction, double fails, double holds) const {
    while (holds - fails > std::max(0.01 * holds, 0.1 / search_.per_unit)) {
      const double middle = (fails + holds) / 2;
      (works_(middle * direction) ? holds : fails) = middle;
    }
    return holds;
  }

  static Vector3 Aside(const Vector3& direction) {
    const Vector3 x = {{1, 0, 0}};
    const Vector3 y = {{0, 1, 0}};
    return Unit(Cross(direction, std::fabs(direction[0]) < 0.7 ? x : y));
  }

  const VectorSearch& search_;
  const std::function<bool(const Vector3&)>& works_;
};

}  // namespace

std::optional<Vector3> SmallestVector(const VectorSearch& search,
                                      const std::function<bool(const Vector3&)>& works) {
  const Searcher searcher(search, works);
  const auto around = searcher.Around();
  if (!around) return std::nullopt;
  return searcher.Rounded(searcher.Turned(*around));
}

}  // namespace qal
