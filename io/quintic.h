#ifndef QAL_IO_QUINTIC_H_
#define QAL_IO_QUINTIC_H_

#include <array>

namespace qal::io {

/// One joint between two samples: the polynomial of degree five that has the position, the velocity
/// and the acceleration of both, as a controller that interpolates makes it.
class Quintic {
 public:
  struct End {
    double position;
    double velocity;
    double acceleration;
  };

  /// @param duration_s above 0
  Quintic(const End& from, const End& to, double duration_s);

  /// The largest magnitude from end to end; NaN where it is beyond what a double holds.
  double PeakVelocity() const;
  double PeakAcceleration() const;

 private:
  double Velocity(double at) const;
  double Acceleration(double at) const;
  double ZeroOfAcceleration(double from, double to) const;
  std::array<double, 4> Extremes() const;
  double PeakToBegin() const;

  // The way through the interval, `at`, goes from 0 to 1.
  double duration_s_;
  double start_velocity_;
  std::array<double, 4> acceleration_;  // its coefficients, constant first
};

}  // namespace qal::io

#endif  // QAL_IO_QUINTIC_H_
