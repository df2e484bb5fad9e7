#include "kinematics/solve/solution_list.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Joint = ikfast::IkSingleDOFSolutionBase<double>;
using Ordinary = ikfast::IkSolutionList<double>;
using qal::SolutionList;

// The n-th solution: of `dof` joints, every field its own.
std::vector<Joint> Entry(int n, size_t dof) {
  std::vector<Joint> joints(dof);
  for (size_t j = 0; j < dof; ++j) {
    joints[j].foffset = n + 0.1 * static_cast<double>(j);
    joints[j].fmul = 2.0;
    joints[j].freeind = 0;
    joints[j].maxsolutions = 16;
    joints[j].indices[0] = static_cast<unsigned char>(n % 16);
  }
  return joints;
}

// All that a solver can ask of a list.
std::string Told(const ikfast::IkSolutionListBase<double>& list) {
  std::string text;
  for (size_t i = 0; i < list.GetNumSolutions(); ++i) {
    const auto& solution = dynamic_cast<const ikfast::IkSolution<double>&>(list.GetSolution(i));
    std::vector<double> joints;
    std::vector<unsigned int> branches;
    solution.GetSolution(joints, {0.25});
    solution.GetSolutionIndices(branches);
    text += testing::PrintToString(joints) + testing::PrintToString(branches) +
            testing::PrintToString(solution.GetFree()) + '\n';
  }
  return text;
}

std::vector<std::array<double, 6>> Visited(const SolutionList& list) {
  std::vector<std::array<double, 6>> all;
  list.ForEach([&](const double* q) { all.push_back({q[0], q[1], q[2], q[3], q[4], q[5]}); });
  return all;
}

// Lists of up to 20 solutions with one that is kept apart at each place: none, one of five joints,
// one with a free joint.
TEST(SolutionList, IsAnOrdinaryListToTheSolver) {
  for (int count = 0; count <= 20; ++count) {
    for (int odd_place = 0; odd_place <= count; ++odd_place) {
      for (const bool free : {false, true}) {
        SCOPED_TRACE(testing::Message() << count << ' ' << odd_place << ' ' << free);
        SolutionList list;
        Ordinary ordinary;
        std::vector<std::array<double, 6>> six_joints;
        for (int n = 0; n < count; ++n) {
          const bool odd = n == odd_place;
          const std::vector<Joint> entry = Entry(n, odd && !free ? 5 : 6);
          const std::vector<int> no_or_free(odd && free ? 1 : 0, 3);
          EXPECT_EQ(list.AddSolution(entry, no_or_free), ordinary.AddSolution(entry, no_or_free));
          EXPECT_EQ(list.GetNumSolutions(), ordinary.GetNumSolutions());
          if (entry.size() < 6) continue;
          auto& joints = six_joints.emplace_back();
          for (size_t j = 0; j < 6; ++j) joints[j] = entry[j].foffset;
        }
        EXPECT_EQ(Visited(list), six_joints);
        EXPECT_EQ(Told(list), Told(ordinary));
        EXPECT_EQ(Visited(list), six_joints);  // also once it has been read by index
      }
    }
  }
}

TEST(SolutionList, StartsAnewWhenCleared) {
  for (const int count : {3, 12}) {  // inside and in the inherited list
    SolutionList list;
    for (int n = 0; n < count; ++n) list.AddSolution(Entry(n, 6), {});
    list.Clear();
    EXPECT_EQ(list.GetNumSolutions(), 0u);
    EXPECT_THROW(list.GetSolution(0), std::runtime_error);
    EXPECT_EQ(list.AddSolution(Entry(7, 6), {}), 0u);
    ASSERT_EQ(Visited(list).size(), 1u);
    EXPECT_EQ(Visited(list)[0][0], 7.0);
  }
}

// The first solution's address stays good while more are added.
TEST(SolutionList, KeepsWhatItHasHandedOut) {
  SolutionList list;
  list.AddSolution(Entry(1, 6), {});
  const ikfast::IkSolutionBase<double>& first = list.GetSolution(0);
  for (int n = 2; n < 12; ++n) list.AddSolution(Entry(n, 6), {});
  EXPECT_EQ(&first, &list.GetSolution(0));
}

}  // namespace
