#include "kinematics.h"
#include "solver_calls.h"

namespace qal {

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

// With r from a point of it to the tool centre p, its velocity is v = a x r, and
// v x a = r - (a . r) a leads from the axis straight to p.
Line AxisOf(const JacobianMatrix& jacobian, size_t j, const Vector3& tool_centre) {
  const auto& m = jacobian.element;
  const Vector3 velocity = {{m[0][j], m[1][j], m[2][j]}};
  const Vector3 angular = {{m[3][j], m[4][j], m[5][j]}};
  const Vector3 direction = (1 / Length(angular)) * angular;
  return {tool_centre - Cross(velocity, direction), direction};
}

}  // namespace qal
