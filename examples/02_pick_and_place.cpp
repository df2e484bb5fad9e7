// A small pick and place of the reference arm: a joint move to above the part, a straight line down
// to it, the line back up, a joint move home. Each part goes from rest to rest as fast as every
// limit of the arm allows. Writes one trajectory: 02_pick_and_place FILE.csv

#include <qal/plan/joint_move.h>
#include <qal/plan/line.h>
#include <qal/plan/sampled.h>
#include <qal/solve/kinematics.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr qal::Vec3 kPartM = {0.42, 0.25, 0.10};
constexpr double kClearanceM = 0.25;

// What a call gives, or an exception that says where there is nothing.
template <class T, class E>
T Expect(const qal::Result<T, E>& result, const char* what) {
  if (!result) throw std::runtime_error(std::string(what) + " cannot be planned");
  return *result;
}

// Appends a part that begins where the trajectory ends, one cycle of the arm from sample to sample.
void Append(const qal::Trajectory& part, const qal::Arm& arm, qal::Trajectory& trajectory) {
  for (size_t i = trajectory.empty() ? 0 : 1; i < part.size(); ++i) {
    trajectory.push_back(part[i]);
    const double index = static_cast<double>(trajectory.size() - 1);
    trajectory.back().time_s = index * (arm.cycle_s().value * 1000) / 1000;
  }
}

qal::Trajectory JointMove(const qal::Arm& arm, const qal::Joints& from, const qal::Joints& to) {
  const qal::JointMotion motion = Expect(qal::PlanJoint(arm, {from}, {to}), "a joint move");
  return Expect(qal::Sampled(arm, motion), "a joint move");
}

qal::Trajectory Line(const qal::Arm& arm, const qal::Sample& from, const qal::Pose& to) {
  const auto line = Expect(qal::PlanLine(arm, {from.joints, from.pose}, to), "a line");
  return Expect(qal::Sampled(arm, line), "a line");
}

qal::Trajectory PickAndPlace(const qal::Arm& arm) {
  const qal::Joints home = {0.0, -0.3, 0.3, 0.0, std::acos(-1.0) / 2, 0.0};
  // Down on the part with the tool as it is at home.
  const qal::Pose at_home = Expect(qal::Forward(arm, home), "home");
  const qal::Pose at_part = {kPartM, at_home.orientation};
  const qal::Pose above = {{kPartM.x, kPartM.y, kPartM.z + kClearanceM}, at_home.orientation};
  const qal::State start = Expect(qal::Nearest(arm, above, home), "the place above the part");

  qal::Trajectory trajectory;
  Append(JointMove(arm, home, start.joints), arm, trajectory);
  Append(Line(arm, trajectory.back(), at_part), arm, trajectory);
  Append(Line(arm, trajectory.back(), above), arm, trajectory);
  Append(JointMove(arm, trajectory.back().joints, home), arm, trajectory);
  return trajectory;
}

std::string Header() {
  std::string header = "time_s";
  const auto add = [&header](const char* prefix, const char* unit) {
    for (int j = 1; j <= 6; ++j) header += ',' + (prefix + std::to_string(j)) + unit;
  };
  add("q", "_rad");
  header += ",x_m,y_m,z_m,qw,qx,qy,qz";
  add("qd", "_rad_s");
  add("qdd", "_rad_s2");
  return header + '\n';
}

// The columns of the header, in the shortest numbers that read back to the same double.
std::string Row(const qal::Sample& sample) {
  const auto& [p, o] = sample.pose;
  std::vector<double> numbers = {sample.time_s};
  const auto add = [&numbers](const auto& more) {
    numbers.insert(numbers.end(), more.begin(), more.end());
  };
  add(sample.joints);
  add(std::array<double, 7>{p.x, p.y, p.z, o.w, o.x, o.y, o.z});
  add(sample.velocities);
  add(sample.accelerations);
  std::string row;
  for (const double number : numbers) {
    char text[32];
    row.append(row.empty() ? "" : ",");
    row.append(text, std::to_chars(text, text + sizeof text, number).ptr);
  }
  return row + '\n';
}

void Write(const qal::Trajectory& trajectory, const char* path) {
  std::ofstream file(path, std::ios::binary);
  file << Header();
  for (const qal::Sample& sample : trajectory) file << Row(sample);
  if (!file.flush()) throw std::runtime_error("cannot write " + std::string(path));
}

// Says what a person can check.
void Summarise(const qal::Trajectory& trajectory, const char* path) {
  double length = 0.0;
  const qal::Vec3* before = &trajectory.front().pose.position;
  const qal::Vec3* lowest = before;
  for (const qal::Sample& sample : trajectory) {
    const qal::Vec3& p = sample.pose.position;
    length += std::hypot(p.x - before->x, p.y - before->y, p.z - before->z);
    if (p.z < lowest->z) lowest = &p;
    before = &p;
  }
  const auto print = [](const char* label, const qal::Vec3& p) {
    std::printf("%-22s x %.6f  y %.6f  z %.6f m\n", label, p.x, p.y, p.z);
  };
  std::printf("%-22s %s\n%-22s %zu\n%-22s %.3f s\n%-22s %.6f m\n", "trajectory", path, "points",
              trajectory.size(), "duration", trajectory.back().time_s, "TCP path length", length);
  print("the tool starts at", trajectory.front().pose.position);
  print("picks at", *lowest);
  print("and ends at", trajectory.back().pose.position);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: 02_pick_and_place FILE.csv\n");
    return 2;
  }
  try {
    const qal::Trajectory trajectory = PickAndPlace(qal::Arm::Reference());
    Write(trajectory, argv[1]);
    Summarise(trajectory, argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
