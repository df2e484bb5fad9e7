#ifndef QAL_BENCH_ROWS_MAIN_H_
#define QAL_BENCH_ROWS_MAIN_H_

#include <cstdlib>
#include <vector>

#include "../io/loaded_arm.h"

namespace qal::bench {

/// The `main` of a program that writes rows: COUNT [FILE...].
/// @param write takes the count, the reference arm and those of the files
inline int RowsMain(int argc, char** argv, int (*write)(int count, const std::vector<Arm>& arms)) {
  if (argc < 2) return 2;
  std::vector<Arm> arms = {Arm::Reference()};
  for (int i = 2; i < argc; ++i) arms.push_back(io::ReadArm(argv[i]).arm);
  return write(std::atoi(argv[1]), arms);
}

}  // namespace qal::bench

#endif  // QAL_BENCH_ROWS_MAIN_H_
