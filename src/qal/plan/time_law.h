#ifndef QAL_PLAN_TIME_LAW_H_
#define QAL_PLAN_TIME_LAW_H_

#include <cstddef>
#include <vector>

// Internal: where on a path a motion is, and when.
namespace qal {

/// A moment of a motion along a path: its parameter s, and the derivatives of s with respect to
/// time.
struct PathMoment {
  double s;
  double speed;
  double acceleration;
  double jerk;
};

/// s over time, from 0 on: piecewise polynomials of degree 5. Speed and acceleration are
/// continuous, the jerk jumps from piece to piece.
class TimeLaw {
 public:
  /// A moment a while after the last one; the first is the start.
  void Append(const PathMoment& moment, double after_s);

  double duration_s() const { return duration_s_; }
  size_t size() const { return pieces_.size(); }
  double begin_s(size_t piece) const { return pieces_[piece].begin; }
  double length_s(size_t piece) const { return pieces_[piece].length; }

  /// What goes on where this one ends.
  void Append(const TimeLaw& law);

  /// The piece at a time. Quick where it is `near` or one after it.
  size_t PieceAt(double time_s, size_t near = 0) const;
  PathMoment At(double time_s, size_t piece) const;
  PathMoment At(double time_s) const { return At(time_s, PieceAt(time_s)); }

  /// The motion up to a piece, and from it on.
  TimeLaw Before(size_t piece) const;
  TimeLaw From(size_t piece) const;

  /// The same motion, that takes `factor` times as long.
  TimeLaw Slower(double factor) const;

 private:
  struct Piece {
    double begin;  // [s], as is the next
    double length;
    double coefficient[6];  // of powers of time_s - begin
  };
  std::vector<Piece> pieces_;
  PathMoment last_ = {};
  double duration_s_ = 0;
};

}  // namespace qal

#endif  // QAL_PLAN_TIME_LAW_H_
