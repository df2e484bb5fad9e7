#ifndef QAL_PLAN_STEP_PATH_H_
#define QAL_PLAN_STEP_PATH_H_

#include <vector>

#include "corner.h"
#include "limited_path.h"
#include "wrist_pass.h"

// Internal: a path, and which of a program's steps it is made of.
namespace qal {

/// Of which step a section of a path is, and where on it, from 0 to 1.
struct StepStretch {
  size_t step;
  double begin_along;
  double end_along;
};

/// A rounded corner on a path.
struct PlacedCorner {
  size_t step;  ///< that ends there
  double begin;
  double end;
  ZoneDistances farthest;
  double deviation_m;
};

/// A path, and what it is made of.
struct StepPath {
  LimitedPath path;
  std::vector<StepStretch> stretches;  ///< of the path's sections
  std::vector<PlacedCorner> corners;
  std::vector<WristPass> passes;

  /// Where on its step's own way a place of a section is, from 0 to 1.
  double AlongAt(double s, size_t section) const;

  void CutAfter(double s);
  void CutBefore(double s);
};

}  // namespace qal

#endif  // QAL_PLAN_STEP_PATH_H_
