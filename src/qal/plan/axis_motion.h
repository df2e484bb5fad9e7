#ifndef QAL_PLAN_AXIS_MOTION_H_
#define QAL_PLAN_AXIS_MOTION_H_

#include <algorithm>

namespace qal {

/// What an axis may do at most, in its unit of length and in seconds; each above 0.
struct AxisLimits {
  double velocity;
  double acceleration;
  double jerk;
};

/// Where an axis is at a moment, in its own unit of length: rad for a joint, m along a line.
struct AxisState {
  double position = 0;
  double velocity = 0;
  double acceleration = 0;
};

/// A stretch of constant jerk: position + velocity t + acceleration t^2 / 2 + jerk t^3 / 6, with t
/// from where the stretch begins.
struct Cubic {
  double position;
  double velocity;
  double acceleration;
  double jerk;

  AxisState At(double t_s) const {
    const double turned = t_s * jerk;
    const double gained = t_s * (acceleration + turned / 2);
    return {position + t_s * (velocity + t_s * (acceleration / 2 + turned / 6)), velocity + gained,
            acceleration + turned};
  }
};

/// The motion of one axis: cubics, one after the other. Holds them itself, so that a motion is
/// planned without memory from the heap, and copies only those it has.
class AxisMotion {
 public:
  static constexpr int kMostPieces = 14;

  // What is beyond the last piece is neither set nor read.
  AxisMotion() {}  // NOLINT(modernize-use-equals-default): that one would set it
  AxisMotion(const AxisMotion& other) { *this = other; }
  AxisMotion& operator=(const AxisMotion& other) {
    if (this == &other) return *this;
    size_ = other.size_;
    std::copy(other.begin_s_, other.begin_s_ + size_, begin_s_);
    std::copy(other.cubic_, other.cubic_ + size_, cubic_);
    return *this;
  }
  ~AxisMotion() = default;

  int size() const { return size_; }
  /// When piece `i` begins; it ends where the next one begins, the last with the motion.
  double begin_s(int i) const { return begin_s_[i]; }
  const Cubic& cubic(int i) const { return cubic_[i]; }

  /// The state at `t_s`, by the first piece before it begins and by the last one after it.
  AxisState At(double t_s) const {
    // Counted, not searched: the compiler makes it free of branches.
    int i = 0;
    for (int k = 1; k < size_; ++k) i += begin_s_[k] <= t_s ? 1 : 0;
    return cubic_[i].At(t_s - begin_s_[i]);
  }

  void Add(double begin_s, const Cubic& cubic) {
    begin_s_[size_] = begin_s;
    cubic_[size_++] = cubic;
  }

 private:
  int size_ = 0;
  double begin_s_[kMostPieces];
  Cubic cubic_[kMostPieces];
};

}  // namespace qal

#endif  // QAL_PLAN_AXIS_MOTION_H_
