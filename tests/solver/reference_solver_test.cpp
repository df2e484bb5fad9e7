#include <gtest/gtest.h>

#include "answer.h"

namespace {

TEST(ReferenceSolver, RefusesWhatIsNoReachablePoseAndLeavesTheListAlone) {
  const Pose good = Forward({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
  std::vector<Pose> bad(5, good);
  for (size_t i = 3; i < 12; ++i) bad[0][i] *= 1 + 1e-6;
  for (size_t i = 3; i < 12; i += 3) bad[1][i] = -good[i];  // mirrored
  bad[2][4] += 1e-6;                                        // sheared
  bad[3][0] = 1.5;                                          // the arm reaches about 0.9 m
  for (size_t i = 3; i < 12; i += 3) bad[4][i + 1] += 1e-6 * good[i];  // y leans to x, z is theirs
  bad.push_back(Pose{});
  for (size_t i = 0; i < 12; ++i) {
    for (const double value : {std::nan(""), HUGE_VAL, 1e200}) {
      bad.push_back(good);
      bad.back()[i] = value;
    }
  }
  for (const Pose& pose : bad) {
    ikfast::IkSolutionList<double> list;
    list.AddSolution(std::vector<ikfast::IkSingleDOFSolutionBase<double>>(6), {});
    EXPECT_FALSE(ikfast::ComputeIk(&pose[0], &pose[3], nullptr, list));
    EXPECT_EQ(list.GetNumSolutions(), 1u);
    double array[qal::ArraySolver::kMost][6];
    EXPECT_EQ(qal_array_solver_1()->inverse(&pose[0], &pose[3], array), 0);
  }
}

}  // namespace
