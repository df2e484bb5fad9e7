// A small pick and place of the reference arm: a joint move to above the part, a straight line down
// to it, the line back up, a joint move home. Writes one trajectory: 02_pick_and_place FILE.csv

#include <kinematics/ikfunc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "../io/files.h"
#include "../io/trajectory_csv.h"

namespace {

using Road = std::vector<RoadPoint>;

constexpr double kCycleS = 0.005;
constexpr double kPartM[3] = {0.42, 0.25, 0.10};
// Above the part. At the line's speed this is ramps of 0.0328 m, 272 whole cruise steps of 0.0008
// m, and one unit of 0.00002 m as the jump to the end: a longer one would jerk there.
constexpr double kClearanceM = 0.25042;
constexpr int kLineSpeed = 40;            // units of 2e-5 m per cycle: 0.16 m/s
constexpr int kJointSpeedPercent = 30;    // of 3000 rpm at the motors
constexpr int kJointAcceleration = 5000;  // [rpm/s] at the motors

RoadPoint AtJoints(const std::vector<double>& joints) {
  RoadPoint point;
  std::copy(joints.begin(), joints.end(), point.jointpos);
  if (!Ikfunc::ArmFk(point)) throw std::runtime_error("home has no pose");
  return point;
}

// Solves `point` for the joints nearest `from`'s.
RoadPoint Solved(RoadPoint point, RoadPoint from) {
  if (!Ikfunc::ArmIk(point, from.jointpos)) throw std::runtime_error("out of reach");
  return point;
}

void AppendJointMove(const RoadPoint& from, const RoadPoint& to, Road& road) {
  Road move;
  if (!Ikfunc::CountRunCurvelLineToBuffer(from, to, &move, kJointSpeedPercent,
                                          kJointAcceleration)) {
    throw std::runtime_error("the joint move has no plan");
  }
  road.insert(road.end(), move.begin(), move.end());
}

void AppendLine(const RoadPoint& from, const RoadPoint& to, Road& road) {
  Road line;
  // A line too short for its ramps is true as well, and leaves the vector empty.
  if (!Ikfunc::CountLineToBuffer(from, to, &line, kLineSpeed) || line.empty()) {
    throw std::runtime_error("the line has no plan");
  }
  road.insert(road.end(), line.begin(), line.end());
}

// Says what a person can check.
void Summarise(const Road& road, const char* path) {
  double length = 0.0;
  const Pos* lowest = &road.front().position;
  for (size_t i = 1; i < road.size(); ++i) {
    const Pos step = road[i].position - road[i - 1].position;
    length += std::sqrt(step.x * step.x + step.y * step.y + step.z * step.z);
    if (road[i].position.z < lowest->z) lowest = &road[i].position;
  }
  const auto print = [](const char* label, const Pos& p) {
    std::printf("%-22s x %.6f  y %.6f  z %.6f m\n", label, p.x, p.y, p.z);
  };
  std::printf("%-22s %s\n%-22s %zu\n%-22s %.3f s\n%-22s %.6f m\n", "trajectory", path, "points",
              road.size(), "duration", kCycleS * static_cast<double>(road.size() - 1),
              "TCP path length", length);
  print("the tool starts at", road.front().position);
  print("picks at", *lowest);
  print("and ends at", road.back().position);
}

// The waypoints as files hold them.
qal::io::FileTrajectory ToTrajectory(const Road& road) {
  std::vector<qal::State> states;
  for (const auto& [position, orientation, joints, known] : road) {
    const auto& [x, y, z] = position;
    const auto& [qw, qx, qy, qz] = orientation;
    qal::State state = {{}, {{x, y, z}, {qw, qx, qy, qz}}};
    std::copy(joints, joints + 6, state.joints.begin());
    states.push_back(state);
  }
  return qal::io::FromStates(states, kCycleS);
}

Road PickAndPlace() {
  const RoadPoint home = AtJoints({0.0, -0.3, 0.3, 0.0, std::acos(-1.0) / 2, 0.0});
  RoadPoint above = home;  // the tool points down as it does at home
  above.position = Pos(kPartM[0], kPartM[1], kPartM[2] + kClearanceM);
  above = Solved(above, home);
  RoadPoint at_part = above;
  at_part.position.z = kPartM[2];
  at_part = Solved(at_part, above);

  Road road = {home};
  AppendJointMove(home, above, road);
  AppendLine(above, at_part, road);
  AppendLine(at_part, above, road);
  AppendJointMove(above, home, road);
  return road;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: 02_pick_and_place FILE.csv\n");
    return 2;
  }
  try {
    const Road road = PickAndPlace();
    qal::io::WriteFile(argv[1], qal::io::ToFullCsv(ToTrajectory(road), qal::Arm::Reference()));
    Summarise(road, argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
