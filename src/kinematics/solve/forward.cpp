#include <cmath>

#include "../diagnostics.h"
#include "../ikfast.h"
#include "../ikfunc.h"

namespace {

// Square root of a quarter of a squared magnitude sum. Everything past the sum is single precision:
// stored orientations carry float values.
float Magnitude(double four_squares) {
  constexpr float kQuarter = 0.25f;
  float square = static_cast<float>(four_squares * static_cast<double>(kQuarter));
  if (square < 0.0f) square = 0.0f;  // rounding of a vanishing component; NaN stays NaN
  return std::sqrt(square);
}

}  // namespace

bool Ikfunc::ArmFk(Pos& arm_pos, Ori& arm_ori, double* joint_solve) {
  ikfast::IkReal eetrans[3];
  ikfast::IkReal r[9];
  ikfast::ComputeFk(joint_solve, eetrans, r);

  const float w = Magnitude(r[0] + r[4] + r[8] + 1);
  const float x = Magnitude(r[0] - r[4] - r[8] + 1);
  const float y = Magnitude(r[4] - r[0] - r[8] + 1);
  const float z = Magnitude(r[8] - r[0] - r[4] + 1);

  // The largest magnitude is taken as positive; the others get the signs of their products with it.
  double signs[4];
  const double wx = SIGN(r[7] - r[5]);
  const double wy = SIGN(r[2] - r[6]);
  const double wz = SIGN(r[3] - r[1]);
  const double xy = SIGN(r[3] + r[1]);
  const double xz = SIGN(r[2] + r[6]);
  const double yz = SIGN(r[7] + r[5]);
  if (w >= x && w >= y && w >= z) {
    signs[0] = 1.0, signs[1] = wx, signs[2] = wy, signs[3] = wz;
  } else if (x >= w && x >= y && x >= z) {
    signs[0] = wx, signs[1] = 1.0, signs[2] = xy, signs[3] = xz;
  } else if (y >= w && y >= x && y >= z) {
    signs[0] = wy, signs[1] = xy, signs[2] = 1.0, signs[3] = yz;
  } else if (z >= w && z >= x && z >= y) {
    signs[0] = wz, signs[1] = xz, signs[2] = yz, signs[3] = 1.0;
  } else {  // a NaN compares with nothing
    qal::WriteError(qal::kQuaternionError);
    return false;
  }
  const double q[4] = {w * signs[0], x * signs[1], y * signs[2], z * signs[3]};
  const double norm = NORM(q[0], q[1], q[2], q[3]);
  const auto component = [norm](double value) {
    return static_cast<double>(static_cast<float>(value / norm));
  };
  arm_pos = Pos(eetrans[0], eetrans[1], eetrans[2]);
  arm_ori = Ori(component(q[0]), component(q[1]), component(q[2]), component(q[3]));
  return true;
}

bool Ikfunc::ArmFk(RoadPoint& arm_pos) {
  return ArmFk(arm_pos.position, arm_pos.orientation, arm_pos.jointpos);
}
