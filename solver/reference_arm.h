#ifndef QAL_SOLVER_REFERENCE_ARM_H_
#define QAL_SOLVER_REFERENCE_ARM_H_

#include "closed_form/spherical_wrist.h"

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

// Axis 3 to the wrist's centre in a straight line, and the angle of the forearm's x axis above it
// less a right angle: the elbow's offset makes the forearm a bent one.
constexpr double kForearmLineM = 0.38160843806184370;   // hypot(forearm, elbow offset)
constexpr double kForearmLeanRad = -1.478950200530159;  // atan2(elbow offset, forearm) - pi / 2

// The same for the solver. Its frame is the base's, lifted to axis 2.
constexpr closed_form::SphericalWristArm kArm = {
    {/*base*/ {{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}}, {{0, 0, kShoulderHeightM}}},
     /*shoulder*/ kShoulderOffsetM,
     /*lateral*/ 0,
     /*upper_arm*/ kUpperArmM,
     /*forearm*/ kForearmLineM,
     /*tool*/ {{{{0, 0, 1}}, {{0, 1, 0}}, {{-1, 0, 0}}}},
     /*centre_in_tool*/ {{0, 0, -kFlangeM}},
     /*direction*/ {1, 1, 1, 1, 1, 1},
     /*zero*/ {0, 0, -kForearmLeanRad, 0, 0, 0},
     /*slack*/ 0},
    /*lean*/ {-kForearmM / kForearmLineM, kElbowOffsetM / kForearmLineM},
    /*skew*/ {0, 1}};

/// Identifies this geometry.
constexpr char kGeometryHash[] = "qal-reference-arm-1";

}  // namespace qal::reference_arm

#endif  // QAL_SOLVER_REFERENCE_ARM_H_
