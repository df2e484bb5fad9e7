#ifndef QAL_TESTS_ROBUSTNESS_OPERATIONS_H_
#define QAL_TESTS_ROBUSTNESS_OPERATIONS_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "byte_input.h"
#include "core/roadpoint.h"

/// All that a call may take, and what it has left.
struct Frame {
  RoadPoint s, e;
  double joints[6];
  double number;
  int whole, limit;
  bool aliased;  ///< reference joints are `s`'s own, a jog's result goes into `s`
  std::vector<RoadPoint> road, array;
  std::optional<int> result;  ///< above 0: success; nothing when the call threw
  bool starved;               ///< the allocation that was to fail has
  std::string fault;          ///< what isn't as documented; empty: all is

  double* Reference() { return aliased ? s.jointpos : joints; }
  float Limit(int i) const { return static_cast<float>(joints[i]); }
};

bool SameBits(const RoadPoint& a, const RoadPoint& b);
bool SameFrames(const Frame& a, const Frame& b);

/// What vectors and arrays hold before a call.
RoadPoint Canary();

/// Beside what an operation writes: the C library has a part in its last bits.
constexpr unsigned kByLibm = 64;

/// An operation, and what it may write; all else in the frame has to stay as it is.
struct Operation {
  std::string group;
  unsigned writes;
  void (*check)(const Frame& before, const Frame& after);  ///< throws when it isn't as documented
  std::string name;
  std::function<int(Frame&)> call;
};

/// Every public operation of `Ikfunc` and of `RoadPoint`.
const std::vector<Operation>& Operations();

/// Calls an operation with arguments and a solver drawn from bytes.
///
/// The solver throws after `most_queries`: no trajectory gets longer, whatever the bytes say.
/// @param fail_at the allocation that fails, the call's first being 1; 0: none
Frame Perform(const Operation& operation, const Bytes& bytes, int most_queries, long fail_at = 0);

#endif  // QAL_TESTS_ROBUSTNESS_OPERATIONS_H_
