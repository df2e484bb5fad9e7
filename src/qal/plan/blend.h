#ifndef QAL_PLAN_BLEND_H_
#define QAL_PLAN_BLEND_H_

#include <array>

// Internal: how a rounded corner leaves one way and enters the next.
namespace qal {

/// How much of a way is left at u from 0 to 1, with three derivatives: from 1, with the slope
/// -`slope`, to 0; the other derivatives at the ends are 0. So what begins along the way goes on
/// smoothly, and what is blended in does not change it there.
class Blend {
 public:
  explicit Blend(double slope)
      : coefficient_{
            1, -slope, 0, 0, 20 * slope - 35, 84 - 45 * slope, 36 * slope - 70, 20 - 10 * slope} {}

  /// Value and derivatives with respect to u.
  std::array<double, 4> At(double u) const {
    std::array<double, 4> d = {coefficient_[7], 0, 0, 0};
    for (int power = 6; power >= 0; --power) {
      d[3] = d[3] * u + d[2];
      d[2] = d[2] * u + d[1];
      d[1] = d[1] * u + d[0];
      d[0] = d[0] * u + coefficient_[power];
    }
    return {d[0], d[1], 2 * d[2], 6 * d[3]};
  }

 private:
  double coefficient_[8];
};

/// Derivatives of f(g(u)) by those of f at g(u), and of g: the first three.
struct Chain {
  double first;
  double second;
  double third;
  template <class V>
  V First(const V& f1) const {
    return first * f1;
  }
  template <class V>
  V Second(const V& f1, const V& f2) const {
    return (first * first) * f2 + second * f1;
  }
  template <class V>
  V Third(const V& f1, const V& f2, const V& f3) const {
    return (first * first * first) * f3 + (3 * first * second) * f2 + third * f1;
  }
};

}  // namespace qal

#endif  // QAL_PLAN_BLEND_H_
