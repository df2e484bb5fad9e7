#ifndef QAL_SOLVER_CLOSED_FORM_SOLUTIONS_H_
#define QAL_SOLVER_CLOSED_FORM_SOLUTIONS_H_

#include <array>
#include <cstddef>

#include "body.h"

namespace qal::closed_form {

/// One way to bend elbow and wrist, for both shoulders.
struct Branch {
  Lanes angle[6];  ///< model angles
  Mask reached;    ///< not 0 where the target is within reach so
};

using Joints = std::array<double, 6>;

/// The difference of two angles, the short way round [rad].
inline double AngleDistance(double a, double b) {
  const double off = std::fabs(a - b);
  return off > kPi ? std::fabs(2 * kPi - off) : off;
}

/// Up to sixteen solutions, as many as six joints may have: joints [rad], each in (-pi, pi].
class Solutions {
 public:
  static constexpr size_t kMost = 16;

  /// Adds one solution, while there is room.
  void Add(const Joints& joints) {
    if (count_ < kMost) joints_[count_++] = joints;
  }

  /// Adds what is reached of four branches: those of the first shoulder, then of the second.
  void Add(const Body& body, const Branch (&branches)[4]) {
    Lanes joints[4][6];
    for (int k = 0; k < 4; ++k) {
      for (int j = 0; j < 6; ++j) {
        joints[k][j] = WrapAngle(body.direction[j] * (branches[k].angle[j] - body.zero[j]));
      }
    }
    for (int side = 0; side < 2; ++side) {
      for (int k = 0; k < 4; ++k) {
        if (branches[k].reached[side] == 0) continue;
        for (size_t j = 0; j < 6; ++j) joints_[count_][j] = joints[k][j][side];
        ++count_;
      }
    }
  }

  /// Adds one solution of these model angles, while there is room.
  void Add(const Body& body, const Joints& angles) {
    if (count_ == kMost) return;
    for (size_t j = 0; j < 6; ++j) {
      joints_[count_][j] = WrapAngle(body.direction[j] * (angles[j] - body.zero[j]) * kOne)[0];
    }
    ++count_;
  }

  /// Whether one of them is within `tolerance` [rad] of `joints`; of most the first joints tell.
  bool Has(const Joints& joints, double tolerance) const {
    for (const Joints& known : *this) {
      size_t j = 0;
      while (j < 6 && AngleDistance(known[j], joints[j]) <= tolerance) ++j;
      if (j == 6) return true;
    }
    return false;
  }

  size_t Count() const { return count_; }
  const Joints* begin() const { return joints_.data(); }
  const Joints* end() const { return joints_.data() + count_; }

 private:
  std::array<Joints, kMost> joints_;
  size_t count_ = 0;
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_SOLUTIONS_H_
