#ifndef QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_ARM_H_
#define QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_ARM_H_

#include "body.h"

namespace qal::closed_form {

/// An arm whose axes 3 and 4, 4 and 5, and 5 and 6 are at right angles. Axes 4 and 5 meet, in what
/// is the wrist's centre here; axis 6 passes beside it.
///
/// The frame in which axis 4 is x and, at model angle 4 = 0, axis 5 is y, is rotated from the arm's
/// frame by model angles 2 and 3 and `lean` about y. In the frame in which axis 5 is y and axis 6
/// along x, the point of axis 6 nearest to the wrist's centre is `wrist_offset_y` and
/// `wrist_offset_z` away from it. That point is fixed in the tool: it is `centre_in_tool`.
struct OffsetWristArm {
  Body body;
  SinCos<double> lean;
  double wrist_offset_y, wrist_offset_z;
};

/// A vector, seen from a frame that is rotated about z.
template <class T>
Vector<T> SeenFrom(const SinCos<T>& angle1, const Vector<T>& v) {
  return {
      {angle1.cosine * v[0] + angle1.sine * v[1], angle1.cosine * v[1] - angle1.sine * v[0], v[2]}};
}

/// A target for such an arm, in the arm's frame with model angle 1 at zero. As model angle 6 goes
/// round, the wrist's centre does so too.
struct WristCircle {
  Matrix<double> flange;                   ///< by columns; axis 6 is the first
  Vector<double> middle;                   ///< where axis 6 is nearest to the wrist's centre
  Vector<double> at_zero, at_right_angle;  ///< from the wrist's centre to `middle`, by angle 6

  WristCircle(const OffsetWristArm& arm, const Frame& target) {
    const Body& body = arm.body;
    const Matrix<double> to_arm = Transposed(body.base.rotation);
    flange = Transposed(to_arm * target.rotation * Transposed(body.tool));
    middle =
        to_arm * (target.position + target.rotation * body.centre_in_tool - body.base.position);
    at_zero = arm.wrist_offset_y * flange[1] + arm.wrist_offset_z * flange[2];
    at_right_angle = arm.wrist_offset_z * flange[1] - arm.wrist_offset_y * flange[2];
  }

  double Radius() const { return std::sqrt(Dot(at_zero, at_zero)); }

  template <class T>
  Vector<T> Centre(const SinCos<T>& angle6) const {
    const Vector<T> from = angle6.cosine * at_zero + angle6.sine * at_right_angle;
    return {{middle[0] - from[0], middle[1] - from[1], middle[2] - from[2]}};
  }
  /// By how much the centre moves with angle 6.
  template <class T>
  Vector<T> Velocity(const SinCos<T>& angle6) const {
    return angle6.sine * at_zero - angle6.cosine * at_right_angle;
  }
  template <class T>
  Vector<T> Axis5(const SinCos<T>& angle6) const {
    return angle6.cosine * flange[1] - angle6.sine * flange[2];
  }
  /// At right angles to axes 5 and 6. It moves as axis 5 is, axis 5 as the opposite of it.
  template <class T>
  Vector<T> Across(const SinCos<T>& angle6) const {
    return angle6.sine * flange[1] + angle6.cosine * flange[2];
  }
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_ARM_H_
