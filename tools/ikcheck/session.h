#ifndef QAL_TOOLS_IKCHECK_SESSION_H_
#define QAL_TOOLS_IKCHECK_SESSION_H_

#include <functional>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "report.h"
#include "sandbox.h"
#include "shared_array.h"
#include "solver.h"

namespace qal::ikcheck {

/// One call of ComputeIk.
struct IkRequest {
  Pose pose;
  std::optional<Joints> from = {};  ///< the joints that the pose was made from
  size_t standing = 0;              ///< entries that the list has beforehand
};

/// A joint set that is singular, and the joint that leads away from there.
struct Singularity {
  Joints joints;
  size_t joint;
};

/// The arm that a library should be for.
struct DescribedArm {
  std::string name;
  std::string file;  ///< what messages call it
  std::string kind;  ///< as in io::ArmFile
  std::function<Pose(const Joints&)> forward;
};

/// There is no point in going on; the text says why.
struct GivenUp : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a finding is shown with.
Case CaseOf(const std::string& words, const Joints& joints);
Case CaseOf(const std::string& words, const IkRequest& request);

/// Calls the library under test in a child process and judges how each call ends and whether it
/// keeps to the interface. What the answers are worth is for the checks to judge.
class Session {
 public:
  struct Options {
    std::string library;
    size_t poses = 20000;
    unsigned seed = 1;
    double timeout_s = 2.0;
    std::optional<DescribedArm> arm = {};
  };

  Session(const Options& options, Report& report);

  /// Poses of joint sets, in one child as long as it lives.
  /// @throw GivenUp after too many calls that didn't return
  SharedArray<FkAnswer> Forward(const std::vector<Joints>& joints);
  /// Solutions of poses, likewise.
  /// @throw GivenUp also when the solutions can't be read
  SharedArray<IkAnswer> Solve(const std::vector<IkRequest>& requests);
  /// Steps of any kind. When too many don't return, the rest is left out.
  /// @param case_of what is found of a step is shown with this
  /// @throw UsageError when the library can't be loaded
  void Run(size_t count, const std::function<void(const Solver&, size_t)>& step,
           const std::function<Case(size_t, std::string)>& case_of);

  /// Six joints between -180 and 180 degrees.
  Joints RandomJoints();
  std::vector<Joints> RandomJoints(size_t count);
  /// A number from -1 to 1.
  double Random() { return range_(engine_); }

  /// Steps that haven't returned since `StartCheck`.
  size_t lost() const { return lost_; }
  void StartCheck() { lost_ = 0; }

  const Options options;
  Report& report;
  double reach = 1.0;  ///< the farthest that the tool comes from the base's origin
  std::vector<Singularity> singularities;  ///< as far as they have been looked for

 private:
  template <typename Answer>
  void JudgeEnds(const SharedArray<Answer>& answers, const std::function<bool(size_t)>& finite,
                 const std::function<Case(size_t, std::string)>& case_of);
  void JudgePose(const Joints& joints, FkAnswer& answer);
  void JudgeLayout(const IkRequest& request, const IkAnswer& answer);
  void JudgeContract(const IkRequest& request, const IkAnswer& answer);

  Library library_;
  Sandbox sandbox_;
  std::mt19937_64 engine_;
  std::uniform_real_distribution<double> range_{-1.0, 1.0};
  size_t lost_ = 0;
  size_t hangs_ = 0;
};

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_SESSION_H_
