#include "waypoints.h"

namespace {

using Triple = std::array<double, 3>;

constexpr double kRounding = 2e-15;  // a few units in the last place of numbers up to pi

Triple EulerOf(const Ori& q) {
  Triple angles;
  Ikfunc::QuaternionToEulerAngle(q, angles.data());
  return angles;
}

// roll = atan2(2(wx + yz), 1 - 2(xx + yy)), pitch = asin(2(wy - xz)), yaw = atan2(2(wz + xy),
// 1 - 2(yy + zz)). For the last one: 0.32 over 0.8; 0.44; 0.64 over -0.16.
TEST(Euler, ReadsTheQuaternionAsItIs) {
  ExpectNear(EulerOf(Ori(-1, 0, 0, 0)), {0, 0, 0}, 0);
  ExpectNear(EulerOf(Ori(1, 1, 0, 0)), {2.0344439357957027, 0, 0}, kRounding);
  ExpectNear(EulerOf(Ori(0.7072, 0, 0.7072, 0)), {M_PI, kNan, M_PI}, kRounding);
  ExpectNear(EulerOf(Ori(0.5, -0.1, 0.3, 0.7)),
             {std::atan2(0.32, 0.8), std::asin(0.44), std::atan2(0.64, -0.16)}, kRounding);
}

// R = Rz(yaw) Ry(pitch) Rx(roll): the product of the three quaternions in this order.
TEST(Euler, MakesTheQuaternionOfRollThenPitchThenYaw) {
  for (Triple angles : {Triple{}, {M_PI, 0, 0}, {0.3, -1.2, 2.9}, {-3.1, 1.5, -0.4}, {0, 0, 4}}) {
    const auto [roll, pitch, yaw] = angles;
    const Ori expected = Product(Product(Turn(yaw, 2), Turn(pitch, 1)), Turn(roll, 0));
    Ori q(9, 9, 9, 9);
    Ikfunc::EulerAngleToQuaternion(q, angles.data());
    ExpectNear(All(q), All(expected), kRounding);           // w is below 0 for the last one
    if (yaw < M_PI) ExpectNear(EulerOf(q), angles, 1e-13);  // asin loses digits near pi/2
  }
}

TEST(Euler, DifferencesAreEndMinusStartAndNotWrapped) {
  RoadPoint start = From({1, 2, 3, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 1});
  RoadPoint end = start;
  start.orientation = Turn(3.1, 2);
  end.orientation = Product(Turn(-3.1, 2), Turn(0.5, 0));
  Triple change;
  Ikfunc::QuaternionToEulerDis(start, end, change.data());
  ExpectNear(change, {0.5, 0, -6.2}, 1e-14);
  Ikfunc::QuaternionAddEuler(start, change.data());  // the orientation alone
  ExpectNear(All(start), All(end), kRounding);
}

}  // namespace
