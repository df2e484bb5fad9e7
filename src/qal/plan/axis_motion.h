#ifndef QAL_PLAN_AXIS_MOTION_H_
#define QAL_PLAN_AXIS_MOTION_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

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
    return {position + t_s * (velocity + t_s * (acceleration / 2 + turned * (1.0 / 6))),
            velocity + gained, acceleration + turned};
  }
};

/// The motion of one axis: cubics, one after the other. Holds them itself, so that a motion is
/// planned without memory from the heap, and copies only those it has.
class AxisMotion {
 public:
  static constexpr int kMostPieces = 14;

  // What isn't set isn't read, and setting it takes longer than planning does.
  // cppcheck-suppress uninitMemberVar
  AxisMotion() = default;
  AxisMotion(const AxisMotion& other) noexcept { *this = other; }
  AxisMotion& operator=(const AxisMotion& other) noexcept {
    if (this == &other) return *this;
    size_ = other.size_;
    if (size_ > 0) std::copy(other.begin_s_, other.begin_s_ + kMostPieces, begin_s_);
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
    // How many begin by then: counted two at a time and always to the end, which is free of
    // branches. A comparison that holds is -1.
    Flags later = {1, 0};
    for (int k = 0; k < kMostPieces; k += 2) {
      Lanes begins;
      std::memcpy(&begins, begin_s_ + k, sizeof(begins));
      later += begins <= Lanes{t_s, t_s};
    }
    const int64_t i = std::max<int64_t>(0, -(later[0] + later[1]));
    return cubic_[i].At(t_s - begin_s_[i]);
  }

  void Add(double begin_s, const Cubic& cubic) {
    if (size_ == 0) std::fill(begin_s_, begin_s_ + kMostPieces, kNever);
    begin_s_[size_] = begin_s;
    cubic_[size_++] = cubic;
  }

 private:
  using Lanes [[gnu::vector_size(16)]] = double;
  using Flags [[gnu::vector_size(16)]] = int64_t;
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  int size_ = 0;
  double begin_s_[kMostPieces];  // beyond the last: never
  Cubic cubic_[kMostPieces];
};

}  // namespace qal

#endif  // QAL_PLAN_AXIS_MOTION_H_
