#include "kinematics/ikfast.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

using Joint = ikfast::IkSingleDOFSolutionBase<double>;
using SolutionBase = ikfast::IkSolutionBase<double>;
using Solution = ikfast::IkSolution<double>;
using ListBase = ikfast::IkSolutionListBase<double>;
using List = ikfast::IkSolutionList<double>;
using Joints = std::vector<Joint>;
using Values = std::vector<double>;

// The layout that solvers were generated against.
static_assert(sizeof(Joint) == 24 && !std::is_polymorphic_v<Joint>);
static_assert(offsetof(Joint, fmul) == 0 && offsetof(Joint, foffset) == 8);
static_assert(offsetof(Joint, freeind) == 16 && offsetof(Joint, jointtype) == 17);
static_assert(offsetof(Joint, maxsolutions) == 18 && offsetof(Joint, indices) == 19);
static_assert(sizeof(Solution) == 56 && sizeof(List) == 32);

// A pointer to a virtual member function is its place in the table, in bytes, plus one.
template <typename Function>
size_t Slot(Function function) {
  size_t place;
  std::memcpy(&place, &function, sizeof(place));
  return (place - 1) / sizeof(void*);
}

TEST(SolverInterface, KeepsVirtualSlotsAndMembersInPlace) {
  using Read = void (SolutionBase::*)(double*, const double*) const;
  const std::vector<size_t> solution = {
      Slot<Read>(&SolutionBase::GetSolution), Slot(&SolutionBase::GetFree),
      Slot(&SolutionBase::GetDOF), Slot(&Solution::Validate), Slot(&Solution::GetSolutionIndices)};
  EXPECT_EQ(solution, (std::vector<size_t>{2, 4, 5, 6, 7}));
  const std::vector<size_t> list = {Slot(&ListBase::AddSolution), Slot(&ListBase::GetSolution),
                                    Slot(&ListBase::GetNumSolutions), Slot(&ListBase::Clear)};
  EXPECT_EQ(list, (std::vector<size_t>{2, 3, 4, 5}));
  const Solution one;
  const char* start = reinterpret_cast<const char*>(&one);
  EXPECT_EQ(reinterpret_cast<const char*>(&one._vbasesol) - start, 8);
  EXPECT_EQ(reinterpret_cast<const char*>(&one._vfree) - start, 32);
}

// A free parameter that isn't given counts as 0; with 0.1, 3 + 2 * 0.1 is taken back by a turn.
TEST(SolverInterface, HandsBackWhatASolverAdds) {
  Joints joints(1);
  joints[0].foffset = 3.0;
  joints[0].fmul = 2.0;
  joints[0].freeind = 0;
  List list;
  EXPECT_EQ(list.AddSolution(Joints(6), {}), 0u);
  EXPECT_EQ(list.AddSolution(joints, {4}), 1u);
  Values values;
  list.GetSolution(1).GetSolution(values, {});
  EXPECT_EQ(values, Values{3.0});
  list.GetSolution(1).GetSolution(values, {0.1});
  EXPECT_EQ(values, Values{3.2 - 2 * 3.14159265358979323846});
  try {
    FAIL() << &list.GetSolution(2);
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "GetSolution index is invalid");
  }
}

}  // namespace
