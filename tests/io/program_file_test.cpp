#include "../../io/program_file.h"

#include <gtest/gtest.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <cmath>

#include "../../io/error.h"
#include "../support/refusal.h"

namespace qal::io {
namespace {

const std::string kHome =
    "start = 'home'\n[points]\nhome = {joints_rad = [0, -0.2, 0.2, 0, 1.5, 0]}\n";
constexpr Joints kHomeRad = {0, -0.2, 0.2, 0, 1.5, 0};
constexpr double kPi = 3.14159265358979323846;

ProgramFile Read(const std::string& text) {
  const Document document = text[0] == '{' ? ParseJson(text, "p") : ParseToml(text, "p");
  return ReadProgram(document, Arm::Reference());
}

const Pose& LineEnd(const ProgramFile& file, size_t step) {
  return std::get<Pose>(std::get<LineStep>(file.program.steps.at(step)).to);
}

void ExpectAt(const Pose& pose, const Vec3& position, const Quat& orientation) {
  EXPECT_LT(Distance(pose.position, position), 1e-15);
  EXPECT_LT(AngleBetween(pose.orientation, orientation), 1e-7);
}

// Tool down at (0.4, 0, 0.3): the tool's x axis is the base's -x, its z axis the base's -z. A turn
// of 90 degrees about the base's z axis, then 0.1 m back: the tool's y axis is then the base's -x.
TEST(ProgramFile, SetsPointsOffEachOther) {
  const ProgramFile file = Read(kHome + R"(
down = {xyz = [0.4, 0, 0.3], rpy_deg = [0, 180, 0]}
above = {of = 'down', offset_base = [0, 0.02, 0], offset_tool = [0.01, 0, -0.1]}
turned = {of = 'down', rpy_base_deg = [0, 0, 90]}
cell = {of = 'turned', offset_tool = [0, 0.05, 0], grid = {counts = [2, 2], steps = [[0.1, 0, 0], [0, 0, 0.2]]}}
[[step]]
line = 'above'
[[step]]
repeat = 4
[[step.steps]]
line = 'cell'
[[step.steps]]
line = {of = 'cell', rpy_tool_deg = [90, 0, 0], offset_base = [0, 1, 0]}
[[step]]
line = {of = 'home', offset_tool = [0, 0, 0.1]}
[[step]]
tool = {xyz = [0, 0, 0.1]}
[[step]]
line = {of = 'home', offset_tool = [0, 0, 0]}
[[step]]
joint = 'home'
)");
  const Quat down = {0, 0, 1, 0};
  const Quat quarter = {std::sqrt(0.5), 0, 0, std::sqrt(0.5)};
  ExpectAt(LineEnd(file, 0), {0.39, 0.02, 0.4}, down);
  const Vec3 cells[] = {{0.35, 0, 0.3}, {0.45, 0, 0.3}, {0.35, 0, 0.5}, {0.45, 0, 0.5}};
  for (size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    ExpectAt(LineEnd(file, 1 + 2 * i), cells[i], quarter * down);
    ExpectAt(LineEnd(file, 2 + 2 * i), {cells[i].x, 1, cells[i].z},
             quarter * down * Quat{std::sqrt(0.5), std::sqrt(0.5), 0, 0});
  }
  // A tool of 0.1 m is where the flange's frame is moved by as much.
  ExpectAt(LineEnd(file, 9), LineEnd(file, 11).position, LineEnd(file, 11).orientation);
  EXPECT_GT(Distance(LineEnd(file, 9).position, Forward(Arm::Reference(), kHomeRad)->position),
            0.09);
  EXPECT_EQ(kHomeRad, std::get<Joints>(std::get<JointStep>(file.program.steps[12]).to));
  EXPECT_EQ("p, line 15, step 2.2, repetition 3 (line)", file.Place(6));
}

TEST(ProgramFile, GivesEachStepItsLimitsAndZone) {
  const ProgramFile file = Read(R"({"start": {"joints_deg": [0, 90, 0, 0, 0, 0]},
    "limits": {"speed_m_s": 0.4, "turn_speed_deg_s": 90, "scale_percent": [50, 40, 30], "zone_m": 0.01},
    "step": [{"line": "start", "jerk_m_s3": 5, "zone_turn_deg": 9},
             {"joint": "start", "scale_percent": 20, "zone_m": 0},
             {"arc": "start", "through": [1, 2, 3], "turn": "fixed", "speed_m_s": 0.1},
             {"arc_about": {"centre": "start", "axis": [0, 0, 2], "angle_deg": -90}},
             {"wait_s": 0.5}],
    "points": {"start": {"xyz": [0, 0, 1], "quat_wxyz": [2, 0, 0, 0]}}})");
  EXPECT_DOUBLE_EQ(kPi / 2, file.program.start[1]);
  const auto& line = std::get<LineStep>(file.program.steps[0]);
  EXPECT_EQ(0.4, line.limits.speed_m_s);
  EXPECT_EQ(5, line.limits.jerk_m_s3);
  EXPECT_EQ(LineLimits().acceleration_m_s2, line.limits.acceleration_m_s2);
  EXPECT_DOUBLE_EQ(kPi / 2, line.limits.turn_speed_rad_s);
  EXPECT_EQ(0.3, line.limits.scale.jerk);
  EXPECT_EQ(0.01, line.zone->tool_m);
  EXPECT_DOUBLE_EQ(kPi / 20, line.zone->turn_rad);
  EXPECT_TRUE(std::isinf(line.zone->joint_rad));
  const auto& joint = std::get<JointStep>(file.program.steps[1]);
  EXPECT_EQ(0.2, joint.scale.acceleration);
  EXPECT_FALSE(joint.zone);
  const auto& arc = std::get<ArcStep>(file.program.steps[2]);
  EXPECT_EQ(ArcTurn::kFixed, std::get<ArcThrough>(arc.arc).turn);
  EXPECT_EQ(0.1, arc.limits.speed_m_s);
  const auto about = std::get<ArcAbout>(std::get<ArcStep>(file.program.steps[3]).arc);
  EXPECT_EQ(1, about.centre.z);
  EXPECT_DOUBLE_EQ(-kPi / 2, about.angle_rad);
  EXPECT_EQ(ArcTurn::kWithArc, about.turn);
  EXPECT_EQ("p, step 5 (wait)", file.Place(4));
}

// clang-format off
TEST(ProgramFile, IsRefusedWithFileLineAndKey) {
  const std::string grid = "[points.cell]\nof = 'home'\ngrid = {counts = [2], steps = [[0, 0, 0.1]]}\n";
  const std::pair<std::string, std::string> rows[] = {
      {"[[step]]\nwait_s = 1\n", "p: start is missing, the point where the arm stands"},
      {kHome, "p: there is no [[step]]; a program has at least one"},
      {"start = {xyz = [0, 0, 1], rpy = [0, 0, 0]}\n", "p, line 1, start: a pose; a point of joints is expected, as a pose may have several"},
      {kHome + "[[step]]\nwait = 1\n", "p, line 4, step 1: one of joint, line, arc, arc_about, wait_s, tool, repeat is expected"},
      {kHome + "[[step]]\nline = 'home'\njoint = 'home'\n", "p, line 5, step 1, line: there is joint as well; one of them is expected"},
      {kHome + "[[step]]\njoint = 'home'\nspeed_m_s = 1\n", "p, line 6, step 1: unknown entry 'speed_m_s'; expected are joint, scale_percent, zone_m, zone_turn_rad, zone_turn_deg, zone_joint_rad, zone_joint_deg"},
      {kHome + "[[step]]\njoint = 'hmoe'\n", "p, line 5, step 1, joint: no point 'hmoe'; did you mean 'home'?"},
      {kHome + "[[step]]\ntool = 'gripper'\n", "p, line 5, step 1, tool: no tool 'gripper'; there are 'arm'"},
      {kHome + "[[step]]\njoint = 3\n", "p, line 5, step 1, joint: the name of a point is expected, or a table with one of joints_rad, joints_deg, xyz and of"},
      {kHome + "[[step]]\nline = 'home'\nzone_turn_deg = -1\n", "p, line 6, step 1, zone_turn_deg: -1; a number not below 0 is expected"},
      {kHome + "[[step]]\nline = 'home'\nmax_orientation_error_deg = 30\n", "p, line 6, step 1, max_orientation_error_deg: 30; a number not below 0 up to 28.6479 is expected"},
      {kHome + "[[step]]\njoint = 'home'\nscale_percent = 101\n", "p, line 6, step 1, scale_percent: 101; percent above 0 up to 100 are expected"},
      {kHome + "[[step]]\narc = 'home'\n", "p, line 4, step 1: through is missing"},
      {kHome + "[[step]]\narc_about = {centre = [0, 0, 1], axis = [0, 0, 1], angle_deg = 9}\nturn = 'to_end'\n", "p, line 6, step 1, turn: 'to_end'; with_arc or fixed is expected"},
      {kHome + "[[step]]\nrepeat = 1.5\n", "p, line 5, step 1, repeat: 1.5; a whole number from 1 to 100000 is expected"},
      {kHome + "[[step]]\nrepeat = 60000\nsteps = [{joint = 'home'}, {wait_s = 0}]\n", "p, line 6, step 1.1: more than 100000 steps, repetitions counted"},
      {kHome + grid + "[[step]]\nline = 'cell'\n", "p, line 6, points, cell, grid: its places are those of repetitions: a step with repeat is expected around the steps that go there"},
      {kHome + grid + "[[step]]\nrepeat = 3\nsteps = [{line = 'cell'}]\n", "p, line 6, points, cell, grid: it has 2 places; there are more repetitions"},
      {kHome + "a = {of = 'b'}\nb = {of = 'a'}\n", "p, line 4, points, a, of: leads back to where it was; a point of joints or xyz is expected"},
      {kHome + "a = {xyz = [0, 0, 1]}\n", "p, line 4, points, a: rpy, rpy_deg or quat_wxyz is missing"},
      {kHome + "a = {of = 'home', rpy_base = [0, 0, 0], rpy_base_deg = [0, 0, 0]}\n", "p, line 4, points, a, rpy_base_deg: given in radians as well; one of them is expected"},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(Refusal<UsageError>([&, &program = text] { Read(program); }), expected);
  }
}
// clang-format on

}  // namespace
}  // namespace qal::io
