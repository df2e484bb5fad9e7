#ifndef QAL_TOOLS_QAL_SOLUTIONS_H_
#define QAL_TOOLS_QAL_SOLUTIONS_H_

#include <string>
#include <vector>

#include "../../src/core/roadpoint.h"
#include "arguments.h"

namespace qal::tools {

/// One solution of a pose, judged as the library judges it.
struct Solution {
  Joints joints_rad;
  double distance_rad;  // sum of the absolute differences to the reference joints
  bool chosen;          // the nearest admissible one
  bool admissible;
  std::string verdict;  // "admissible", or which joint breaks which bound and by how much
};

/// Every solution that the solver gives for a pose, in its order.
/// @param bound_rad how far a joint may be from its reference; infinite: any distance
std::vector<Solution> FindSolutions(const RoadPoint& target, const double* reference,
                                    double bound_rad, const Units& units);

/// Why a pose has no answer: the solver finds nothing, or what keeps the nearest solution out.
std::string WhyUnsolved(const RoadPoint& target, const double* reference, double bound_rad,
                        const Units& units);

/// The library's answer: `target` with the joints nearest `reference`, which has joints and pose.
/// Says on standard error when only a pose next to it has a solution.
/// @param place where this is, for messages: "at POSE"
/// @throw Failure when there is no solution, or the library holds the joints of some other pose
RoadPoint SolveNear(RoadPoint target, const RoadPoint& reference, double bound_rad,
                    const std::string& place, const Units& units);

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_SOLUTIONS_H_
