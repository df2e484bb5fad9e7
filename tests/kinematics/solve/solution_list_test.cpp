#include "kinematics/solve/solution_list.h"

#include <gtest/gtest.h>

namespace {

using Joint = ikfast::IkSingleDOFSolutionBase<double>;
using Values = std::vector<double>;

class SolutionLists : public testing::Test {
 protected:
  // Adds the n-th solution to both lists: every field its own.
  void Add(int n, size_t dof, const std::vector<int>& free) {
    std::vector<Joint> joints(dof);
    Values values;
    for (Joint& joint : joints) {
      joint.foffset = n + 0.1 * static_cast<double>(values.size());
      joint.fmul = 2.0;
      joint.freeind = 0;
      values.push_back(joint.foffset);
    }
    if (dof == 6) six_joints_.push_back(values);
    EXPECT_EQ(list_.AddSolution(joints, free), ordinary_.AddSolution(joints, free));
    EXPECT_EQ(list_.GetNumSolutions(), ordinary_.GetNumSolutions());
  }

  void ExpectVisited() {
    std::vector<Values> visited;
    list_.ForEach([&](const double* q) { visited.emplace_back(q, q + 6); });
    EXPECT_EQ(visited, six_joints_);
  }

  // All that a solver can read of a solution.
  static auto Told(const ikfast::IkSolutionListBase<double>& list, size_t i) {
    Values joints;
    list.GetSolution(i).GetSolution(joints, {0.25});
    return std::pair(joints, list.GetSolution(i).GetFree());
  }

  qal::SolutionList list_;
  ikfast::IkSolutionList<double> ordinary_;
  std::vector<Values> six_joints_;
};

// Lists of up to 20 solutions with one that is kept apart at each place: none, one of five joints,
// one with a free joint. What has been handed out stays where it is.
TEST_F(SolutionLists, AreTheSameToTheSolver) {
  for (int count = 0; count <= 20; ++count) {
    for (int odd_place = 0; odd_place <= 2 * count + 1; ++odd_place) {
      SCOPED_TRACE(testing::Message() << count << ' ' << odd_place);
      list_.Clear();
      list_.AddSolution(std::vector<Joint>(6), {});  // inside, where it was in the list before
      list_.Clear();
      ordinary_.Clear();
      six_joints_.clear();
      for (int n = 0; n < count; ++n) {
        Add(n, n == odd_place / 2 && odd_place % 2 == 0 ? 5 : 6,
            std::vector<int>(n == odd_place / 2 && odd_place % 2 == 1, 3));
      }
      ExpectVisited();
      for (size_t i = 0; i < ordinary_.GetNumSolutions(); ++i) {
        EXPECT_EQ(Told(list_, i), Told(ordinary_, i));
      }
      EXPECT_THROW(list_.GetSolution(static_cast<size_t>(count)), std::runtime_error);
      Add(count, 6, {});
      const auto* first = &list_.GetSolution(0);
      Add(count + 1, 6, {});
      EXPECT_EQ(first, &list_.GetSolution(0));
      ExpectVisited();
    }
  }
}

}  // namespace
