#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <sstream>

#include "../../tools/common/error.h"
#include "../../tools/qal/trajectory_csv.h"
#include "../../tools/qal/trajectory_json.h"
#include "../../tools/qal/trajectory_ros.h"

namespace qal::tools {
namespace {

// Joint 1 goes 0, 0.01, 0.03 rad, one cycle apart; the tool 1 mm, then 2 mm along z.
Trajectory TwoSteps(bool poses) {
  Trajectory trajectory(3);
  const double joint[] = {0.0, 0.01, 0.03};
  const double height[] = {0.5, 0.501, 0.503};
  for (size_t i = 0; i < 3; ++i) {
    trajectory[i] = {static_cast<double>(i) / 200.0, {joint[i], 0, -0.0, 1e-9, 0.1, 0.3}, {}};
    if (poses) trajectory[i].pose = Sample::Pose{{0.1, 0.2, height[i]}, {0, 1, 0, 0}};
  }
  return trajectory;
}

TEST(TrajectoryCsv, HasTheHeaderFirstAndPoseColumnsOnlyWhereThereIsAPose) {
  EXPECT_EQ(
      "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad\n"
      "0,0,0,-0,1e-09,0.1,0.3\n"
      "0.005,0.01,0,-0,1e-09,0.1,0.3\n"
      "0.01,0.03,0,-0,1e-09,0.1,0.3\n",
      ToCsv(TwoSteps(false), false));
  const std::string csv = ToCsv(TwoSteps(true), false);
  EXPECT_EQ(0u, csv.find("time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad,"
                         "x_m,y_m,z_m,qw,qx,qy,qz\n"
                         "0,0,0,-0,1e-09,0.1,0.3,0.1,0.2,0.5,0,1,0,0\n"));
}

// Joint 1: 0.01 rad in 5 ms is 2 rad/s, then 4 rad/s, then it stands. From 0 to 2 rad/s in 5 ms is
// 400 rad/s^2, to 4 again, to rest -800. 2 rad/s turn its motor at 2 * 363 * 0.005 / 0.000523595 =
// 6932.839 rpm. The tool makes 1 mm, then 2 mm: 0.2 and 0.4 m/s.
TEST(TrajectoryCsv, FullRowsHoldTheSpeedThatLedThereAndTheChangeToTheNext) {
  std::istringstream csv(ToCsv(TwoSteps(true), true));
  const std::vector<std::pair<std::string, std::vector<double>>> expected = {
      {"qd1_rad_s", {0, 2, 4}},
      {"qd6_rad_s", {0, 0, 0}},
      {"qdd1_rad_s2", {400, 400, -800}},
      {"tcp_speed_m_s", {0, 0.2, 0.4}},
      {"motor1_rpm", {0, 6932.839, 13865.678}}};
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(csv, line);) {
    rows.emplace_back();
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, ',');) rows.back().push_back(field);
    EXPECT_EQ(14u + 19u, rows.back().size()) << line;
  }
  for (const auto& [name, values] : expected) {
    const auto column = std::find(rows[0].begin(), rows[0].end(), name) - rows[0].begin();
    for (size_t i = 0; i < values.size(); ++i) {
      EXPECT_NEAR(values[i], std::stod(rows[i + 1].at(static_cast<size_t>(column))), 1e-3) << name;
    }
  }
}

// Numbers whose decimals are easily lost.
Trajectory Awkward(bool poses) {
  Trajectory trajectory;
  // Whole control cycles: also what a ROS file holds exactly.
  for (const int cycle : {-101, 0, 1, 3, 199, 201, 123457, 20000001}) {
    trajectory.push_back({cycle / 200.0, {0.1 + 0.2, -0.0, 4.9e-324, 1.7e308, -1.0 / 3, 1e22}, {}});
    const double nearly_one = std::nextafter(1.0, 0.0);
    if (poses)
      trajectory.back().pose = Sample::Pose{{0.7, 1e-17, -2.5}, {nearly_one, 0, -0.0, 0.1}};
  }
  return trajectory;
}

TEST(TrajectoryFiles, ReadBackToTheSameDoubles) {
  const auto bits = [](const Sample& sample, bool pose) {
    std::vector<double> values = {sample.time_s};
    values.insert(values.end(), sample.joints_rad.begin(), sample.joints_rad.end());
    if (pose) {
      const auto& [p, o] = sample.pose.value();
      values.insert(values.end(), {p.x, p.y, p.z, o.w, o.x, o.y, o.z});
    }
    std::vector<uint64_t> words(values.size());
    std::memcpy(words.data(), values.data(), values.size() * sizeof(double));
    return words;
  };
  for (const bool poses : {false, true}) {
    const Trajectory written = Awkward(poses);
    std::vector<Trajectory> read = {ParseCsv(ToCsv(written, false)).samples,
                                    ParseCsv(ToCsv(written, true)).samples,
                                    ParseJson(ToJson(written).dump()).samples};
    const JointNames names = {"a: b", "\"", "c", "d", "e", "f"};
    if (!poses) read.push_back(ParseRosYaml(ToRosYaml(written, names), names).samples);
    for (size_t file = 0; file < read.size(); ++file) {
      ASSERT_EQ(written.size(), read[file].size());
      for (size_t i = 0; i < written.size(); ++i) {
        EXPECT_EQ(poses, read[file][i].pose.has_value());
        EXPECT_EQ(bits(written[i], poses), bits(read[file][i], poses)) << file << ", sample " << i;
      }
    }
  }
}

TEST(TrajectoryFiles, AreTakenAsOtherProgramsWriteThem) {
  // A spreadsheet's: byte order mark, CRLF, blanks, another order, further columns.
  const LocatedTrajectory csv = ParseCsv(
      "\xEF\xBB\xBFnote, q6_rad,q5_rad,q4_rad,q3_rad,q2_rad,q1_rad,time_s\r\n"
      "start, 6, 5, 4, 3, 2, 1, +0.5 \r\n");
  // An echo of a running ROS 2 system: block style, sorted names, a gripper, a closing separator.
  const LocatedTrajectory ros = ParseRosYaml(
      "joint_names:\n- gripper\n- joint_6\n- joint_5\n- joint_4\n- joint_3\n- joint_2\n- joint_1\n"
      "points:\n- positions:\n  - 9.0\n  - 6.0\n  - 5.0\n  - 4\n  - 3.0\n  - 2.0\n  - 1.0\n"
      "  velocities: []\n  time_from_start:\n    sec: 0\n    nanosec: 500000000\n---\n",
      DefaultJointNames());
  const LocatedTrajectory ros1 = ParseRosYaml(
      "joint_names: [a, b, c, d, e, f]\npoints:\n"
      "  - {positions: [1, 2, 3, 4, 5, 6], time_from_start: {secs: 0, nsecs: 500000000}}\n",
      {"a", "b", "c", "d", "e", "f"});
  EXPECT_EQ(std::vector<size_t>{2}, csv.lines);
  EXPECT_EQ(std::vector<size_t>{10}, ros.lines);
  for (const LocatedTrajectory& read : {csv, ros, ros1}) {
    ASSERT_EQ(1u, read.samples.size());
    EXPECT_EQ(0.5, read.samples[0].time_s);
    EXPECT_EQ((std::array<double, 6>{1, 2, 3, 4, 5, 6}), read.samples[0].joints_rad);
  }
}

std::string Refusal(const std::function<void()>& action) {
  try {
    action();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(TrajectoryFiles, AreRefusedWithTheLine) {
  const std::string head = "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad";
  const std::string row = "\n0,0,0,0,0,0,0";
  const std::string pose = ",x_m,y_m,z_m,qw,qx,qy,qz";
  const std::vector<std::pair<std::string, std::string>> csv = {
      {"", "line 1: no column 'time_s'"},
      {head + "\n", "line 1: no row"},
      {"time_s,q1_rad,q2_rad,q3_rad,q4_rad,q6_rad" + row, "line 1: no column 'q5_rad'"},
      {head + ",q2_rad" + row + ",0", "line 1: the column 'q2_rad' stands twice"},
      {head + ",qx" + row + ",0", "line 1: no column 'x_m'"},
      {head + row + "\n1,0,0,0,0,0",
       "line 3: 7 fields were expected, as in the header; the row has 6"},
      {head + row + "\n1,0,0,0,0,0,0,0", "line 3: 7 fields"},
      {head + row + "\n\n2,0,0,0,0,0,0", "line 3: 7 fields"},
      {head + row + "\n1,0,x,0,0,0,0", "line 3: q2_rad: 'x' is not a number"},
      {head + row + "\n1,0,0,0,0,0,inf", "line 3: q6_rad: 'inf' is not a finite number"},
      {head + pose + row + ",0,0,0,0,0,0,0", "line 2: the quaternion is all zeros"},
  };
  for (const auto& [text, message] : csv) {
    EXPECT_EQ(0u, Refusal([&] { ParseCsv(text); }).find(message))
        << Refusal([&] { ParseCsv(text); }) << "\ninstead of\n"
        << message;
  }
  const std::string json = R"({"time_s": [0, 1], "joints_rad": [[0,0,0,0,0,0], )";
  const std::vector<std::pair<std::string, std::string>> jsons = {
      {"{\"time_s\": [0],\n \"joints_rad\": nan}", "line 2, column 17: no valid JSON"},
      {"[]", "no array 'time_s'"},
      {json + "[0,0,0,0,0]]}", "joints_rad[1]: 6 numbers"},
      {json + "[0,0,0,0,0,\"1\"]]}", "joints_rad[1]: a number"},
      {json + "[0,0,0,0,0,0],[0,0,0,0,0,0]]}", "joints_rad: 3 entries, 2 were"},
      {json + R"([0,0,0,0,0,0]], "position_m": [[0,0,0],[0,0,0]]})", "no array 'orientation_wxyz'"},
  };
  for (const auto& [text, message] : jsons) {
    EXPECT_EQ(0u, Refusal([&] { ParseJson(text); }).find(message))
        << Refusal([&] { ParseJson(text); }) << "\ninstead of\n"
        << message;
  }
  const std::string names = "joint_names: [joint_1, joint_2, joint_3, joint_4, joint_5, joint_6]\n";
  const std::string points = "points:\n- positions: [0, 0, 0, 0, 0, ";
  const std::string time = "]\n  time_from_start: {sec: 0, nanosec: ";
  const std::vector<std::pair<std::string, std::string>> yaml = {
      {"", "line 1: the file is empty"},
      {names + "points: [", "line 3: no valid YAML"},
      {points + "0" + time + "0}", "line 1: no 'joint_names'"},
      {"joint_names: [joint_1, joint_1]\n", "line 1: joint_names: 'joint_1' stands 2 times"},
      {names + "points: []", "line 2: no points"},
      {names + points + "0, 0" + time + "0}", "line 3: 7 positions, 6 were expected"},
      {names + points + ".nan" + time + "0}", "line 3: positions: '.nan' is not a number"},
      {names + points + "0]\n", "line 3: no 'time_from_start'"},
      {names + points + "0" + time + "1000000000}", "line 4: nanosec: 1000000000 is no whole"},
      {names + points + "0" + time + "0}\n---\na: b", "line 6: a second document"},
      {names + points + "0" + time + "0}\npoints: 1", "line 5: 'points' stands twice"},
  };
  for (const auto& [text, message] : yaml) {
    const std::string refusal = Refusal([&] { ParseRosYaml(text, DefaultJointNames()); });
    EXPECT_EQ(0u, refusal.find(message)) << refusal << "\ninstead of\n" << message;
  }
}

// Half a nanosecond apart, the two times would be one.
TEST(TrajectoryFiles, RosTimesMayNotFallTogether) {
  const Trajectory close = {{0.0, {}, {}}, {5e-10 - 1e-12, {}, {}}};
  EXPECT_EQ("sample 1: the time is not a nanosecond after the one before",
            Refusal([&] { ToRosYaml(close, DefaultJointNames()); }));
}

}  // namespace
}  // namespace qal::tools
