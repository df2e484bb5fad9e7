#include <algorithm>
#include <cmath>
#include <limits>

#include "../../kinematics/solve/solver_functions.h"
#include "../model/exceptions.h"
#include "kinematics.h"
#include "solver_calls.h"

namespace qal {

namespace {

// Whether the rows have unit length and right angles, right-handed. A solver's constants may have
// but a few digits; what is further off than this is another matrix.
bool IsNearRotation(const Matrix3& m) {
  constexpr double kTolerance = 1e-3;
  const Vector3 off = Cross(m[0], m[1]) - m[2];
  return std::fabs(Dot(m[0], m[0]) - 1) <= kTolerance &&
         std::fabs(Dot(m[1], m[1]) - 1) <= kTolerance && std::fabs(Dot(m[0], m[1])) <= kTolerance &&
         Length(off) <= kTolerance;
}

}  // namespace

// S. W. Shepperd, "Quaternion from Rotation Matrix", Journal of Guidance and Control 1 (1978), 223:
// of the four squares
//
//     4 w^2 = 1 + r11 + r22 + r33        4 x^2 = 1 + r11 - r22 - r33
//     4 y^2 = 1 - r11 + r22 - r33        4 z^2 = 1 - r11 - r22 + r33
//
// the largest, which is at least 1, gives its component; the others follow from their products with
// it, 4 w x = r32 - r23 and so on, none of which loses digits.
Quat QuaternionOf(const Matrix3& m) {
  const double squares[4] = {1 + m[0][0] + m[1][1] + m[2][2], 1 + m[0][0] - m[1][1] - m[2][2],
                             1 - m[0][0] + m[1][1] - m[2][2], 1 - m[0][0] - m[1][1] + m[2][2]};
  const double wx = m[2][1] - m[1][2];
  const double wy = m[0][2] - m[2][0];
  const double wz = m[1][0] - m[0][1];
  const double xy = m[0][1] + m[1][0];
  const double xz = m[0][2] + m[2][0];
  const double yz = m[1][2] + m[2][1];
  const double products[4][4] = {{squares[0], wx, wy, wz},
                                 {wx, squares[1], xy, xz},
                                 {wy, xy, squares[2], yz},
                                 {wz, xz, yz, squares[3]}};
  // In a tie the first: w before x before y before z.
  const auto largest = std::max_element(squares, squares + 4) - squares;
  const double(&q)[4] = products[largest];
  // The row is the quaternion times four times its largest component, which becomes positive.
  const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  return {q[0] / length, q[1] / length, q[2] / length, q[3] / length};
}

Result<Frame> CallForward(const Arm& arm, const Joints& joints) {
  for (size_t j = 0; j < joints.size(); ++j) {
    if (std::isfinite(joints[j])) continue;
    return Error{Reason::kNotFinite, static_cast<int>(j), joints[j]};
  }
  return CatchingSolver([&]() -> Result<Frame> {
    double position[3];
    double rotation[9];
    // What a solver doesn't write is no pose.
    std::fill_n(position, 3, std::numeric_limits<double>::quiet_NaN());
    std::fill_n(rotation, 9, std::numeric_limits<double>::quiet_NaN());
    arm.functions().Forward(joints.data(), position, rotation);
    const auto finite = [](double value) { return std::isfinite(value); };
    if (!std::all_of(position, position + 3, finite) ||
        !std::all_of(rotation, rotation + 9, finite)) {
      return Error{Reason::kNoPose};
    }
    const Frame frame = ToFrame(position, rotation);
    if (!IsNearRotation(frame.rotation)) {
      return Error{Reason::kSolverFault, -1, 0, 0, "ComputeFk's matrix is no rotation"};
    }
    return frame;
  });
}

Result<Pose> Forward(const Arm& arm, const Joints& joints) {
  const Result<Frame> frame = CallForward(arm, joints);
  if (!frame) return frame.error();
  return Pose{FromVector(frame->position), QuaternionOf(frame->rotation)};
}

}  // namespace qal
