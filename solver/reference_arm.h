#ifndef QAL_SOLVER_REFERENCE_ARM_H_
#define QAL_SOLVER_REFERENCE_ARM_H_

namespace qal::reference_arm {

// Geometry of the reference arm [m]; arms/reference.urdf describes the same arm.
//
// With all joints at zero the upper arm points up, the forearm and the tool forward along x:
//
//        elbow -+- - - - - - -o wrist --| flange        z
//               | elbow offset                          |
//               |                                       +-- x
//        shoulder
//          base |
//
// Axis 1 is the base's z; axes 2, 3 and 5 are parallel to y, axes 4 and 6 to x. The wrist's axes
// meet in one point. The tool frame has its z axis along the outward flange axis and its y axis
// along the base's y when all joints are at zero.
constexpr double kShoulderHeightM = 0.380;  // base to axis 2, along z
constexpr double kShoulderOffsetM = 0.050;  // axis 1 to axis 2, along x
constexpr double kUpperArmM = 0.400;        // axis 2 to axis 3, along z
constexpr double kElbowOffsetM = 0.035;     // axis 3 to axis 4, along z
constexpr double kForearmM = 0.380;         // axis 3 to the wrist's centre, along x
constexpr double kFlangeM = 0.080;          // the wrist's centre to the flange, along x

}  // namespace qal::reference_arm

#endif  // QAL_SOLVER_REFERENCE_ARM_H_
