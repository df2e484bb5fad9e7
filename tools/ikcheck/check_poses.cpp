#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>

#include "checks.h"
#include "jacobian.h"
#include "measures.h"
#include "pose_judge.h"

namespace qal::ikcheck {

namespace {

void CheckJoints(Session& session, const std::vector<Joints>& joints, Row& row) {
  PoseJudge judge(session);
  judge.JudgeJoints(joints);
  judge.Fill(row);
}

// Small enough that a regular solution of the turned and shifted pose has one of the pose nearby
// it.
constexpr double kNearby = 1e-7;

Pose Nearby(Session& session, const Pose& pose) {
  using Matrix = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;
  const Eigen::Vector3d axis(session.Random(), session.Random(), session.Random());
  Pose nearby = pose;
  Eigen::Map<Matrix>(nearby.rotation) =
      Eigen::Map<const Matrix>(pose.rotation) *
      Eigen::AngleAxisd(kNearby, axis.normalized()).toRotationMatrix();
  for (double& value : nearby.position) value += kNearby * session.reach * session.Random();
  return nearby;
}

// All 24 rotations that take axes to axes.
std::vector<Eigen::Matrix3d> AxisRotations() {
  std::vector<Eigen::Matrix3d> rotations;
  for (int code = 0; code < 6 * 6; ++code) {
    Eigen::Matrix3d rotation = Eigen::Matrix3d::Zero();
    rotation(code % 3, 0) = code % 6 < 3 ? 1 : -1;
    rotation(code / 6 % 3, 1) = code / 6 < 3 ? 1 : -1;
    rotation.col(2) = rotation.col(0).cross(rotation.col(1));
    if (rotation.col(2).norm() > 0.5) rotations.push_back(rotation);
  }
  return rotations;
}

// Positions of the arm's own, in the plane y = 0, and on the base's z axis; as many of each.
std::vector<IkRequest> AxisAlignedPoses(Session& session, size_t positions) {
  std::vector<IkRequest> requests;
  const auto poses = session.Forward(session.RandomJoints(3 * positions));
  for (size_t i = 0; i < poses.size(); ++i) {
    if (poses[i].outcome != Outcome::kReturned) continue;
    Pose pose = poses[i].pose;
    if (i % 3 >= 1) pose.position[1] = 0.0;
    if (i % 3 == 2) pose.position[0] = 0.0;
    for (const Eigen::Matrix3d& rotation : AxisRotations()) {
      for (int k = 0; k < 9; ++k) pose.rotation[k] = rotation(k / 3, k % 3);
      requests.push_back({pose});
    }
  }
  return requests;
}

// Whether a pose has a solution away from singularities.
bool HasRegular(Session& session, const std::vector<Joints>& solutions) {
  const std::vector<double> values = SmallestSingularValues(session, solutions);
  return std::any_of(values.begin(), values.end(),
                     [](double smallest) { return smallest >= kRegularValue; });
}

}  // namespace

void CheckRandomPoses(Session& session, Row& row) {
  constexpr size_t kBlock = 2000;
  PoseJudge judge(session);
  for (size_t left = session.options.poses; left > 0 && session.lost() == 0;) {
    const size_t count = std::min(left, kBlock);
    judge.JudgeJoints(session.RandomJoints(count));
    left -= count;
  }
  judge.Fill(row);
}

void CheckQuarterTurns(Session& session, Row& row) {
  std::vector<Joints> sets;
  constexpr size_t kAll = 4 * 4 * 4 * 4 * 4 * 4;
  const size_t count = std::min(kAll, session.options.poses);
  for (size_t i = 0; i < count; ++i) {
    Joints joints;
    size_t digits = i * kAll / count;
    for (double& joint : joints) {
      joint = (static_cast<double>(digits % 4) - 1) * (kPi / 2);
      digits /= 4;
    }
    sets.push_back(joints);
  }
  CheckJoints(session, sets, row);
}

void CheckEighthTurns(Session& session, Row& row) {
  std::vector<Joints> sets = session.RandomJoints(std::min<size_t>(4000, session.options.poses));
  for (Joints& joints : sets) {
    for (double& joint : joints) joint = std::round(joint / (kPi / 4)) * (kPi / 4);
  }
  CheckJoints(session, sets, row);
}

void CheckSingularPoses(Session& session, Row& row) {
  const size_t starts = std::clamp<size_t>(session.options.poses / 1000, 4, 16);
  session.singularities = FindSingularities(session, starts);
  std::vector<Joints> sets;
  for (const Singularity& at : session.singularities) sets.push_back(at.joints);
  PoseJudge judge(session);
  judge.JudgeJoints(sets, true);
  judge.Fill(row);
}

// Beside those of the check before.
void CheckNearSingularPoses(Session& session, Row& row) {
  std::vector<Joints> sets;
  for (const Singularity& at : session.singularities) {
    for (double off = 1e-12; off < 2e-4; off *= 10) {
      for (const double step : {off, -off}) {
        sets.push_back(at.joints);
        sets.back()[at.joint] += step;
      }
    }
  }
  CheckJoints(session, sets, row);
}

// Nothing says which of these poses the arm reaches; but it reaches those next to which it has a
// regular solution.
void CheckAxisAlignedTool(Session& session, Row& row) {
  const std::vector<IkRequest> requests = AxisAlignedPoses(session, 20);
  std::vector<IkRequest> neighbours;
  for (const IkRequest& request : requests) {
    neighbours.push_back({Nearby(session, request.pose)});
  }
  PoseJudge judge(session);
  const auto results = judge.JudgePoses(requests);
  const auto nearby = PoseJudge(session).JudgePoses(neighbours);
  for (size_t i = 0; i < requests.size(); ++i) {
    if (!results[i].answered || !nearby[i].solved) continue;
    const bool missing = !results[i].solved && HasRegular(session, nearby[i].solutions);
    session.report.Judge(Finding::kUnsolved, !missing, [&] {
      return CaseOf("no solution, but a regular one 1e-7 away", requests[i]);
    });
  }
  judge.Fill(row);
}

// In a box that holds all that the arm reaches, and much that it doesn't.
void CheckOutOfReach(Session& session, Row& row) {
  std::vector<IkRequest> requests;
  for (const FkAnswer& answer :
       session.Forward(session.RandomJoints(std::min<size_t>(2000, session.options.poses)))) {
    if (answer.outcome != Outcome::kReturned) continue;
    IkRequest request = {answer.pose};
    for (double& value : request.pose.position) value = 1.1 * session.reach * session.Random();
    requests.push_back(request);
  }
  PoseJudge judge(session);
  (void)judge.JudgePoses(requests);
  judge.Fill(row);
}

}  // namespace qal::ikcheck
