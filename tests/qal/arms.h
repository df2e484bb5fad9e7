#ifndef QAL_TESTS_QAL_ARMS_H_
#define QAL_TESTS_QAL_ARMS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>

#include "../../io/arm_file.h"
#include "qal/solve/kinematics.h"

namespace qal {

/// The arms that come with the library.
constexpr const char* kArmFiles[] = {
    "reference.urdf",           "bench_spherical.urdf",        "foundry_spherical.urdf",
    "ceiling_spherical.urdf",   "welding_ortho_parallel.json", "bench_parallel.urdf",
    "service_parallel.urdf",    "carrying_parallel.toml",      "laboratory_offset.urdf",
    "calibrated_parallel.toml", "painting_oblique.toml"};

inline ArmDescription Describe(const std::string& file) {
  return io::ReadDescription(QAL_ARMS_DIR "/" + file, {});
}

/// A name for a parameterised test's arm.
inline std::string ArmName(const testing::TestParamInfo<const char*>& arm) {
  const std::string file = arm.param;
  return file.substr(0, file.find('.'));
}

/// Draws joints from a seed that never changes.
class RandomJoints {
 public:
  explicit RandomJoints(double range_rad) : range_(-range_rad, range_rad) {}
  Joints operator()() {
    Joints joints;
    for (double& joint : joints) joint = range_(engine_);
    return joints;
  }

 private:
  std::mt19937 engine_{20261125};
  std::uniform_real_distribution<double> range_;
};

inline double LargestDifference(const Joints& a, const Joints& b) {
  double largest = 0;
  for (size_t j = 0; j < a.size(); ++j) largest = std::max(largest, std::fabs(a[j] - b[j]));
  return largest;
}

/// In metres, or in quaternion components whatever the quaternions' signs.
inline double LargestDifference(const Pose& a, const Pose& b) {
  const auto& [p, q] = a;
  const auto& [r, s] = b;
  const double sign = q.w * s.w + q.x * s.x + q.y * s.y + q.z * s.z < 0 ? -1 : 1;
  double largest = 0;
  for (const double off : {p.x - r.x, p.y - r.y, p.z - r.z, q.w - sign * s.w, q.x - sign * s.x,
                           q.y - sign * s.y, q.z - sign * s.z}) {
    largest = std::max(largest, std::fabs(off));
  }
  return largest;
}

/// An error as text, so that tables of them read and compare.
inline std::string Text(const Error& error) {
  std::ostringstream text;
  text << "reason " << static_cast<int>(error.reason) << " joint " << error.joint << " value "
       << error.value << " bound " << error.bound << ' ' << error.detail;
  return text.str();
}

}  // namespace qal

#endif  // QAL_TESTS_QAL_ARMS_H_
