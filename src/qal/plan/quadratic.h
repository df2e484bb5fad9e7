#ifndef QAL_PLAN_QUADRATIC_H_
#define QAL_PLAN_QUADRATIC_H_

#include <algorithm>
#include <cmath>

namespace qal {

/// c0 + c1 t + c2 t^2.
struct Quadratic {
  double c0, c1, c2;
  double At(double t) const { return c0 + t * (c1 + t * c2); }
};

/// Times in rising order, at most `kMost`.
template <int kMost>
struct Times {
  int size = 0;
  double at[kMost];
  const double* begin() const { return at; }
  const double* end() const { return at + size; }
  void Add(double time) {
    at[size++] = time;
    for (int i = size - 1; i > 0 && at[i] < at[i - 1]; --i) std::swap(at[i], at[i - 1]);
  }
};

/// Adds the roots of q = level that lie between 0 and `end`, both left out.
template <int kMost>
void AddRoots(const Quadratic& q, double level, double end, Times<kMost>& times) {
  const double c0 = q.c0 - level;
  const double root = q.c1 * q.c1 - 4 * q.c2 * c0;
  if (!(root >= 0)) return;
  // The sum of two numbers of one sign: no digits cancel. Where it or c2 is 0, a root is no number
  // or infinite, and is left out.
  const double sum = -(q.c1 + std::copysign(std::sqrt(root), q.c1)) / 2;
  for (const double time : {sum / q.c2, c0 / sum}) {
    if (time > 0 && time < end) times.Add(time);
  }
}

}  // namespace qal

#endif  // QAL_PLAN_QUADRATIC_H_
