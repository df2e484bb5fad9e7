#include "time_law.h"

#include <algorithm>

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

size_t TimeLaw::PieceAt(double time_s, size_t near) const {
  const auto holds = [&](size_t i) {
    return time_s >= pieces_[i].begin_s &&
           (i + 1 == pieces_.size() || time_s < pieces_[i + 1].begin_s);
  };
  if (near < pieces_.size() && holds(near)) return near;
  if (near + 1 < pieces_.size() && holds(near + 1)) return near + 1;
  const auto after = std::upper_bound(pieces_.begin(), pieces_.end(), time_s,
                                      [](double t, const Piece& p) { return t < p.begin_s; });
  return after == pieces_.begin() ? 0 : static_cast<size_t>(after - pieces_.begin()) - 1;
}

PathMoment TimeLaw::At(double time_s, size_t piece) const {
  const auto& [begin_s, length_s, c] = pieces_[piece];
  const double t = time_s - begin_s;
  return {c[0] + t * (c[1] + t * (c[2] + t * (c[3] + t * (c[4] + t * c[5])))),
          c[1] + t * (2 * c[2] + t * (3 * c[3] + t * (4 * c[4] + t * 5 * c[5]))),
          2 * c[2] + t * (6 * c[3] + t * (12 * c[4] + t * 20 * c[5])),
          6 * c[3] + t * (24 * c[4] + t * 60 * c[5])};
}

TimeLaw TimeLaw::Slower(double factor) const {
  TimeLaw slower = *this;
  slower.duration_s_ *= factor;
  for (Piece& piece : slower.pieces_) {
    piece.begin_s *= factor;
    piece.length_s *= factor;
    double power = 1;
    for (double& c : piece.coefficient) {
      c *= power;
      power /= factor;
    }
  }
  return slower;
}

}  // namespace qal
