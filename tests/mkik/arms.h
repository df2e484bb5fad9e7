#ifndef QAL_TESTS_MKIK_ARMS_H_
#define QAL_TESTS_MKIK_ARMS_H_

#include <algorithm>
#include <string>

#include "../../io/arm_file.h"
#include "../../src/qal/model/chain.h"
#include "../../src/qal/model/closed_form_model.h"
#include "../../src/qal/model/frames.h"

namespace qal::tools {

/// The arms that come with the library.
constexpr const char* kArmFiles[] = {
    "reference.urdf",         "bench_spherical.urdf",        "foundry_spherical.urdf",
    "ceiling_spherical.urdf", "welding_ortho_parallel.json", "bench_parallel.urdf",
    "service_parallel.urdf",  "carrying_parallel.toml"};

inline std::string ArmPath(const std::string& file) { return QAL_ARMS_DIR "/" + file; }

inline ArmDescription Describe(const std::string& file) {
  return io::ReadDescription(ArmPath(file), {});
}

inline double LargestDifference(const closed_form::Joints& a, const closed_form::Joints& b) {
  double largest = 0;
  for (size_t j = 0; j < a.size(); ++j) largest = std::max(largest, std::fabs(a[j] - b[j]));
  return largest;
}

inline double LargestDifference(const Frame& a, const Frame& b) {
  double largest = 0;
  for (int i = 0; i < 3; ++i) {
    largest = std::max(largest, std::fabs(a.position[i] - b.position[i]));
    for (int j = 0; j < 3; ++j) {
      largest = std::max(largest, std::fabs(a.rotation[i][j] - b.rotation[i][j]));
    }
  }
  return largest;
}

}  // namespace qal::tools

#endif  // QAL_TESTS_MKIK_ARMS_H_
