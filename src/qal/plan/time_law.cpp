#include "time_law.h"

#include "pieces.h"

namespace qal {

// Hermite's interpolation with speed and acceleration at both ends.
void TimeLaw::Append(const PathMoment& moment, double after_s) {
  if (after_s > 0) {
    const double t = after_s;
    const auto& [s, speed, acceleration, jerk] = last_;
    const double r0 = moment.s - (s + t * (speed + t * acceleration / 2));
    const double r1 = t * (moment.speed - (speed + t * acceleration));
    const double r2 = t * t * (moment.acceleration - acceleration);
    const double t3 = t * t * t;
    pieces_.push_back(
        {duration_s_,
         t,
         {s, speed, acceleration / 2, (10 * r0 - 4 * r1 + r2 / 2) / t3,
          (-15 * r0 + 7 * r1 - r2) / (t3 * t), (6 * r0 - 3 * r1 + r2 / 2) / (t3 * t * t)}});
    duration_s_ += t;
  }
  last_ = moment;
}

void TimeLaw::Append(const TimeLaw& law) {
  for (Piece piece : law.pieces_) {
    piece.begin += duration_s_;
    pieces_.push_back(piece);
  }
  duration_s_ += law.duration_s_;
  last_ = law.last_;
}

size_t TimeLaw::PieceAt(double time_s, size_t near) const {
  return PieceHolding(pieces_, time_s, near);
}

PathMoment TimeLaw::At(double time_s, size_t piece) const {
  const double(&c)[6] = pieces_[piece].coefficient;
  const double t = time_s - pieces_[piece].begin;
  return {c[0] + t * (c[1] + t * (c[2] + t * (c[3] + t * (c[4] + t * c[5])))),
          c[1] + t * (2 * c[2] + t * (3 * c[3] + t * (4 * c[4] + t * 5 * c[5]))),
          2 * c[2] + t * (6 * c[3] + t * (12 * c[4] + t * 20 * c[5])),
          6 * c[3] + t * (24 * c[4] + t * 60 * c[5])};
}

TimeLaw TimeLaw::Before(size_t piece) const {
  TimeLaw before = *this;
  before.duration_s_ = pieces_[piece].begin;
  before.pieces_.resize(piece);
  return before;
}

TimeLaw TimeLaw::From(size_t piece) const {
  TimeLaw from = *this;
  const double gone_s = pieces_[piece].begin;
  from.pieces_.erase(from.pieces_.begin(),
                     from.pieces_.begin() + static_cast<std::ptrdiff_t>(piece));
  for (Piece& p : from.pieces_) p.begin -= gone_s;
  from.duration_s_ -= gone_s;
  return from;
}

TimeLaw TimeLaw::Slower(double factor) const {
  TimeLaw slower = *this;
  slower.duration_s_ *= factor;
  for (Piece& piece : slower.pieces_) {
    piece.begin *= factor;
    piece.length *= factor;
    double power = 1;
    for (double& c : piece.coefficient) {
      c *= power;
      power /= factor;
    }
  }
  return slower;
}

}  // namespace qal
