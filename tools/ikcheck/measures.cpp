#include "measures.h"

#include <algorithm>
#include <cmath>

namespace qal::ikcheck {

namespace {

class Largest {
 public:
  void Take(double value) {
    if (std::isnan(value) || std::fabs(value) > value_) value_ = std::fabs(value);
  }
  double value() const { return value_; }

 private:
  double value_ = 0.0;  // NaN stays: nothing is greater
};

}  // namespace

double Difference(const Pose& a, const Pose& b, double reach) {
  Largest largest;
  for (int i = 0; i < 3; ++i) largest.Take((a.position[i] - b.position[i]) / reach);
  for (int i = 0; i < 9; ++i) largest.Take(a.rotation[i] - b.rotation[i]);
  return largest.value();
}

double Difference(const Joints& a, const Joints& b) {
  Largest largest;
  for (size_t j = 0; j < a.size(); ++j) largest.Take(std::remainder(a[j] - b[j], 2 * kPi));
  return largest.value();
}

double OffLine(const Joints& joints, const Joints& start, const Joints& direction) {
  // The way along the line, from the joint that moves most; it may be a turn more or less.
  size_t k = 0;
  for (size_t j = 1; j < direction.size(); ++j) {
    if (std::fabs(direction[j]) > std::fabs(direction[k])) k = j;
  }
  double least = 2 * kPi;
  for (const double turns : {-1.0, 0.0, 1.0}) {
    const double way = (joints[k] - start[k] + 2 * kPi * turns) / direction[k];
    Joints on_line = start;
    for (size_t j = 0; j < on_line.size(); ++j) on_line[j] += way * direction[j];
    least = std::min(least, Difference(joints, on_line));
  }
  return least;
}

double OffRotation(const double* r) {
  Largest largest;
  for (int a = 0; a < 3; ++a) {
    for (int b = a; b < 3; ++b) {
      largest.Take(r[a] * r[b] + r[3 + a] * r[3 + b] + r[6 + a] * r[6 + b] - (a == b ? 1.0 : 0.0));
    }
  }
  const double determinant = r[0] * (r[4] * r[8] - r[5] * r[7]) -
                             r[1] * (r[3] * r[8] - r[5] * r[6]) +
                             r[2] * (r[3] * r[7] - r[4] * r[6]);
  if (determinant < 0) largest.Take(2.0);
  return largest.value();
}

}  // namespace qal::ikcheck
