#ifndef QAL_TESTS_MKIK_FRAME_DIFFERENCE_H_
#define QAL_TESTS_MKIK_FRAME_DIFFERENCE_H_

#include <algorithm>
#include <cmath>

#include "../../src/qal/model/frames.h"

namespace qal {

/// In metres or as a matrix element.
inline double FrameDifference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = std::max(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = std::max(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

}  // namespace qal

#endif  // QAL_TESTS_MKIK_FRAME_DIFFERENCE_H_
