#include <limits>

#include "checks.h"

namespace qal::ikcheck {

namespace {

// A pose as the solver takes it apart: three numbers, then nine.
double& Value(Pose& pose, size_t i) {
  return i < 3 ? pose.position.data()[i] : pose.rotation.data()[i - 3];
}

void CheckRefused(Session& session, Finding finding, const std::vector<IkRequest>& requests,
                  Row& row) {
  size_t refused = 0;
  for (const IkRequest& request : requests) {
    const IkAnswer answer = session.Solve(request);
    const bool accepted = answer.returned() && answer.found && answer.added > 0;
    if (!accepted) ++refused;
    session.report.Judge(finding, !accepted,
                         [&] { return CaseOf("ComputeIk returned solutions", request); });
  }
  row.values["poses"] = requests.size();
  row.values["refused"] = refused;
}

}  // namespace

void CheckNonFiniteInput(Session& session, Row& row) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  std::vector<IkRequest> requests;
  for (const double value : {kNan, kInfinity, -kInfinity}) {
    for (const IkRequest& good : session.RandomPoses(10)) {
      for (size_t i = 0; i < 12; ++i) {
        requests.push_back({good.pose});
        Value(requests.back().pose, i) = value;
      }
    }
    for (size_t j = 0; j < 6; ++j) {
      Joints joints = session.RandomJoints();
      joints[j] = value;
      (void)session.Forward(joints);  // has to return; there is no right answer
    }
  }
  CheckRefused(session, Finding::kAcceptsNonFinite, requests, row);
}

void CheckNonRotations(Session& session, Row& row) {
  std::vector<IkRequest> requests;
  for (const IkRequest& request : session.RandomPoses(50)) {
    const Pose& good = request.pose;
    Pose scaled = good;
    Pose sheared = good;
    Pose mirrored = good;
    Pose zero = good;
    scaled.rotation *= 1.001;
    sheared.rotation.col(0).array() += 1e-3;
    mirrored.rotation.col(0) *= -1;
    zero.rotation.setZero();
    for (const Pose& bad : {scaled, sheared, mirrored, zero}) requests.push_back({bad});
  }
  CheckRefused(session, Finding::kAcceptsNonRotation, requests, row);
}

}  // namespace qal::ikcheck
