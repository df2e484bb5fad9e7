#ifndef QAL_TESTS_QAL_SEEDED_H_
#define QAL_TESTS_QAL_SEEDED_H_

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "../../io/loaded_arm.h"

namespace qal {

/// How many seeds a test takes.
inline int CountFromEnvironment(const char* name, int otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

/// The reference arm, two others, and those that QAL_LINE_ARMS names besides.
inline std::vector<Arm> SeededArms() {
  const std::string folder = QAL_ARMS_DIR;
  std::vector<std::string> files = {folder + "/foundry_spherical.urdf",
                                    folder + "/laboratory_offset.urdf"};
  const char* const more = std::getenv("QAL_LINE_ARMS");
  std::istringstream names(more == nullptr ? "" : more);
  for (std::string name; names >> name;) files.push_back(name);
  std::vector<Arm> arms = {Arm::Reference()};
  for (const std::string& file : files) arms.push_back(io::ReadArm(file).arm);
  return arms;
}

}  // namespace qal

#endif  // QAL_TESTS_QAL_SEEDED_H_
