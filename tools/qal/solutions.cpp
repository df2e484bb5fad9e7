#include "solutions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "../../io/error.h"
#include "../../io/messages.h"
#include "../../src/kinematics/ikfunc.h"
#include "../../src/kinematics/solve/arm_numbers.h"
#include "../../src/kinematics/solve/solution_choice.h"
#include "../../src/kinematics/solve/solver_query.h"
#include "agreement.h"
#include "output.h"
#include "solver_check.h"

namespace qal::tools {

using namespace io;

namespace {

std::string Verdict(const Judgement& judgement, const Joints& joints, const double* reference,
                    double bound_rad, const Units& units) {
  const auto angle = [&units](double rad) {
    return fmt::format("{:.6g} {}", units.Angle(rad), units.angle());
  };
  const int j = judgement.joint;
  switch (judgement.refusal) {
    case Refusal::kNone:
      break;
    case Refusal::kJointRange: {
      const double value = joints[static_cast<size_t>(j)];
      return fmt::format("joint {} at {}, {} outside its range of +-{}", j + 1, angle(value),
                         angle(std::fabs(value) - kJointRangeRad), angle(kJointRangeRad));
    }
    case Refusal::kStepBound: {
      const double move = std::fabs(joints[static_cast<size_t>(j)] - reference[j]);
      return fmt::format("joint {} moves {}, {} over the step bound of {}", j + 1, angle(move),
                         angle(move - bound_rad), angle(bound_rad));
    }
  }
  return "admissible";
}

}  // namespace

std::vector<Solution> FindSolutions(const RoadPoint& target, const double* reference,
                                    double bound_rad, const Units& units) {
  SolutionList list;
  std::vector<Solution> solutions;
  double eerot[9];
  double eetrans[3];
  EncodePose(target, eerot, eetrans);
  if (!ikfast::ComputeIk(eetrans, eerot, nullptr, list)) {
    if (list.GetNumSolutions() > 0) BlameSolver("gives solutions and says that there are none");
    return solutions;
  }
  RoadPoint nearest;
  const bool found_nearest =
      WriteNearest(list, reference, bound_rad, kReferenceNumbers.range, nearest);
  const size_t count = list.GetNumSolutions();
  for (size_t i = 0; i < count; ++i) {
    const ikfast::IkSolutionBase<double>& found = list.GetSolution(i);
    if (found.GetDOF() != kJointCount) continue;  // passed over by the library as well
    Solution solution{};
    found.GetSolution(solution.joints_rad.data(), nullptr);
    for (int j = 0; j < kJointCount; ++j) {
      solution.distance_rad +=
          std::fabs(solution.joints_rad[static_cast<size_t>(j)] - reference[j]);
    }
    const Judgement judgement =
        Judge(solution.joints_rad.data(), reference, bound_rad, kReferenceNumbers.range);
    solution.admissible = judgement.refusal == Refusal::kNone;
    solution.verdict = Verdict(judgement, solution.joints_rad, reference, bound_rad, units);
    solution.chosen = found_nearest && std::equal(nearest.jointpos, nearest.jointpos + kJointCount,
                                                  solution.joints_rad.begin());
    solutions.push_back(solution);
  }
  if (solutions.empty()) {
    BlameSolver(count == 0 ? "says that there are solutions and gives none"
                           : fmt::format("gives solutions of {} joints, 6 are expected",
                                         list.GetSolution(0).GetDOF()));
  }
  return solutions;
}

std::string WhyUnsolved(const RoadPoint& target, const double* reference, double bound_rad,
                        const Units& units) {
  const std::vector<Solution> solutions = FindSolutions(target, reference, bound_rad, units);
  if (solutions.empty()) return "out of reach, the solver finds no joints for it";
  const auto nearest = std::min_element(
      solutions.begin(), solutions.end(),
      [](const Solution& a, const Solution& b) { return a.distance_rad < b.distance_rad; });
  return fmt::format("none of the {} solutions is admissible; the nearest: {}", solutions.size(),
                     nearest->verdict);
}

RoadPoint SolveNear(RoadPoint target, const RoadPoint& reference, double bound_rad,
                    const std::string& place, const Units& units) {
  target.ik_flag = false;
  RoadPoint solved = target;
  RoadPoint near = reference;  // the library wants it writable
  const bool found = bound_rad < kNoStepBound ? Ikfunc::ArmJointIk(solved, near.jointpos, bound_rad)
                                              : Ikfunc::ArmIk(solved, near.jointpos);
  if (!found) {
    throw Failure(fmt::format("no solution {}: {}", place,
                              WhyUnsolved(target, near.jointpos, bound_rad, units)));
  }
  // The reference joints have this pose already; the library then writes nothing.
  if (!solved.ik_flag) std::copy(near.jointpos, near.jointpos + kJointCount, solved.jointpos);
  solved.ik_flag = true;
  const Gap gap = GapAt(solved);
  const std::string off = fmt::format("{:.3g} {} and {:.3g} {} off", units.Length(gap.position_m),
                                      units.length(), units.Angle(gap.angle_rad), units.angle());
  if (!gap.Reaches()) {
    throw Failure(
        fmt::format("no solution {}: out of reach; the library falls back to joints "
                    "that are {}",
                    place, off));
  }
  // Rounding stays far below, the library's nudge of 1e-5 rad far above.
  constexpr double kExactM = 1e-7;
  if (gap.position_m > kExactM) {
    Note(fmt::format("no exact solution {}: the joints are {}", place, off));
  }
  return solved;
}

}  // namespace qal::tools
