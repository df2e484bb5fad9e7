#ifndef QAL_TESTS_SOLVER_ANSWER_H_
#define QAL_TESTS_SOLVER_ANSWER_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

#include "kinematics/array_solver.h"
#include "kinematics/ikfast.h"

constexpr double kPi = 3.14159265358979323846;
using Joints = std::array<double, 6>;
using Pose = std::array<double, 12>;  // position, then rotation matrix by rows

inline Pose Forward(const Joints& joints) {
  Pose pose;
  ikfast::ComputeFk(joints.data(), &pose[0], &pose[3]);
  return pose;
}

/// NaN when a number is.
template <size_t kCount>
double LargestDifference(const std::array<double, kCount>& a, const std::array<double, kCount>& b) {
  double largest = 0.0;
  for (size_t i = 0; i < kCount; ++i) {
    const double difference = std::fabs(a[i] - b[i]);
    if (difference > largest || std::isnan(difference)) largest = difference;
  }
  return largest;
}

/// The solver's solutions of a pose: up to eight, of six joints in (-pi, pi] that reach it.
/// @throw std::logic_error when they aren't that
inline std::vector<Joints> Solve(const Pose& target, double tolerance) {
  const auto require = [](bool holds, const char* what) {
    if (!holds) throw std::logic_error(what);
  };
  ikfast::IkSolutionList<double> list;
  const bool found = ikfast::ComputeIk(&target[0], &target[3], nullptr, list);
  std::vector<Joints> solutions(list.GetNumSolutions());
  require(found == !solutions.empty() && solutions.size() <= 8, "odd count");
  double array[qal::ArraySolver::kMost][6];
  require(qal_array_solver_1()->compute_ik == &ikfast::ComputeIk, "another solver's array");
  const int in_array = qal_array_solver_1()->inverse(&target[0], &target[3], array);
  require(in_array == static_cast<int>(solutions.size()), "another count in the array");
  for (Joints& solution : solutions) {
    const auto& entry = list.GetSolution(static_cast<size_t>(&solution - &solutions[0]));
    require(entry.GetDOF() == 6 && entry.GetFree().empty(), "not six joints");
    entry.GetSolution(solution.data(), nullptr);
    const double* const same = array[&solution - &solutions[0]];
    require(std::equal(solution.begin(), solution.end(), same), "other joints in the array");
    for (const double q : solution) require(q > -kPi && q <= kPi, "a joint out of (-pi, pi]");
    require(LargestDifference(Forward(solution), target) <= tolerance, "another pose");
  }
  return solutions;
}

#endif  // QAL_TESTS_SOLVER_ANSWER_H_
