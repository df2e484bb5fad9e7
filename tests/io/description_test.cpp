#include <gtest/gtest.h>
#include <qal/model/chain.h>
#include <qal/model/family.h>

#include <algorithm>
#include <cmath>

#include "../../io/arm_file.h"
#include "../../io/family_text.h"
#include "../../io/units.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

using Description = InOwnFolder;
using Family = InOwnFolder;

constexpr Joints kJoints = {0.1, -0.2, 0.3, -0.4, 0.5, -0.6};

std::string ArmPath(const std::string& file) { return QAL_ARMS_DIR "/" + file; }

double LargestDifference(const Transform& a, const Transform& b) {
  double largest =
      std::max({std::fabs(a.position.x - b.position.x), std::fabs(a.position.y - b.position.y),
                std::fabs(a.position.z - b.position.z)});
  for (int i = 0; i < 9; ++i) {
    largest = std::max(largest, std::fabs(a.rotation[i] - b.rotation[i]));
  }
  return largest;
}

// A file of arms/ with one text replaced, the first one behind `after`.
struct Change {
  const char* file;
  const char* after;
  const char* text;
  const char* by;
  const char* expected;  // the message, or its beginning when it ends in "..."
};

// Reads the changed file, which it writes into the test's folder.
ArmDescription ReadChanged(const Change& change, const ReadOptions& options = {}) {
  std::string content = FileContent(ArmPath(change.file));
  const size_t after = content.find(change.after);
  EXPECT_NE(after, std::string::npos) << change.after;
  const size_t place = content.find(change.text, after);
  EXPECT_NE(place, std::string::npos) << change.text;
  std::ofstream(change.file) << content.replace(place, std::string(change.text).size(), change.by);
  return ReadDescription(change.file, options);
}

void ExpectText(const Change& change, const std::string& text) {
  const std::string expected = change.expected;
  const size_t dots = expected.find("...");
  EXPECT_EQ(text.substr(0, dots), expected.substr(0, dots));
}

// clang-format off
TEST_F(Description, IsRefusedWithFileLineAndReason) {
  const Change changes[] = {
      {"reference.urdf", "", "</robot>", "", "reference.urdf, line 3: not well-formed XML (XML_ERROR_PARSING)"},
      {"reference.urdf", "", "<robot name=\"reference\">", "<robot/><x>", "reference.urdf, line 3: not well-formed XML..."},
      {"reference.urdf", "", "link_3\"/>", "link_4\"/>", "reference.urdf, line 8: a second link named 'link_4'"},
      {"reference.urdf", "", "<link name=\"tool0\"/>", "", "reference.urdf, line 56: joint 'flange': no link named 'tool0'"},
      {"reference.urdf", "joint_3", "<child link=\"link_3\"/>", "", "reference.urdf, line 26: joint 'joint_3' has no <child>"},
      {"reference.urdf", "joint_3", "link_3", "link_1", "reference.urdf, line 26: link 'link_1' has two parents, by joints 'joint_1' and 'joint_3'"},
      {"reference.urdf", "joint_1", "base_link", "tool0", "reference.urdf: the joints form a loop at link 'tool0'"},
      {"reference.urdf", "", "<link name=\"base_link\"/>", "<link name=\"base_link\"/><link name=\"cart\"/>", "reference.urdf: 2 links have no parent; --base names one of 'base_link', 'cart'"},
      {"reference.urdf", "joint_4", "revolute", "prismatic", "reference.urdf, line 33: joint 'joint_4' is prismatic; only revolute and continuous joints are expected from 'base_link' to 'tool0'"},
      {"reference.urdf", "joint_4", "<axis xyz=\"1 0 0\"/>", "<mimic joint=\"joint_2\"/>", "reference.urdf, line 33: joint 'joint_4' mimics another one; only revolute..."},
      {"reference.urdf", "joint_4", "revolute", "fixed", "reference.urdf: 5 joints turn from 'base_link' to 'tool0'; six are expected, not 'joint_1', 'joint_2', 'joint_3', 'joint_5', 'joint_6'"},
      {"reference.urdf", "name=\"flange\"", "fixed", "revolute", "reference.urdf: 7 joints turn from 'base_link' to 'tool0'; six..."},
      {"reference.urdf", "joint_2", "0.050 0 0.380", "0.050 0", "reference.urdf, line 22: xyz has 2 numbers; 3 are expected"},
      {"reference.urdf", "joint_2", "0.050 0 0.380", "0.050 0 h", "reference.urdf, line 22, xyz: 'h' is not a number"},
      {"reference.urdf", "joint_2", "0.050 0 0.380", "0.050 0 ${h}", "reference.urdf: a xacro file; run xacro on it and give its output"},
      {"reference.urdf", "joint_2", "0 1 0", "0 0 0", "reference.urdf, line 23: the axis of joint 'joint_2' has no direction"},
      {"reference.urdf", "joint_2", "lower=\"-2", "lower=\"3", "reference.urdf, line 24: joint 'joint_2': lower limit 3.967059678 above upper limit 2.967059678"},
      {"reference.urdf", "joint_2", "rpy=\"0 0 0\"", "rpy=\"0 90 0\"", "reference.urdf, line 22, rpy: 90 rad is more than a turn; are these degrees?"},
      {"reference.urdf", "joint_2", "velocity=\"0.86", "velocity=\"fast", "reference.urdf, line 24, velocity: 'fast' is not a number"},
      {"carrying_parallel.toml", "", "alpha = 1.57", "alpha = = 1.57", "carrying_parallel.toml, line 14: not well-formed TOML..."},
      {"carrying_parallel.toml", "J3", "a = -0.641", "r = -0.641", "carrying_parallel.toml, line 27, joint 3: unknown entry 'r'; expected are name, theta, direction, lower, upper, a, alpha, d"},
      {"carrying_parallel.toml", "", "\"dh\"", "\"DH\"", "carrying_parallel.toml, line 5, convention: 'DH'; 'dh', 'modified-dh' or 'ortho-parallel' is expected"},
      {"carrying_parallel.toml", "J4", "-1\n", "2\n", "carrying_parallel.toml, line 35, joint 4, direction: 2; 1 or -1 is expected"},
      {"carrying_parallel.toml", "J4", "0.1725", "inf", "carrying_parallel.toml, line 33, joint 4, d: inf is not a finite number"},
      {"welding_ortho_parallel.json", "", "\"c2\": 0.614,", "", "welding_ortho_parallel.json: c2 is missing"},
      {"welding_ortho_parallel.json", "", "{\"name\": \"L\", \"lower\": -1.5, \"upper\": 2.7},", "", "welding_ortho_parallel.json: 5 joints; six [[joint]] are expected"},
      {"welding_ortho_parallel.json", "", "\"c2\": 0.614,", "\"c2\": 0.614", "welding_ortho_parallel.json, line 9, column 6: no valid JSON from here"},
      {"welding_ortho_parallel.json", "", "\"c2\": 0.614", "\"c2\": 1e999", "welding_ortho_parallel.json, line 8, column 14: a number is too large"},
  };
  for (const Change& change : changes) {
    ExpectText(change, Refusal<UsageError>([&] { ReadChanged(change); }));
  }
}

// By the conditions that it misses, angles first; a short link keeps it out as well.
TEST_F(Family, IsMissedByTheAxesThatKeepTheArmOut) {
  const Change changes[] = {
      {"reference.urdf", "joint_5", "0 1 0", "1 1 0", "not three parallel axes (axes 3 and 4 are 90 degrees off parallel, axes 4 and 5 are 45 degrees off a right angle, axes 5 and 6 are 45 degrees off a right angle), not spherical wrist (axes 4 and 5 are 45 degrees off a right angle, axes 5 and 6 are 45 degrees off a right angle), not offset wrist (axes 4 and 5 are 45 degrees off a right angle, axes 5 and 6 are 45 degrees off a right angle)"},
      {"reference.urdf", "joint_5", "0.200 0 0", "0.200 0 0.01", "not spherical wrist (axes 4 and 5 are 0.01 m apart), not offset wrist (axes 4 and 5 are 0.01 m apart)"},
      {"reference.urdf", "joint_2", "0 1 0", "0 1 0.1", "not spherical wrist (axes 1 and 2 are 5.711 degrees off a right angle, axes 2 and 3 are 5.711 degrees off parallel)"},
      {"reference.urdf", "joint_3", "0 1 0", "0 1 0.0175", "not spherical wrist (axes 2 and 3 are 1.003 degrees off parallel)"},
      {"reference.urdf", "joint_3", "0 0 0.400", "0 0.4 0", "not spherical wrist (axes 2 and 3 are only 0 m apart)"},
      {"bench_parallel.urdf", "\"joint_6\" type", "0 0 0.0795", "0.01 0 0.0795", "not three parallel axes (axes 5 and 6 are 0.01 m apart)"},
  };
  for (const Change& change : changes) {
    const FamilyReport report = ExamineFamilies(ReadChanged(change));
    EXPECT_EQ(report.Fitting(), nullptr);
    EXPECT_NE(NoFamilyText(report).find(change.expected), std::string::npos)
        << NoFamilyText(report);
  }
}

TEST_F(Family, IsOutOfTheQuestionForAnArmThatIsSingularEverywhere) {
  const Change changes[] = {
      {"reference.urdf", "joint_5", "0 1 0", "1 0 0", "check which six joints are the arm's: with these its tool lacks a way to move wherever it is, and its poses have no solution or infinitely many. Axes 4 and 5 are one line. Axes 5 and 6 are one line. Angles between axes: 1-2 90, 2-3 0, 3-4 90, 4-5 0, 5-6 0 degrees."},
      {"bench_parallel.urdf", "\"joint_5\" type", "0 0 1", "0 1 0", "many. Axes 2 to 5 are parallel. Axes 4 and 5 are one line. Angles"},
  };
  for (const Change& change : changes) {
    const FamilyReport report = ExamineFamilies(ReadChanged(change));
    EXPECT_TRUE(report.singular_everywhere);
    EXPECT_NE(SingularText(report).find(change.expected), std::string::npos)
        << SingularText(report);
  }
}
// clang-format on

// A joint that turns without end has no limits, but a velocity; 0 is none that somebody said.
TEST_F(Description, HasTheLimitsThatAUrdfSays) {
  const ArmDescription endless =
      ReadChanged({"reference.urdf", "joint_4", "revolute", "continuous", ""});
  const JointDescription& joint = endless.joints[3];
  EXPECT_TRUE(joint.continuous && !joint.lower_rad && !joint.upper_rad);
  EXPECT_EQ(joint.velocity_rad_s, 1.03);
  EXPECT_FALSE(endless.joints[0].continuous);
  EXPECT_EQ(endless.joints[0].lower_rad, -2.967059678);
  const ArmDescription unsaid = ReadChanged({"reference.urdf", "joint_4", "1.03", "0", ""});
  EXPECT_FALSE(unsaid.joints[3].velocity_rad_s);
}

// Behind the flange hang a gripper that slides and a camera: the arm ends where the field says.
TEST_F(Description, FindsTheTipOfAnArmThatHasMoreBehindIt) {
  const auto tip = [](const char* more) {
    return ReadChanged({"foundry_spherical.urdf", "", "<link name=\"gripper\"/>", more, ""}).tip;
  };
  EXPECT_EQ(tip("<link name='gripper'/>"), "gripper");
  EXPECT_EQ(tip("<link name='gripper'/><link name='camera'/><joint name='c' type='fixed'>"
                "<parent link='turn'/><child link='camera'/></joint>"),
            "flange");
  EXPECT_EQ(tip("<link name='gripper'/><link name='tool0'/><joint name='t' type='fixed'>"
                "<parent link='flange'/><child link='tool0'/></joint>"),
            "tool0");
}

// Two tables against the products of their conventions' matrices, calculated by another program;
// the reference arm by the modified convention, in millimetres and degrees.
TEST_F(Description, ReadsEveryConventionAndUnit) {
  const std::pair<const char*, Transform> tips[] = {
      {"welding_ortho_parallel.json",
       {{-0.7703135266659616, -0.4812775959659536, 0.4183168013081487, 0.5807657086160013,
         -0.8003940184564540, 0.1485954471539559, 0.2633026060091373, 0.3574091364813751,
         0.8960638631417042},
        {0.5020177974294858, -0.02099535366447845, 1.8599490645029781}}},
      {"carrying_parallel.toml",
       {{-0.8395757957106640, -0.4750032802340538, 0.2635988752322251, 0.4485269197440626,
         -0.3323569843440043, 0.8296761038035645, -0.3064899435898487, 0.8148071665889103,
         0.4920906377423199},
        {1.2425895937161664, 0.13314963956717712, 0.6693913236022258}}}};
  for (const auto& [file, tip] : tips) {
    EXPECT_LE(LargestDifference(TipFrame(ReadDescription(ArmPath(file), {}), kJoints), tip), 1e-14);
  }
  std::ofstream("arm.json") << R"({"convention": "modified-dh", "joint": [
      {"d": 380},
      {"a": 50, "alpha": 90, "theta": 90, "direction": -1},
      {"a": 400, "direction": -1},
      {"a": 35, "alpha": 90, "d": 380},
      {"alpha": -90, "direction": -1},
      {"alpha": 90, "d": 80, "theta": 180}]})";
  ReadOptions options;
  options.millimetres = options.degrees = true;
  const ArmDescription reference = ReadDescription(ArmPath("reference.urdf"), {});
  const ArmDescription arm = ReadDescription("arm.json", options);
  EXPECT_LE(LargestDifference(TipFrame(arm, kJoints), TipFrame(reference, kJoints)), 1e-15);
}

}  // namespace
}  // namespace qal::io
