#include "../../io/arm_file.h"

#include <gtest/gtest.h>
#include <qal/model/chain.h>
#include <qal/solve/kinematics.h>

#include <cmath>

#include "../../io/error.h"
#include "../../io/loaded_arm.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

using ArmFiles = InOwnFolder;

const std::string kArms = QAL_ARMS_DIR "/";
const std::string kReference = "description = '" + kArms + "reference.urdf'\n";
constexpr Joints kJoints = {0.1, -0.2, 0.3, -0.4, 0.5, -0.6};

std::string Written(const std::string& file, const std::string& content) {
  std::ofstream(file) << content;
  return file;
}

LoadedArm ArmOf(const std::string& content) { return ReadArm(Written("arm", content)); }

void ExpectNear(const Pose& a, const Pose& b) {
  EXPECT_NEAR(a.position.x, b.position.x, 1e-14);
  EXPECT_NEAR(a.position.y, b.position.y, 1e-14);
  EXPECT_NEAR(a.position.z, b.position.z, 1e-14);
  EXPECT_NEAR(a.orientation.w * b.orientation.w + a.orientation.x * b.orientation.x +
                  a.orientation.y * b.orientation.y + a.orientation.z * b.orientation.z,
              1, 1e-14);
}

// The number of joint `j` and whether somebody said it.
void ExpectSetting(const Setting& setting, double value, bool described) {
  EXPECT_DOUBLE_EQ(setting.value, value);
  EXPECT_EQ(setting.described, described);
}

TEST_F(ArmFiles, AreToldByTheirContentWhateverTheirName) {
  const Pose expected = Forward(Arm::Reference(), kJoints).value();
  const struct {
    std::string content;
    std::string kind;
  } files[] = {
      {FileContent(kArms + "reference.urdf"), "URDF"},
      {"\xEF\xBB\xBF \n" + FileContent(kArms + "reference.urdf"), "URDF"},
      {FileContent(QAL_REFERENCE_SOLVER), "solver library"},
      {kReference, "arm file"},
      {"{\"description\": \"" + kArms + "reference.urdf\"}", "arm file"},
      {"solver = '" QAL_REFERENCE_SOLVER "'\n", "arm file"},
  };
  for (const auto& [content, kind] : files) {
    const LoadedArm loaded = ReadArm(Written("arm.txt", content));
    EXPECT_EQ(loaded.kind, kind);
    EXPECT_EQ(loaded.file, "arm.txt");
    ExpectNear(Forward(loaded.arm, kJoints).value(), expected);
  }
  EXPECT_EQ(ReadArm(kArms + "carrying_parallel.toml").kind, "table");
  const std::string table = FileContent(kArms + "welding_ortho_parallel.json");
  EXPECT_EQ(ReadArm(Written("table.xml", table)).kind, "table");
}

// The reference arm as a file is the built-in one: geometry, limits, motors, and what is assumed.
TEST_F(ArmFiles, HoldTheReferenceArm) {
  const Arm built_in = Arm::Reference();
  const Arm read = ReadArm(kArms + "reference.toml").arm;
  EXPECT_EQ(read.name(), built_in.name());
  EXPECT_EQ(read.cycle_s().value, built_in.cycle_s().value);
  for (size_t j = 0; j < 6; ++j) {
    const JointModel& a = read.joints()[j];
    const JointModel& b = built_in.joints()[j];
    for (const auto setting :
         {&JointModel::lower_rad, &JointModel::upper_rad, &JointModel::velocity_rad_s,
          &JointModel::acceleration_rad_s2, &JointModel::jerk_rad_s3, &JointModel::gear_ratio}) {
      ExpectSetting(a.*setting, (b.*setting).value, (b.*setting).described);
    }
  }
  ExpectNear(Forward(read, kJoints).value(), Forward(built_in, kJoints).value());
}

// What the document's example says is what the arm has: degrees, one number for all or six, the
// motor's speed from the joint's, and frames at both ends.
TEST_F(ArmFiles, AreReadAsTheDocumentShows) {
  const std::string document = FileContent(QAL_DOCS_DIR "/arm-file.md");
  const size_t begin = document.find("```toml\n") + 8;
  const std::string example = document.substr(begin, document.find("```", begin) - begin);
  std::filesystem::copy(kArms + "ceiling_spherical.urdf", ".");
  const LoadedArm loaded = ArmOf(example);
  EXPECT_EQ(ArmHeading(loaded).find("ceiling cell from arm, spherical wrist, hash qal-"), 0u);
  EXPECT_EQ(ArmJson(loaded)["solver"], nullptr);
  const JointModel& joint = loaded.arm.joints()[3];
  const double degree = std::acos(-1.0) / 180;
  ExpectSetting(joint.velocity_rad_s, 320 * degree, true);
  ExpectSetting(joint.acceleration_rad_s2, 900 * degree, true);
  ExpectSetting(joint.jerk_rad_s3, 900 * degree / 0.05, false);
  ExpectSetting(joint.gear_ratio, 80, true);
  ExpectSetting(loaded.arm.cycle_s(), 0.004, true);
  EXPECT_DOUBLE_EQ(joint.motor_speed_rpm(), 320.0 / 360 * 60 * 80);

  const ArmDescription bare = ReadDescription(kArms + "ceiling_spherical.urdf", {});
  Transform base;
  base.position = {0, 0, 2.4};
  Transform tool = RotationAbout({0, 1, 0}, 30 * degree);
  tool.position = {0.05, 0, 0.31};
  const Vec3 tip = (base * TipFrame(bare, kJoints) * tool).position;
  const Vec3 read = Forward(loaded.arm, kJoints).value().position;
  EXPECT_NEAR(std::hypot(tip.x - read.x, tip.y - read.y, tip.z - read.z), 0, 1e-14);
}

// Limits of the file before the description's, also for a solver; and the motor's before those.
TEST_F(ArmFiles, SayMoreThanTheirDescription) {
  const std::string solver = "solver = '" QAL_REFERENCE_SOLVER "'\n";
  for (const std::string& more : {std::string(), solver}) {
    const Arm arm = ArmOf(kReference + more +
                          "[limits]\nupper_deg = 90\n[motors]\nspeed_rpm = 60\n"
                          "gear_ratio = 6\n")
                        .arm;
    const JointModel& joint = arm.joints()[1];
    ExpectSetting(joint.lower_rad, -2.967059678, true);
    ExpectSetting(joint.upper_rad, std::acos(0.0), true);
    ExpectSetting(joint.velocity_rad_s, std::acos(-1.0) / 3, true);
    EXPECT_EQ(joint.name, "joint_2");
  }
  ExpectSetting(ArmOf(kReference).arm.joints()[4].velocity_rad_s, 1.03, true);
  // A table within the file; its description alone, as mkik takes it.
  const std::string table = kArms + "welding_ortho_parallel.json";
  Written("arm", R"({"limits": {"lower_rad": -1}, "description": )" + FileContent(table) + "}");
  const ArmDescription description = ReadDescription("arm", {});
  EXPECT_EQ(description.joints[5].lower_rad, -1);
  const Vec3 tip = TipFrame(description, kJoints).position;
  const Vec3 plain = TipFrame(ReadDescription(table, {}), kJoints).position;
  EXPECT_EQ(std::hypot(tip.x - plain.x, tip.y - plain.y, tip.z - plain.z), 0);
}

// clang-format off
TEST_F(ArmFiles, AreRefusedWithFileLineAndKey) {
  const std::pair<std::string, std::string> rows[] = {
      {"name = 'x'\n", "arm: no description; a table has its convention, an arm file has 'description', a path or a table, or 'solver', a path"},
      {kReference + "tol = 1\n", "arm, line 2: unknown entry 'tol'; expected are name, description, solver, base_link, tip_link, cycle_s, limits, motors, base, tool"},
      {kReference + "[limits]\n\nspeed = 1\n", "arm, line 4, limits: unknown entry 'speed'; expected are lower_rad, lower_deg, upper_rad, upper_deg, velocity_rad_s, velocity_deg_s, acceleration_rad_s2, acceleration_deg_s2, jerk_rad_s3, jerk_deg_s3"},
      {kReference + "[motors]\ngear_ratio = [1, 2, 3, 4, 5]\n", "arm, line 3, motors, gear_ratio: 5 numbers; one or six are expected"},
      {kReference + "[motors]\nspeed_rpm = 'fast'\n", "arm, line 3, motors, speed_rpm: a number or a list of six is expected"},
      {kReference + "[limits]\nlower_rad = -inf\n", "arm, line 3, limits, lower_rad: -inf is not a finite number"},
      {kReference + "[limits]\nlower_rad = -1\nlower_deg = -60\n", "arm, line 4, limits, lower_deg: given in radians and in degrees; one of them is expected"},
      {kReference + "[tool]\nrpy = [0, 90, 0]\n", "arm, line 3, tool, rpy: 90 rad is more than a turn; are these degrees?"},
      {kReference + "[tool]\nxyz = [0, 0]\n", "arm, line 3, tool, xyz: 3 numbers are expected"},
      {kReference + "[tool]\nquat_wxyz = [0, 0, 0, 0]\n", "arm, line 3, tool, quat_wxyz: a quaternion of length 1 is expected"},
      {kReference + "[tool]\nrpy = [0, 0, 0]\nquat_wxyz = [1, 0, 0, 0]\n", "arm, line 4, tool, quat_wxyz: there is rpy as well; one of them is expected"},
      {kReference + "tip_link = 'hand'\n", "arm, line 1, description: " + kArms + "reference.urdf: no link named 'hand' (--tip)"},
      {"description = 'none.urdf'\n", "arm, line 1, description: cannot read none.urdf: No such file or directory"},
      {"description = 3\n", "arm, line 1, description: a table is expected"},
      {"base_link = 'b'\n[description]\n", "arm, line 1, base_link: for a URDF; a table has no links"},
      {"\x7F" "ELF and no more", "arm: cannot be loaded as a solver library: ..."},
      {"step; one\n", "arm, line 1: not well-formed TOML ..."},
      {"<robot xmlns:xacro='x'><xacro:include/></robot>", "arm: a xacro file; run xacro on it and give its output"},
  };
  for (const auto& [content, expected] : rows) {
    const std::string text = Refusal<UsageError>([&, &file = content] { ArmOf(file); });
    const size_t dots = expected.find("...");
    EXPECT_EQ(text.substr(0, dots), expected.substr(0, dots));
  }
}
// clang-format on

TEST_F(ArmFiles, AreNeverExchangedForAnotherArm) {
  EXPECT_EQ(ArmHeading(ResolveArm(std::nullopt, nullptr)),
            "reference arm (built in), spherical wrist, hash qal-reference-arm-1");
  EXPECT_EQ(ResolveArm(std::nullopt, "").kind, "reference arm");
  const std::string named = kArms + "bench_parallel.urdf";
  EXPECT_EQ(ResolveArm(std::nullopt, named.c_str()).arm.name(), "bench_parallel");
  EXPECT_EQ(ResolveArm(kArms + "reference.urdf", named.c_str()).arm.name(), "reference");
  EXPECT_EQ(Refusal([&] { ResolveArm("none", named.c_str()); }),
            "cannot read none: No such file or directory");
  EXPECT_EQ(Refusal([] { ResolveArm(std::nullopt, "none"); }),
            "QAL_ARM: cannot read none: No such file or directory");
  EXPECT_EQ(ArmHeading(ReadArm(QAL_REFERENCE_SOLVER)),
            "libik.so from " QAL_REFERENCE_SOLVER ", solver " QAL_REFERENCE_SOLVER
            ", hash qal-reference-arm-1");
  // An arm that can't be solved: told at once, with the reason.
  std::string skew = FileContent(kArms + "reference.urdf");
  skew.replace(skew.rfind("<axis xyz=\"0 1 0\"/>"), 19, "<axis xyz=\"1 0 0\"/>");
  Written("skew", skew);
  EXPECT_EQ(
      Refusal<Failure>([] { ReadArm("skew"); }).find("skew: check which six joints are the arm's"),
      0u);
}

}  // namespace
}  // namespace qal::io
