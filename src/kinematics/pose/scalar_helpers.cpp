#include <cmath>

#include "../../core/decimals.h"
#include "../ikfunc.h"

// NaN is not >= 0, so it counts as negative.
double Ikfunc::SIGN(double x) { return x >= 0.0 ? 1.0 : -1.0; }

double Ikfunc::NORM(double a, double b, double c, double d) {
  return std::sqrt(a * a + b * b + c * c + d * d);
}

double Ikfunc::SectionNum(double num) { return qal::CutSixDecimals(num); }

double Ikfunc::SectionFourNum(double num) { return qal::CutFourDecimals(num); }
