#ifndef QAL_SOLVER_CLOSED_FORM_SOLUTIONS_H_
#define QAL_SOLVER_CLOSED_FORM_SOLUTIONS_H_

#include <array>
#include <cstddef>

#include "body.h"

namespace qal::closed_form {

/// In each lane a way to reach a target.
template <class L>
struct BranchAngles {
  L angle[6];         ///< model angles
  MaskOf<L> reached;  ///< not 0 where the target is within reach so
};

/// Six joints [rad], each in (-pi, pi], of model angles.
template <class L>
QAL_INLINED void JointsOf(const Body& body, const L (&angle)[6], L (&joints)[6]) {
  for (int j = 0; j < 6; ++j) {
    joints[j] = WrapAngle<L>(body.direction[j] * (angle[j] - body.zero[j]));
  }
}

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

  /// Makes them what is reached of eight ways: those of the first shoulder, then of the second; of
  /// these the first choice's (elbow, or wrist), then the second's.
  /// @param branches the lanes have in turn the shoulders, and where there are four the choices;
  ///                 where there are two, the first branches are the first choice's
  template <class L, int count>
  QAL_INLINED void Take(const Body& body, const BranchAngles<L> (&branches)[count]) {
    constexpr int kLanes = kLaneCount<L>;
    static_assert(count * kLanes == 8);
    // Where each way goes: those that aren't reached all to the last place, where nobody looks.
    double* to[count][kLanes];
    count_ = 0;
    for (int way = 0; way < 8; ++way) {
      const int side = way / 4;
      const int choice = way / 2 % 2;
      const int lane = kLanes == 4 ? side + 2 * choice : side;
      const int k = kLanes == 4 ? way % 2 : way % 4;
      const bool reached = branches[k].reached[lane] != 0;
      to[k][lane] = joints_[reached ? count_ : kMost - 1].data();
      count_ += reached ? 1 : 0;
    }
    for (int k = 0; k < count; ++k) {
      L joints[6];
      JointsOf(body, branches[k].angle, joints);
      StoreByLane(joints, to[k]);
    }
  }

  /// Adds one solution of these model angles, while there is room.
  void Add(const Body& body, const Joints& angles) {
    if (count_ == kMost) return;
    for (size_t j = 0; j < 6; ++j) {
      joints_[count_][j] =
          WrapAngle<Lanes>(body.direction[j] * (angles[j] - body.zero[j]) * kOne)[0];
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
