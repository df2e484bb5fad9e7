#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kinematics/solve/solution_list.h"

namespace {

using Joint = ikfast::IkSingleDOFSolutionBase<double>;
using SolutionBase = ikfast::IkSolutionBase<double>;
using Solution = ikfast::IkSolution<double>;
using ListBase = ikfast::IkSolutionListBase<double>;
using Values = std::vector<double>;

// The layout that solvers were generated against.
static_assert(sizeof(Joint) == 24 && offsetof(Joint, fmul) == 0 && offsetof(Joint, foffset) == 8);
static_assert(offsetof(Joint, freeind) == 16 && offsetof(Joint, maxsolutions) == 18);
static_assert(offsetof(Joint, jointtype) == 17 && offsetof(Joint, indices) == 19);
static_assert(sizeof(Solution) == 56 && sizeof(ikfast::IkSolutionList<double>) == 32);

// A pointer to a virtual member function is its place in the table, in bytes, plus one.
template <typename Function>
size_t Slot(Function function) {
  size_t place;
  std::memcpy(&place, &function, sizeof(place));
  return (place - 1) / sizeof(void*);
}

TEST(SolverInterface, KeepsVirtualSlotsAndMembersInPlace) {
  using Read = void (SolutionBase::*)(double*, const double*) const;
  EXPECT_EQ(Slot<Read>(&SolutionBase::GetSolution), 2u);
  EXPECT_EQ(Slot(&SolutionBase::GetFree), 4u);
  EXPECT_EQ(Slot(&SolutionBase::GetDOF), 5u);
  EXPECT_EQ(Slot(&Solution::Validate), 6u);
  EXPECT_EQ(Slot(&Solution::GetSolutionIndices), 7u);
  EXPECT_EQ(Slot(&ListBase::AddSolution), 2u);
  EXPECT_EQ(Slot(&ListBase::GetSolution), 3u);
  EXPECT_EQ(Slot(&ListBase::GetNumSolutions), 4u);
  EXPECT_EQ(Slot(&ListBase::Clear), 5u);
  const Solution one;
  EXPECT_EQ(static_cast<const void*>(&one._vbasesol),
            reinterpret_cast<const void* const*>(&one) + 1);
}

// A free parameter that isn't given counts as 0; with 0.1, 3 + 2 * 0.1 is taken back by a turn.
TEST(SolverInterface, HandsBackWhatASolverAdds) {
  Joint joint;
  joint.foffset = 3.0;
  joint.fmul = 2.0;
  joint.freeind = 0;
  joint.maxsolutions = 4;
  joint.indices[0] = 1;
  joint.indices[1] = 3;
  Joint uncounted = joint;
  uncounted.maxsolutions = 0xFF;
  const Solution solution({joint, uncounted, joint}, {4});
  Values values;
  solution.GetSolution(values, {});
  EXPECT_EQ(values, Values(3, 3.0));
  solution.GetSolution(values, {0.1});
  EXPECT_EQ(values, Values(3, 3.2 - 2 * M_PI));
  // Two joints have come from branches 1 and 3 of four: 1 + 4 * 1, 1 + 4 * 3, and so on.
  std::vector<unsigned int> branches;
  solution.GetSolutionIndices(branches);
  EXPECT_EQ(branches, (std::vector<unsigned int>{5, 13, 7, 15}));
  EXPECT_THROW(solution.Validate(), std::runtime_error);
  joint.maxsolutions = 0;
  EXPECT_NO_THROW(Solution({joint}, {}).Validate());
  EXPECT_THROW(ikfast::IkSolutionList<double>().GetSolution(0), std::runtime_error);
}

// All that a solver can read of a solution.
auto Told(const ListBase& list, size_t i) {
  Values joints;
  list.GetSolution(i).GetSolution(joints, {0.25});
  return std::pair(joints, list.GetSolution(i).GetFree());
}

// Lists of up to 20 solutions with one that is kept apart at each place: one of five joints, or one
// with a free joint. What has been handed out stays where it is.
TEST(SolutionLists, AreTheSameToTheSolver) {
  qal::SolutionList list;
  for (size_t odd = 0; odd < 40; ++odd) {
    SCOPED_TRACE(odd);
    list.Clear();
    ikfast::IkSolutionList<double> ordinary;
    std::vector<Values> six_joints;
    const void* first = nullptr;
    for (size_t n = 0; n < 20; ++n) {
      std::vector<Joint> joints(n == odd / 2 && odd % 2 == 0 ? 5 : 6);
      for (Joint& joint : joints) joint.fmul = joint.foffset = 0.1 * static_cast<double>(n);
      joints[4].freeind = 0;
      const std::vector<int> free(n == odd / 2 && odd % 2 == 1, 3);
      EXPECT_EQ(list.AddSolution(joints, free), ordinary.AddSolution(joints, free));
      if (joints.size() == 6) six_joints.push_back(Values(6, joints[0].foffset));
      if (n == 0) first = &list.GetSolution(0);
    }
    EXPECT_EQ(first, &list.GetSolution(0));
    std::vector<Values> visited;
    list.ForEach([&](const double* q) { visited.emplace_back(q, q + 6); });
    EXPECT_EQ(visited, six_joints);
    for (size_t i = 0; i < 20; ++i) EXPECT_EQ(Told(list, i), Told(ordinary, i));
    EXPECT_THROW(list.GetSolution(20), std::runtime_error);
  }
}

}  // namespace
