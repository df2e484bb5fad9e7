#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "../../io/trajectory_csv.h"
#include "../../io/trajectory_file.h"
#include "../../io/trajectory_json.h"
#include "../../io/trajectory_ros.h"
#include "../support/refusal.h"

namespace qal::io {
namespace {

// Half a second from row to row, joint 1 moves at 0.5 and 1.5 rad/s, and the tool at 0.5 and 2 m/s.
// From rest to 0.5 rad/s in half a second is 1 rad/s^2, to 1.5 it is 2, and to rest again -3. The
// motor turns at 0.5 * 363 * 60 / (2 pi) rpm, and three times that.
TEST(TrajectoryCsv, FullRowsHoldTheSpeedThatLedThereAndTheChangeToTheNext) {
  const Pose pose = {{0.1, 0.2, 0.5}, {0, 1, 0, 0}};
  FileTrajectory trajectory = {{0.0, {0.0, 0, -0.0, 1e-9, 0.1, 0.3}, pose},
                               {0.5, {0.25, 0, -0.0, 1e-9, 0.1, 0.3}, pose},
                               {1.0, {1.0, 0, -0.0, 1e-9, 0.1, 0.3}, pose}};
  trajectory[1].pose->position.z = 0.75;
  trajectory[2].pose->position.z = 1.75;
  EXPECT_EQ(
      "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad,x_m,y_m,z_m,qw,qx,qy,qz,"
      "qd1_rad_s,qd2_rad_s,qd3_rad_s,qd4_rad_s,qd5_rad_s,qd6_rad_s,"
      "qdd1_rad_s2,qdd2_rad_s2,qdd3_rad_s2,qdd4_rad_s2,qdd5_rad_s2,qdd6_rad_s2,tcp_speed_m_s,"
      "motor1_rpm,motor2_rpm,motor3_rpm,motor4_rpm,motor5_rpm,motor6_rpm\n"
      "0,0,0,-0,1e-09,0.1,0.3,0.1,0.2,0.5,0,1,0,0,0,0,0,0,0,0,1,0,0,0,0,0,0,0,0,0,0,0,0\n"
      "0.5,0.25,0,-0,1e-09,0.1,0.3,0.1,0.2,0.75,0,1,0,0,0.5,0,0,0,0,0,2,0,0,0,0,0,0.5,"
      "1733.1973302707404,0,0,0,0,0\n"
      "1,1,0,-0,1e-09,0.1,0.3,0.1,0.2,1.75,0,1,0,0,1.5,0,0,0,0,0,-3,0,0,0,0,0,2,"
      "5199.591990812221,0,0,0,0,0\n",
      ToFullCsv(trajectory, Arm::Reference()));
}

// Numbers whose decimals are easily lost.
FileTrajectory Awkward(const SampleParts& parts) {
  FileTrajectory trajectory;
  // Whole control cycles: also what a ROS file holds exactly.
  for (const int cycle : {-101, 0, 1, 3, 199, 201, 123457, 20000001}) {
    const Joints numbers = {0.1 * cycle, -0.0, 4.9e-324, 1.7e308, -1.0 / 3, 1e22};
    trajectory.push_back({cycle / 200.0, numbers});
    const double nearly_one = std::nextafter(1.0, 0.0);
    if (parts.pose) trajectory.back().pose = Pose{{0.7, 1e-17, -2.5}, {nearly_one, 0, -0.0, 0.1}};
    if (parts.velocities) trajectory.back().velocities = numbers;
    if (parts.accelerations) trajectory.back().accelerations = numbers;
  }
  return trajectory;
}

// A CSV file shows every bit: the signs of zeros, and digits that read back to the same double.
// Rates that a writer has filled in with differences are gone again.
TEST(TrajectoryFiles, ReadBackToTheSameDoubles) {
  for (const SampleParts& parts : {SampleParts{},
                                   {true},
                                   {true, true},
                                   {true, true, true},
                                   {false, true},
                                   {false, true, true}}) {
    const FileTrajectory written = Awkward(parts);
    std::vector<LocatedTrajectory> read = {ParseCsv(ToCsv(written)),
                                           ParseCsv(ToFullCsv(written, Arm::Reference())),
                                           ParseJsonTrajectory(ToJson(written).dump())};
    const JointNames names = {"a: b", "\"", "c", "d", "e", "f"};
    for (const RosInterface interface : {RosInterface::kMessage, RosInterface::kGoal}) {
      if (parts.pose) continue;
      read.push_back(ParseRosYaml(ToRosYaml(written, names, interface), {names, true}));
    }
    for (const LocatedTrajectory& file : read) {
      EXPECT_EQ(ToCsv(written), ToCsv(file.samples)) << &file - read.data();
    }
  }
}

TEST(TrajectoryFiles, AreTakenAsOtherProgramsWriteThem) {
  // A spreadsheet's: byte order mark, CRLF, blanks, another order, further columns.
  const LocatedTrajectory csv = ParseCsv(
      "\xEF\xBB\xBFq6_rad, note,q5_rad,q4_rad,q3_rad,q2_rad,q1_rad,time_s\r\n"
      "6, start, 5, 4, 3, 2, 1, +0.5 \r\n");
  // An echo of a running ROS 2 system: block style, sorted names, a gripper, a closing separator.
  const LocatedTrajectory ros = ParseRosYaml(
      "joint_names:\n- gripper\n- joint_6\n- joint_5\n- joint_4\n- joint_3\n- joint_2\n- joint_1\n"
      "points:\n- positions:\n  - 9.0\n  - 6.0\n  - 5.0\n  - 4\n  - 3.0\n  - 2.0\n  - 1.0\n"
      "  velocities: []\n  time_from_start:\n    sec: 0\n    nanosec: 500000000\n---\n",
      {});
  const LocatedTrajectory ros1 = ParseRosYaml(
      "joint_names: [a, b, c, d, e, f]\npoints:\n"
      "  - {positions: [1, 2, 3, 4, 5, 6], time_from_start: {secs: 0, nsecs: 500000000}}\n",
      {{"a", "b", "c", "d", "e", "f"}, true});
  EXPECT_EQ(std::vector<size_t>{2}, csv.lines);
  EXPECT_EQ(std::vector<size_t>{10}, ros.lines);
  for (const LocatedTrajectory& read : {csv, ros, ros1}) {
    ASSERT_EQ(1u, read.samples.size());
    EXPECT_EQ(0.5, read.samples[0].time_s);
    EXPECT_EQ((std::array<double, 6>{1, 2, 3, 4, 5, 6}), read.samples[0].joints);
  }
}

using Rows = std::vector<std::pair<std::string, std::string>>;

// Each text of `rows` is refused with a message that begins like this.
void ExpectRefused(const std::function<void(std::string_view)>& read, const Rows& rows) {
  for (const auto& [text, message] : rows) {
    const std::string refusal = Refusal([&read, &text = text] { read(text); });
    EXPECT_EQ(message, refusal.substr(0, message.size())) << text;
  }
}

TEST(TrajectoryFiles, AreRefusedWithTheLine) {
  const std::string head = "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad";
  const std::string row = "\n0,0,0,0,0,0,0";
  const std::string pose = ",x_m,y_m,z_m,qw,qx,qy,qz";
  ExpectRefused(
      ParseCsv,
      {
          {"", "line 1: no column 'time_s'"},
          {head + "\n", "line 1: no row"},
          {"time_s,q1_rad,q2_rad,q3_rad,q4_rad,q6_rad" + row, "line 1: no column 'q5_rad'"},
          {head + ",q2_rad" + row + ",0", "line 1: the column 'q2_rad' is a duplicate"},
          {head + ",qx" + row + ",0", "line 1: no column 'x_m'"},
          {head + row + "\n1,0,0,0,0,0",
           "line 3: 7 fields were expected, as in the header; the row has 6"},
          {head + row + "\n1,0,x,0,0,0,0", "line 3: q2_rad: 'x' is not a number"},
          {head + row + "\n1,0,0,0,0,0,inf", "line 3: q6_rad: 'inf' is not a finite number"},
          {head + pose + row + ",0,0,0,0,0,0,0", "line 2: the quaternion is all zeros"},
          {head + ",qd1_rad_s" + row + ",0", "line 1: no column 'qd2_rad_s'"},
      });
  const std::string json = R"({"time_s": [0, 1], "joints_rad": [[0,0,0,0,0,0], )";
  ExpectRefused(
      ParseJsonTrajectory,
      {
          {"{\"time_s\": [0],\n \"joints_rad\": nan}", "line 2, column 17: no valid JSON"},
          {"[]", "no array 'time_s'"},
          {json + "[0,0,0,0,0]]}", "line 1, column 60: joints_rad[1]: 6 numbers"},
          {json + "[0,0,0,0,0,\"1\"]]}", "line 1, column 63: joints_rad[1]: a number"},
          {json + "[0,0,0,0,0,0],[0,0,0,0,0,0]]}", "joints_rad: 3 entries, 2 were"},
          {json + R"([0,0,0,0,0,0]], "position_m": [[0,0,0],[0,0,0]]})",
           "no array 'orientation_wxyz'"},
          {json + R"([0,0,0,0,0,0]], "velocities_rad_s": [[0,0,0,0,0,0]]})",
           "velocities_rad_s: 1 entries, 2 were"},
      });
  const std::string names = "joint_names: [joint_1, joint_2, joint_3, joint_4, joint_5, joint_6]\n";
  const std::string points = "points:\n- positions: [0, 0, 0, 0, 0, ";
  const std::string time = "]\n  time_from_start: {sec: 0, nanosec: ";
  ExpectRefused(
      [](std::string_view text) { ParseRosYaml(text, {}); },
      {
          {"", "line 1: the file is empty"},
          {names + "points: [", "line 3: no valid YAML"},
          {points + "0" + time + "0}", "line 1: no 'joint_names'"},
          {"joint_names: [joint_1, joint_1]\n", "line 1: joint_names: 'joint_1' is there 2 times"},
          {names + "points: []", "line 2: no points"},
          {names + points + "0, 0" + time + "0}", "line 3: 7 positions, 6 were expected"},
          {names + points + ".nan" + time + "0}", "line 3: positions: '.nan' is not a number"},
          {names + points + "0]\n", "line 3: no 'time_from_start'"},
          {names + points + "0" + time + "1000000000}", "line 4: nanosec: 1000000000 is no whole"},
          {names + points + "0" + time + "0}\n---\na: b", "line 6: a second document"},
          {names + points + "0" + time + "0}\n  velocities: [1]", "line 5: 1 velocities, 6 were"},
          {names + points + "0" + time + "0}\n  accelerations: [0, 0, 0, 0, 0, 0]\n" +
               points.substr(8) + "0" + time + "1}",
           "line 6: accelerations in some points and not in others"},
          {names + points + "0" + time + "0}\npoints: 1", "line 5: 'points' is a duplicate key"},
      });
}

// Names that nobody requested: where all are known by name, else six in the order of the file.
TEST(TrajectoryFiles, RosJointsOfOtherNamesAreTakenInOrderWithANote) {
  const auto read = [](const std::string& names, const RosNames& wanted) {
    return ParseRosYaml("joint_names: [" + names +
                            "]\npoints:\n- positions: [1, 2, 3, 4, 5, 6]\n"
                            "  time_from_start: {sec: 0, nanosec: 0}\n",
                        wanted);
  };
  const RosNames arm = {{"f", "e", "d", "c", "b", "a"}, false};
  const LocatedTrajectory by_name = read("a, b, c, d, e, f", arm);
  EXPECT_EQ((Joints{6, 5, 4, 3, 2, 1}), by_name.samples[0].joints);
  EXPECT_TRUE(by_name.notes.empty());
  const LocatedTrajectory in_order = read("a, b, c, d, e, g", arm);
  EXPECT_EQ((Joints{1, 2, 3, 4, 5, 6}), in_order.samples[0].joints);
  EXPECT_EQ(std::vector<std::string>{"joints 1 to 6 in the order of the file: a, b, c, d, e, g"},
            in_order.notes);
  const std::string refusal = "line 1: joint_names: 'f' is there 0 times, once is expected";
  const auto refused = Refusal([&] { read("a, b, c, d, e, g, h", arm); });
  EXPECT_EQ(refusal, refused.substr(0, refusal.size()));
}

TEST(TrajectoryFiles, TellTheirFormatByHowTheyBegin) {
  EXPECT_EQ(FileFormat::kJson, FormatOf(" \n{\"time_s\": []}"));
  EXPECT_EQ(FileFormat::kCsv, FormatOf("\xEF\xBB\xBFq1_rad, time_s\n"));
  EXPECT_EQ(FileFormat::kCsv, FormatOf("t,q1,q2\n0,0,0\n")) << "and refused by its header";
  EXPECT_EQ(FileFormat::kRos, FormatOf("joint_names: [a, b]\n"));
  EXPECT_EQ(FileFormat::kRos, FormatOf("---\nheader:\n"));
  EXPECT_EQ(FileFormat::kRos, FormatToWrite("", "plan.yml", "--to"));
  EXPECT_EQ(FileFormat::kCsv, FormatToWrite("csv", "plan.json", "--to"));
  EXPECT_EQ(0u, Refusal([] { FormatToWrite("", "plan.txt", "--to"); }).find("plan.txt: the name"));
}

// 0.005 is not exact: 35 times it is the double above 0.175; 9 times 0.004 likewise.
TEST(FromStates, SetsEachSampleAtTheNearestDouble) {
  EXPECT_EQ(0.175, FromStates(std::vector<State>(36), 0.005)[35].time_s);
  EXPECT_EQ(0.036, FromStates(std::vector<State>(10), 0.004)[9].time_s);
}

// Half a nanosecond apart, the two times would be one.
TEST(TrajectoryFiles, RosTimesMayNotFallTogether) {
  const FileTrajectory close = {{0.0, {}, {}}, {5e-10 - 1e-12, {}, {}}};
  EXPECT_EQ("sample 1: the time is not a nanosecond after the one before",
            Refusal([&] { ToRosYaml(close, DefaultJointNames()); }));
}

}  // namespace
}  // namespace qal::io
