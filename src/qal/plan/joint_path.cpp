#include "joint_path.h"

#include "pieces.h"

namespace qal {

// Hermite's interpolation with three derivatives at both ends. With the powers up to three from the
// first end, the others meet what is left at the second end: of the value, r0, and of the first
// three derivatives, r1 to r3, all with respect to u = (s - begin) / length.
void JointPath::Append(const PathPoint& point) {
  Piece piece = {last_.s, point.s - last_.s, {}};
  const double h = piece.length;
  auto& c = piece.coefficient;
  for (size_t j = 0; j < 6; ++j) {
    c[0][j] = last_.value[j];
    c[1][j] = h * last_.first[j];
    c[2][j] = h * h * last_.second[j] / 2;
    c[3][j] = h * h * h * last_.third[j] / 6;
    const double r0 = point.value[j] - (c[0][j] + c[1][j] + c[2][j] + c[3][j]);
    const double r1 = h * point.first[j] - (c[1][j] + 2 * c[2][j] + 3 * c[3][j]);
    const double r2 = h * h * point.second[j] - (2 * c[2][j] + 6 * c[3][j]);
    const double r3 = h * h * h * point.third[j] - 6 * c[3][j];
    c[4][j] = 35 * r0 - 15 * r1 + 2.5 * r2 - r3 / 6;
    c[5][j] = -84 * r0 + 39 * r1 - 7 * r2 + r3 / 2;
    c[6][j] = 70 * r0 - 34 * r1 + 6.5 * r2 - r3 / 2;
    c[7][j] = -20 * r0 + 10 * r1 - 2 * r2 + r3 / 6;
  }
  pieces_.push_back(piece);
  last_ = point;
}

void JointPath::CutAfter(double s) {
  if (!(s < last_.s)) return;
  const size_t piece = PieceAt(s);
  const PathPoint end = At(s, piece);
  last_ = At(pieces_[piece].begin, piece);
  pieces_.resize(piece);
  if (end.s > last_.s) Append(end);
}

void JointPath::Append(const JointPath& path) {
  pieces_.insert(pieces_.end(), path.pieces_.begin(), path.pieces_.end());
  last_ = path.last_;
}

void JointPath::CutBefore(double s) {
  if (!(s > begin(0))) return;
  const size_t piece = PieceAt(s);
  JointPath rest(At(s, piece));
  rest.Append(piece + 1 < pieces_.size() ? At(pieces_[piece + 1].begin, piece + 1) : last_);
  rest.pieces_.insert(rest.pieces_.end(), pieces_.begin() + static_cast<std::ptrdiff_t>(piece) + 1,
                      pieces_.end());
  rest.last_ = last_;
  *this = std::move(rest);
}

size_t JointPath::PieceAt(double s, size_t near) const { return PieceHolding(pieces_, s, near); }

PathPoint JointPath::At(double s, size_t piece) const {
  const auto& [from, span, c] = pieces_[piece];
  const double u = (s - from) / span;
  PathPoint point = {s, c[7], {}, {}, {}};
  // Horner's scheme for the polynomial, its derivative, and halves and sixths of the next two.
  for (int power = 6; power >= 0; --power) {
    const Joints& add = c[static_cast<size_t>(power)];
    for (size_t j = 0; j < 6; ++j) {
      point.third[j] = point.third[j] * u + point.second[j];
      point.second[j] = point.second[j] * u + point.first[j];
      point.first[j] = point.first[j] * u + point.value[j];
      point.value[j] = point.value[j] * u + add[j];
    }
  }
  const double one = 1 / span;
  const double two = 2 * one * one;
  const double three = 3 * two * one;
  for (size_t j = 0; j < 6; ++j) {
    point.first[j] *= one;
    point.second[j] *= two;
    point.third[j] *= three;
  }
  return point;
}

double PlaceIn(const JointPath& path, size_t piece, double part) {
  const bool first = piece == 0;
  const bool final = piece + 1 == path.size();
  const double left = 1 - part;
  if (first && !final) part = part * part * part;
  if (final && !first) part = 1 - left * left * left;
  return path.begin(piece) + part * path.length(piece);
}

}  // namespace qal
