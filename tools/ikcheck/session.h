#ifndef QAL_TOOLS_IKCHECK_SESSION_H_
#define QAL_TOOLS_IKCHECK_SESSION_H_

#include <functional>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "exchange.h"
#include "process_state.h"
#include "report.h"
#include "solver.h"

namespace qal::ikcheck {

/// One call of ComputeIk.
struct IkRequest {
  Pose pose;
  std::optional<Joints> from = {};  ///< the joints that the pose was made from
  size_t standing = 0;              ///< entries that the list has beforehand
};

/// The arm that a library should be for.
struct DescribedArm {
  std::string name;
  std::string file;  ///< what messages call it
  std::string kind;  ///< as in io::ArmFile
  std::function<Pose(const Joints&)> forward;
};

struct Options {
  std::string library;
  size_t poses = 20000;
  unsigned seed = 1;
  double timeout_s = 2.0;
  std::optional<DescribedArm> arm = {};
};

/// There is no point in going on; the text says why.
struct GivenUp : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a finding is shown with.
Case CaseOf(const std::string& words, const Joints& joints);
Case CaseOf(const std::string& words, const IkRequest& request);

/// Calls the library under test, in a child process, and judges how each call ends and whether it
/// keeps to the interface. What the answers are worth is for the checks to judge.
class Session {
 public:
  /// Looks at the library's file and loads it.
  /// @param reach as below, as far as it is known
  /// @throw UsageError when it is none or can't be loaded
  Session(const Options& options, Exchange& exchange, double reach = 1.0);

  /// The pose of a joint set; nothing when the call didn't return, or what it gave for finite
  /// joints is no pose.
  std::optional<Pose> Forward(const Joints& joints);
  /// Solutions of a pose.
  /// @throw GivenUp when they can't be read
  IkAnswer Solve(const IkRequest& request);
  /// Calls of the solver that aren't judged one by one.
  /// @param what for `Exchange::NoteCall`
  void Run(const char* what, const std::function<void(const Solver&)>& calls);

  /// What all calls together have done to the process. Judged at the end.
  void JudgeState();

  /// Six joints between -180 and 180 degrees. Each session draws the same ones again.
  Joints RandomJoints();
  std::vector<Joints> RandomJoints(size_t count);
  /// Poses of as many of them, those left out that ComputeFk gives none for.
  std::vector<IkRequest> RandomPoses(size_t count);
  /// A number from -1 to 1.
  double Random() { return range_(engine_); }

  const Options& options;
  const std::vector<std::string> functions;  ///< that the library exports, as its file says
  Report report;
  double reach;  ///< the farthest that the tool comes from the base's origin

 private:
  using CaseMaker = std::function<Case(std::string)>;
  void JudgeEnd(const CallEnd& end, bool finite, const CaseMaker& case_of);
  void JudgeLayout(const IkAnswer& answer, const CaseMaker& case_of);
  void JudgeProcess(const CaseMaker& case_of);

  Exchange& exchange_;
  const ProcessState state_before_ = CurrentProcessState();
  Solver solver_;
  std::mt19937_64 engine_;
  std::uniform_real_distribution<double> range_{-1.0, 1.0};
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SESSION_H_
