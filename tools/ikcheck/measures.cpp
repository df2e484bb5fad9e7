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

bool AllFinite(const Joints& joints) {
  return std::all_of(joints.begin(), joints.end(), [](double q) { return std::isfinite(q); });
}

bool AllFinite(const Pose& pose) {
  const auto finite = [](double value) { return std::isfinite(value); };
  return std::all_of(pose.position, pose.position + 3, finite) &&
         std::all_of(pose.rotation, pose.rotation + 9, finite);
}

double PoseDifference::Size() const {
  Largest largest;
  largest.Take(position_m);
  largest.Take(element);
  return largest.value();
}

PoseDifference Difference(const Pose& a, const Pose& b) {
  Largest position;
  Largest element;
  for (int i = 0; i < 3; ++i) position.Take(a.position[i] - b.position[i]);
  for (int i = 0; i < 9; ++i) element.Take(a.rotation[i] - b.rotation[i]);
  return {position.value(), element.value()};
}

double Difference(const Joints& a, const Joints& b) {
  Largest largest;
  for (size_t j = 0; j < a.size(); ++j) largest.Take(std::remainder(a[j] - b[j], 2 * kPi));
  return largest.value();
}

bool Same(const Joints& a, const Joints& b, double tolerance_rad) {
  for (size_t j = 0; j < a.size(); ++j) {
    if (!(std::fabs(std::remainder(a[j] - b[j], 2 * kPi)) < tolerance_rad)) return false;
  }
  return true;
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
