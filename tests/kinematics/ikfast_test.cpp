#include "kinematics/ikfast.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

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

// A free parameter that isn't given counts as 0; with 0.1, 3 + 2 * 0.1 is taken back by a turn, and
// with -4, 3 - 2 * 4 on by one.
TEST(SolverInterface, HandsBackWhatASolverAdds) {
  Joint joint;
  joint.foffset = 3.0;
  joint.fmul = 2.0;
  joint.freeind = 0;
  const Solution solution({joint}, {4});
  Values values;
  solution.GetSolution(values, {});
  EXPECT_EQ(values, Values{3.0});
  solution.GetSolution(values, {0.1});
  EXPECT_EQ(values, Values{3.2 - 2 * M_PI});
  solution.GetSolution(values, {-4.0});
  EXPECT_EQ(values, Values{-5.0 + 2 * M_PI});
  // Each joint has come from branches 1 and 3 of four: 1 + 4 * 1, 1 + 4 * 3, 3 + 4 * 1, 3 + 4 * 3.
  joint.maxsolutions = 4;
  joint.indices[0] = 1;
  joint.indices[1] = 3;
  std::vector<unsigned int> branches;
  Solution({joint, joint, Joint()}, {}).GetSolutionIndices(branches);
  EXPECT_EQ(branches, (std::vector<unsigned int>{5, 13, 7, 15}));
  // Without counted branches a joint adds nothing; nor does an index that isn't set.
  Joint uncounted = joint;
  uncounted.maxsolutions = 0xFF;
  Joint second = joint;
  second.indices[0] = 0xFF;
  Solution({uncounted, second}, {}).GetSolutionIndices(branches);
  EXPECT_EQ(branches, (std::vector<unsigned int>{0, 3}));
  Joint none = joint;
  none.maxsolutions = 0;
  EXPECT_NO_THROW(Solution({joint, second, none}, {}).Validate());
  second = joint;
  second.indices[1] = 0xFF;
  Solution({second}, {}).GetSolutionIndices(branches);
  EXPECT_EQ(branches, std::vector<unsigned int>{1});
  for (const int too_few : {0xFF, 3}) {
    joint.maxsolutions = static_cast<unsigned char>(too_few);
    EXPECT_THROW(Solution({joint}, {}).Validate(), std::runtime_error);
  }
  try {
    FAIL() << &ikfast::IkSolutionList<double>().GetSolution(0);
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "GetSolution index is invalid");
  }
}

}  // namespace
