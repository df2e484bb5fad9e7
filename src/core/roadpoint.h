#ifndef QAL_CORE_ROADPOINT_H_
#define QAL_CORE_ROADPOINT_H_

/// @file
/// Waypoints: pose, joints, and whether these were solved.

#include "export.h"
#include "pos.h"

/// A rotation increment about the three axes [rad]: the argument of a relative rotation.
class QAL_API Roz {
 public:
  double x;  ///< rotation about x [rad]
  double y;  ///< rotation about y [rad]
  double z;  ///< rotation about z [rad]

  /// (0, 0, 0): no rotation.
  Roz() : x(0.0), y(0.0), z(0.0) {}
  /// The angles about x, y and z [rad].
  Roz(double x_rad, double y_rad, double z_rad) : x(x_rad), y(y_rad), z(z_rad) {}
};

/// An orientation: Hamilton quaternion, scalar part first, tool frame to base frame.
///
/// Nothing normalises a stored quaternion. The default is the zero quaternion, which is no
/// rotation at all; the identity rotation is (1, 0, 0, 0).
class QAL_API Ori {
 public:
  double w;  ///< scalar part
  double x;  ///< vector part, x
  double y;  ///< vector part, y
  double z;  ///< vector part, z

  /// (0, 0, 0, 0), which is no rotation.
  Ori() : w(0.0), x(0.0), y(0.0), z(0.0) {}
  /// The components as they are, w first; nothing is normalised.
  Ori(double w_part, double x_part, double y_part, double z_part)
      : w(w_part), x(x_part), y(y_part), z(z_part) {}

  /// True when all four components are exactly equal. q and -q, the same rotation, are not equal;
  /// a NaN on either side makes it false.
  bool operator==(const Ori& other) const {
    return w == other.w && x == other.x && y == other.y && z == other.z;
  }
};

/// One waypoint of the arm: tool pose, the six joint angles, and whether inverse kinematics
/// filled them.
///
/// A waypoint is consistent when `jointpos` reaches the pose; forward kinematics updates the pose
/// from the joints, inverse kinematics the joints from the pose. 112 bytes; the layout and the
/// out-of-line members are part of the binary interface.
class QAL_API RoadPoint {
 public:
  Pos position;        ///< tool centre [m, base frame]
  Ori orientation;     ///< tool orientation, w first, tool frame to base frame
  double jointpos[6];  ///< joints 1 to 6 [rad], in the solver's order
  bool ik_flag;        ///< an inverse-kinematics operation has written `jointpos` for this pose

  /// Position (0, 0, 0), the zero quaternion, zero joints, `ik_flag` false.
  RoadPoint();
  /// A copy of pose, joints and flag.
  RoadPoint(const RoadPoint& other) = default;
  /// Takes pose, joints and flag.
  RoadPoint& operator=(const RoadPoint& other);

  /// True when pose, joints and flag are all exactly equal; false when a number is NaN.
  bool operator==(const RoadPoint& other);

  /// Cuts the coordinates and the joints to six decimals and the quaternion components to four, as
  /// the trajectory operations cut theirs (see `Ikfunc::SectionNum`). A number too large for the
  /// cut, NaN or infinity stays as it is.
  void SectionRoadPoint();

  /// Writes the waypoint to standard output (`std::cout`) as one block of four lines, flushed:
  /// position [m], orientation (w x y z), joints [rad], flag. Nine significant digits, whatever the
  /// stream's own format.
  void printfPoint();
};

#endif  // QAL_CORE_ROADPOINT_H_
