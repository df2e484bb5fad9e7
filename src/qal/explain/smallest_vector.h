#ifndef QAL_EXPLAIN_SMALLEST_VECTOR_H_
#define QAL_EXPLAIN_SMALLEST_VECTOR_H_

#include <functional>
#include <optional>
#include <vector>

#include "../model/frames.h"

// Internal: the smallest change of three numbers with which something works.
namespace qal {

struct VectorSearch {
  double shortest;                  ///< what to begin with, above 0
  double longest;                   ///< beyond it nothing is tried
  double widest;                    ///< what works may be no thicker: rounds are no farther apart
  double per_unit;                  ///< the answer's elements are whole numbers divided by this
  std::vector<Vector3> hints = {};  ///< directions to try beside those all around
};

/// A shortest vector for which `works` holds, found by trying: all around, each round four times
/// as far as the one before or `widest` farther, then nearer by bisection and by turning the
/// direction. Where what works isn't all on one side of a surface, a shorter one may be missed.
/// @return a vector that was tried with exactly these numbers; nothing where none was found
std::optional<Vector3> SmallestVector(const VectorSearch& search,
                                      const std::function<bool(const Vector3&)>& works);

}  // namespace qal

#endif  // QAL_EXPLAIN_SMALLEST_VECTOR_H_
