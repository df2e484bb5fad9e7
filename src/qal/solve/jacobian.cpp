#include "kinematics.h"
#include "solver_calls.h"

namespace qal {

namespace {

// The vector a of a matrix's antisymmetric part [a]x.
Vector3 AxialVector(const Matrix3& m) {
  return {{(m[2][1] - m[1][2]) / 2, (m[0][2] - m[2][0]) / 2, (m[1][0] - m[0][1]) / 2}};
}

}  // namespace

// Rodrigues: a joint about the unit axis a through c takes the point p to
//
//     p(t) = c + cos(t) r + sin(t) (a x r) + (1 - cos(t)) (a . r) a,    r = p - c,
//
// so that p(pi/2) - p(-pi/2) = 2 a x r, twice the velocity at t = 0. Likewise the rotation from R
// to R(t) is I + sin(t) [a]x + (1 - cos(t)) [a]x^2, so that (R(pi/2) - R(-pi/2)) R^T = 2 [a]x.
Result<JacobianMatrix> Jacobian(const Arm& arm, const Joints& joints) {
  const Result<Frame> tool = CallForward(arm, joints);
  if (!tool) return tool.error();
  const Matrix3 inverse_rotation = Transposed(tool->rotation);
  JacobianMatrix jacobian = {};
  for (size_t j = 0; j < joints.size(); ++j) {
    Joints quarter = joints;
    quarter[j] = joints[j] + kPi / 2;
    const Result<Frame> plus = CallForward(arm, quarter);
    if (!plus) return plus.error();
    quarter[j] = joints[j] - kPi / 2;
    const Result<Frame> minus = CallForward(arm, quarter);
    if (!minus) return minus.error();
    const Vector3 velocity = 0.5 * (plus->position - minus->position);
    const Vector3 angular = 0.5 * (AxialVector(plus->rotation * inverse_rotation) -
                                   AxialVector(minus->rotation * inverse_rotation));
    for (int i = 0; i < 3; ++i) {
      jacobian.element[i][j] = velocity[i];
      jacobian.element[i + 3][j] = angular[i];
    }
  }
  return jacobian;
}

}  // namespace qal
