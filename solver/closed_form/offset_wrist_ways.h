#ifndef QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_WAYS_H_
#define QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_WAYS_H_

#include <utility>

#include "offset_wrist_arm.h"

namespace qal::closed_form {

/// A function's value and slope.
struct Jet {
  double value, slope;
};

/// A root of `function` between `a` and `b`, where it has values of different sign: Newton's steps
/// as long as they stay between. The last step is not longer than `tolerance`.
template <class Function>
double RootBetween(const Function& function, double a, double value_a, double b, double value_b,
                   double tolerance) {
  constexpr int kMostSteps = 60;  // halvings that leave nothing
  double root = a - value_a * (b - a) / (value_b - value_a);
  for (int i = 0; i < kMostSteps; ++i) {
    const Jet jet = function(root);
    ((jet.value < 0) == (value_a < 0) ? a : b) = root;
    double next = root - jet.value / jet.slope;
    if (!(next >= a && next <= b)) next = (a + b) / 2;
    const double step = std::fabs(next - root);
    root = next;
    if (step <= tolerance) break;
  }
  return root;
}

/// The cubic with given values at 0 and 1, and slopes there.
struct Cubic {
  double value, slope, second, third;
  Cubic(double value_a, double slope_a, double value_b, double slope_b)
      : value(value_a),
        slope(slope_a),
        second(3 * (value_b - value_a) - 2 * slope_a - slope_b),
        third(slope_a + slope_b - 2 * (value_b - value_a)) {}
  double operator()(double t) const { return value + t * (slope + t * (second + t * third)); }
  /// Where between 0 and 1 its slope is zero, in order.
  int Extrema(double (&places)[2]) const {
    const double discriminant = second * second - 3 * third * slope;
    if (!(discriminant > 0)) return 0;
    // In the form that has no difference of nearly equal numbers.
    const double sum =
        second < 0 ? std::sqrt(discriminant) - second : -std::sqrt(discriminant) - second;
    double first = slope / sum;
    double last = sum / (3 * third);
    if (first > last) std::swap(first, last);
    int count = 0;
    for (const double place : {first, last}) {
      if (place > 0 && place < 1) places[count++] = place;
    }
    return count;
  }
};

/// A closed way along which angle 6 goes: round the circle, with shoulder front or rear; or, where
/// `lateral` keeps the wrist's centre from going round, to and fro between two angles, with
/// shoulder front one way and rear the other. Then it goes by a cosine, which makes the way smooth
/// at its ends, where shoulder front and rear are one.
struct Way {
  bool round;
  double middle, width;  ///< angle 6 is middle - width * cos(parameter) [rad], unless it goes round
};

/// The ways for a target.
class Ways {
 public:
  Ways(const WristCircle& circle, double lateral) : circle_(circle), lateral_(lateral) {
    const Vector<double>& m = circle.middle;
    const double middle = std::sqrt(m[0] * m[0] + m[1] * m[1]);
    const double radius = circle.Radius();
    if (lateral == 0 || middle - radius > std::fabs(lateral)) {
      ways_[count_++] = {true, 0, 0};
    } else {
      Split();
    }
  }
  const Way* begin() const { return ways_; }
  const Way* end() const { return ways_ + count_; }

 private:
  static constexpr int kMost = 8;

  // The square of how far the arm has to reach forward.
  Jet Forward2(double angle6) const {
    const SinCos<Lanes> lanes = SinCosOf(angle6 * kOne);
    const SinCos<double> angle = {lanes.sine[0], lanes.cosine[0]};
    const Vector<double> c = circle_.Centre(angle);
    const Vector<double> v = circle_.Velocity(angle);
    return {c[0] * c[0] + c[1] * c[1] - lateral_ * lateral_, 2 * (c[0] * v[0] + c[1] * v[1])};
  }

  void AddRoot(double a, double value_a, double b, double value_b) {
    if (roots_ == kMost) return;
    const auto forward2 = [this](double angle6) { return Forward2(angle6); };
    root_[roots_++] = RootBetween(forward2, a, value_a, b, value_b, 1e-15);
  }

  // Finds the roots, and the places where the function only touches zero from below.
  void FindRoots(const Jet& first) {
    // Angle 6 and twice of it are all the function depends on: the cubics are within 1e-5 of it.
    constexpr int kSteps = 48;
    constexpr double kStep = 2 * kPi / kSteps;
    const Vector<double>& m = circle_.middle;
    const double rounding = 1e-13 * (Dot(m, m) + circle_.Radius() * circle_.Radius());
    Jet from = first;
    for (int k = 0; k < kSteps; ++k) {
      const double a = k * kStep;
      const double b = a + kStep;
      const Jet to = k + 1 == kSteps ? first : Forward2(b);
      if ((from.value < 0) != (to.value < 0)) {
        AddRoot(a, from.value, b, to.value);
      } else if (from.value * from.slope < 0 && to.value * to.slope > 0) {
        const Cubic cubic(from.value, kStep * from.slope, to.value, kStep * to.slope);
        double extrema[2];
        const double at = a + kStep * (cubic.Extrema(extrema) > 0 ? extrema[0] : 0.5);
        const double value = Forward2(at).value;
        if ((value < 0) != (from.value < 0)) {
          AddRoot(a, from.value, at, value);
          AddRoot(at, value, b, to.value);
        } else if (value < 0 && value > -rounding && count_ < kMost / 2) {
          ways_[count_++] = {false, at, 0};
        }
      }
      from = to;
    }
  }

  void Split() {
    const Jet first = Forward2(0);
    FindRoots(first);
    if (roots_ == 0 && first.value >= 0) ways_[count_++] = {true, 0, 0};
    // From where the function rises through zero to where it falls.
    for (int i = first.value < 0 ? 0 : 1; i < roots_ && count_ < kMost; i += 2) {
      const double a = root_[i];
      const double b = i + 1 < roots_ ? root_[i + 1] : root_[0] + 2 * kPi;
      ways_[count_++] = {false, (a + b) / 2, (b - a) / 2};
    }
  }

  const WristCircle& circle_;
  double lateral_;
  Way ways_[kMost];
  int count_ = 0;
  double root_[kMost];
  int roots_ = 0;
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_WAYS_H_
