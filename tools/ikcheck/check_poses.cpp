#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>

#include "checks.h"
#include "jacobian.h"
#include "measures.h"
#include "pose_judge.h"

namespace qal::ikcheck {

namespace {

void CheckJoints(Session& session, const std::vector<Joints>& sets, Row& row,
                 bool self_motion = false) {
  PoseJudge judge(session);
  for (const Joints& joints : sets) judge.JudgeJoints(joints, self_motion);
  judge.Fill(row);
}

// Small enough that a regular solution of the turned and shifted pose has one of the pose nearby
// it.
constexpr double kNearby = 1e-7;

Pose Nearby(Session& session, const Pose& pose) {
  const auto random = [&] {
    return Eigen::Vector3d{session.Random(), session.Random(), session.Random()};  // in this order
  };
  const Eigen::AngleAxisd turn(kNearby, random().normalized());
  return {pose.position + kNearby * session.reach * random(),
          pose.rotation * turn.toRotationMatrix()};
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
  for (const IkRequest& from : session.RandomPoses(3 * positions)) {
    Pose pose = from.pose;
    const size_t kind = requests.size() / 24 % 3;
    if (kind >= 1) pose.position[1] = 0.0;
    if (kind == 2) pose.position[0] = 0.0;
    for (const Eigen::Matrix3d& rotation : AxisRotations()) {
      pose.rotation = rotation;
      requests.push_back({pose});
    }
  }
  return requests;
}

// Joint sets that are singular, the same ones for each check.
std::vector<Singularity> Singularities(Session& session) {
  return FindSingularities(session, std::clamp<size_t>(session.options.poses / 1000, 4, 16));
}

}  // namespace

void CheckRandomPoses(Session& session, Row& row) {
  PoseJudge judge(session);
  for (size_t i = 0; i < session.options.poses; ++i) judge.JudgeJoints(session.RandomJoints());
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
  std::vector<Joints> sets;
  for (const Singularity& at : Singularities(session)) sets.push_back(at.joints);
  CheckJoints(session, sets, row, true);
}

// Beside those of the check before.
void CheckNearSingularPoses(Session& session, Row& row) {
  std::vector<Joints> sets;
  for (const Singularity& at : Singularities(session)) {
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
  PoseJudge judge(session);
  PoseJudge nearby_judge(session);
  for (const IkRequest& request : AxisAlignedPoses(session, 20)) {
    const auto result = judge.JudgePose(request);
    const auto nearby = nearby_judge.JudgePose({Nearby(session, request.pose)});
    if (!result.answered || !nearby.solved) continue;
    const bool missing =
        !result.solved &&
        std::any_of(nearby.solutions.begin(), nearby.solutions.end(), [&](const Joints& joints) {
          return SmallestSingularValue(session, joints) >= kRegularValue;
        });
    session.report.Judge(Finding::kUnsolved, !missing, [&] {
      return CaseOf("no solution, but a regular one 1e-7 away", request);
    });
  }
  judge.Fill(row);
}

// In a box that holds all that the arm reaches, and much that it doesn't.
void CheckOutOfReach(Session& session, Row& row) {
  PoseJudge judge(session);
  for (IkRequest& request : session.RandomPoses(std::min<size_t>(2000, session.options.poses))) {
    request.from.reset();
    for (double& value : request.pose.position) value = 1.1 * session.reach * session.Random();
    (void)judge.JudgePose(request);
  }
  judge.Fill(row);
}

}  // namespace qal::ikcheck
