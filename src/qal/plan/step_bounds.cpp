#include "step_bounds.h"

namespace qal {

Bounds::Bounds(const StepLimits& step, const Region& after) {
  const double square_by_a = 2 * step.h * step.place;
  const double square_by_d = 2 * step.h * step.halfway;
  // At half the time: sign * jerk <= at_zero - slope * square.
  for (size_t i = 0; i < step.rates; ++i) {
    const double by_d = step.first[i] + step.third[i] * square_by_d + step.second[i] / 2;
    for (const double sign : {1.0, -1.0}) {
      const double square = step.slope + sign * step.third[i];
      Add(sign * by_d + step.slope * square_by_d,
          {square, square_by_a * square + sign * step.second[i], step.at_zero});
    }
  }
  Add(-square_by_d, {-1, -square_by_a, -step.least_square});
  for (size_t i = 0; i < after.edges(); ++i) {
    const HalfPlane edge = after.Edge(i);
    Add(edge.square * 2 * step.h * step.after + edge.acceleration,
        {edge.square, edge.square * 2 * step.h + edge.acceleration, edge.bound});
  }
}

// Elimination of d (J. Fourier, T. Motzkin) as far as it is needed: where at a corner a lower bound
// lies above an upper one, the two are what to cut by. A corner that is right stays so.
void Bounds::CutImpossible(Region& region) const {
  constexpr double kRounding = 1e-9;
  constexpr int kMostCuts = 30;
  // At a limit of speed, with no acceleration, both are 0 but for the rounding of others; without
  // that corner no motion would stay at the limit.
  constexpr double kZero = 1e-12;
  double largest = 0;
  for (size_t i = 0; i < region.size(); ++i) {
    largest = std::max(largest, std::fabs(region[i].state.acceleration));
  }
  for (int cuts = 0; cuts < kMostCuts; ++cuts) {
    double worst = 0;
    size_t where = 0;
    for (size_t i = 0; i < region.size(); ++i) {
      Region::Corner& corner = region[i];
      if (!corner.known) {
        const double low = Low(corner.state);
        const double high = High(corner.state);
        corner.outside =
            low - high - kRounding * (std::fabs(low) + std::fabs(high)) - kZero * largest;
        corner.known = true;
      }
      if (!(corner.outside > worst)) continue;
      worst = corner.outside;
      where = i;
    }
    if (worst == 0) return;
    const PathState state = region[where].state;
    region.Cut(BothHold(above_, above_.IndexOfLeast(state), below_, below_.IndexOfLeast(state)));
  }
  // What is left may be impossible.
  region.KeepInside();
}

}  // namespace qal
