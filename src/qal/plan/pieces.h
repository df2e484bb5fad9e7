#ifndef QAL_PLAN_PIECES_H_
#define QAL_PLAN_PIECES_H_

#include <algorithm>
#include <cstddef>
#include <vector>

// Internal: functions in pieces.
namespace qal {

/// The piece that holds `at`: the last that begins there or before, by its `begin`; the first where
/// none does. Quick where it is `near` or the one after.
template <class Piece>
size_t PieceHolding(const std::vector<Piece>& pieces, double at, size_t near) {
  const auto holds = [&](size_t i) {
    return at >= pieces[i].begin && (i + 1 == pieces.size() || at < pieces[i + 1].begin);
  };
  if (near < pieces.size() && holds(near)) return near;
  if (near + 1 < pieces.size() && holds(near + 1)) return near + 1;
  const auto after = std::upper_bound(pieces.begin(), pieces.end(), at,
                                      [](double x, const Piece& piece) { return x < piece.begin; });
  return after == pieces.begin() ? 0 : static_cast<size_t>(after - pieces.begin()) - 1;
}

}  // namespace qal

#endif  // QAL_PLAN_PIECES_H_
