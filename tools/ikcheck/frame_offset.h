#ifndef QAL_TOOLS_IKCHECK_FRAME_OFFSET_H_
#define QAL_TOOLS_IKCHECK_FRAME_OFFSET_H_

#include <Eigen/Geometry>
#include <algorithm>
#include <string>
#include <vector>

#include "solver.h"

namespace qal::ikcheck {

using Frame = Eigen::Isometry3d;

// Positions as parts of the reach, angles in rad. Far above what numbers with six decimals leave
// open, such as a quarter turn written 1.570796; far below any difference of two arms.
constexpr double kAgreed = 1e-5;

inline Frame FrameOf(const Pose& pose) {
  Frame frame = Frame::Identity();
  frame.translation() = pose.position;
  frame.linear() = pose.rotation;
  return frame;
}

/// From one frame to another.
struct Offset {
  double distance;  ///< [m]
  double angle_rad;

  Offset(const Frame& from, const Frame& to);
  double Size(double reach) const { return std::max(distance / reach, angle_rad); }
};

/// The usual mistake is a frame that is fixed somewhere else: "; only the tool frame differs: WHOSE
/// is at ORIGIN", or the base frame. Empty where `other` differs from `frames` otherwise.
std::string FixedOffset(const std::string& whose, const std::vector<Frame>& other,
                        const std::vector<Frame>& frames, double reach);

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_FRAME_OFFSET_H_
