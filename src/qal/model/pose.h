#ifndef QAL_MODEL_POSE_H_
#define QAL_MODEL_POSE_H_

/// @file
/// Joints, positions, orientations, poses, frames.

#include <array>

#include "../../core/export.h"

namespace qal {

/// Six joint angles [rad], joint 1 first.
using Joints = std::array<double, 6>;

/// A position or a displacement [m], in the frame that the context names.
struct Vec3 {
  double x;  ///< along x [m]
  double y;  ///< along y [m]
  double z;  ///< along z [m]
};

/// An orientation: unit Hamilton quaternion, w first, tool frame to base frame.
struct Quat {
  double w;  ///< scalar part
  double x;  ///< vector part, x
  double y;  ///< vector part, y
  double z;  ///< vector part, z
};

/// A tool pose in the base frame. Seven doubles in the order x, y, z, w, x, y, z, trivially
/// copyable: an (n, 7) array of doubles is an array of n poses as it stands.
struct Pose {
  Vec3 position;     ///< tool centre point [m, base frame]
  Quat orientation;  ///< tool frame to base frame
};

/// Joints, and the pose that they have.
struct State {
  Joints joints;  ///< [rad]
  Pose pose;      ///< of the tool, in the base frame
};

/// A frame in another one, as a rotation matrix: exact where a description is.
struct Transform {
  double rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};  ///< by rows; the columns are the frame's axes
  Vec3 position = {0, 0, 0};                         ///< [m]
};

}  // namespace qal

#endif  // QAL_MODEL_POSE_H_
