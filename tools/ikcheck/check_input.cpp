#include <limits>

#include "checks.h"
#include "pose_judge.h"

namespace qal::ikcheck {

namespace {

// A pose as the solver takes it apart: three numbers, then nine.
double& Value(Pose& pose, size_t i) { return i < 3 ? pose.position[i] : pose.rotation[i - 3]; }

// Poses that the arm reaches.
std::vector<Pose> GoodPoses(Session& session, size_t count) {
  std::vector<Pose> poses;
  for (const FkAnswer& answer : session.Forward(session.RandomJoints(count))) {
    if (answer.outcome == Outcome::kReturned) poses.push_back(answer.pose);
  }
  return poses;
}

void CheckRefused(Session& session, Finding finding, const std::vector<IkRequest>& requests,
                  Row& row) {
  const auto answers = session.Solve(requests);
  size_t poses = 0;
  size_t refused = 0;
  for (size_t i = 0; i < answers.size(); ++i) {
    const Outcome outcome = answers[i].outcome;
    if (outcome != Outcome::kReturned && outcome != Outcome::kThrew) continue;
    const bool accepted = outcome == Outcome::kReturned && answers[i].found && answers[i].added > 0;
    ++poses;
    if (!accepted) ++refused;
    session.report.Judge(finding, !accepted,
                         [&] { return CaseOf("ComputeIk returned solutions", requests[i]); });
  }
  row.values["poses"] = poses;
  row.values["refused"] = refused;
}

}  // namespace

void CheckNonFiniteInput(Session& session, Row& row) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  std::vector<IkRequest> requests;
  std::vector<Joints> sets;
  for (const double value : {kNan, kInfinity, -kInfinity}) {
    for (const Pose& good : GoodPoses(session, 10)) {
      for (size_t i = 0; i < 12; ++i) {
        requests.push_back({good});
        Value(requests.back().pose, i) = value;
      }
    }
    for (size_t j = 0; j < 6; ++j) {
      sets.push_back(session.RandomJoints());
      sets.back()[j] = value;
    }
  }
  // It has to return; there is no right answer.
  (void)session.Forward(sets);
  CheckRefused(session, Finding::kAcceptsNonFinite, requests, row);
}

void CheckNonRotations(Session& session, Row& row) {
  std::vector<IkRequest> requests;
  for (const Pose& good : GoodPoses(session, 50)) {
    Pose scaled = good;
    Pose sheared = good;
    Pose mirrored = good;
    Pose zero = good;
    for (double& element : scaled.rotation) element *= 1.001;
    for (size_t i = 0; i < 9; i += 3) {
      sheared.rotation[i] += 1e-3;
      mirrored.rotation[i] *= -1;
    }
    for (double& element : zero.rotation) element = 0.0;
    for (const Pose& bad : {scaled, sheared, mirrored, zero}) requests.push_back({bad});
  }
  CheckRefused(session, Finding::kAcceptsNonRotation, requests, row);
}

}  // namespace qal::ikcheck
