#ifndef QAL_PLAN_AXIS_MOTION_H_
#define QAL_PLAN_AXIS_MOTION_H_

/// @file
/// The motion of one axis: cubics, one after the other.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace qal {

/// What an axis may do at most, in its unit of length and in seconds; each above 0.
struct AxisLimits {
  double velocity;      ///< either way [unit/s]
  double acceleration;  ///< either way [unit/s^2]
  double jerk;          ///< either way [unit/s^3]
};

/// Where an axis is at a moment, in its own unit of length: rad for a joint, m along a line.
struct AxisState {
  double position = 0;      ///< [unit]
  double velocity = 0;      ///< [unit/s]
  double acceleration = 0;  ///< [unit/s^2]
};

/// A stretch of constant jerk: position + velocity t + acceleration t^2 / 2 + jerk t^3 / 6, with t
/// from where the stretch begins.
struct Cubic {
  double position;      ///< at t = 0 [unit]
  double velocity;      ///< at t = 0 [unit/s]
  double acceleration;  ///< at t = 0 [unit/s^2]
  double jerk;          ///< throughout [unit/s^3]

  /// The state `t_s` after the beginning.
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
  static constexpr int kMostPieces = 14;  ///< how many cubics there is room for

  /// A motion without pieces, to which `Add` gives them; before that it has no state.
  // What isn't set isn't read, and setting it takes longer than planning does.
  // cppcheck-suppress uninitMemberVar
  AxisMotion() = default;
  /// A copy of the pieces that there are.
  AxisMotion(const AxisMotion& other) noexcept { *this = other; }
  /// Takes the pieces that there are.
  AxisMotion& operator=(const AxisMotion& other) noexcept {
    if (this == &other) return *this;
    size_ = other.size_;
    if (size_ > 0) std::copy(other.begin_s_, other.begin_s_ + kMostPieces, begin_s_);
    std::copy(other.cubic_, other.cubic_ + size_, cubic_);
    return *this;
  }
  ~AxisMotion() = default;

  /// How many pieces it has.
  int size() const { return size_; }
  /// When piece `i` begins; it ends where the next one begins, the last with the motion.
  double begin_s(int i) const { return begin_s_[i]; }
  /// Piece `i`, from 0, in its own time.
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

  /// Appends a piece; at most `kMostPieces`, which is not checked.
  /// @param begin_s when it begins, not before the piece before [s]
  /// @param cubic   in its own time
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
