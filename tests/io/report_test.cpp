#include <fmt/format.h>
#include <gtest/gtest.h>
#include <qal/model/chain.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "../../io/finite_differences.h"
#include "../../io/motion_series.h"
#include "../../io/number_bytes.h"
#include "../../io/report_arm.h"
#include "../../io/report_html.h"
#include "../support/decoded.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

using Json = nlohmann::ordered_json;

// RFC 4648, section 10; -2 is c0000000 as a float.
TEST(Base64, IsThatOfTheStandardWithTheLowestByteFirst) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(Base64("\xff\xef\xbe"), "/+++");
  NumberBytes bytes;
  bytes.Add(-2.0F);
  EXPECT_EQ(bytes.Text(), Base64(std::string("\0\0\0\xc0", 4)));
}

Vec3 VectorOf(const Json& json) { return {json[0], json[1], json[2]}; }

// A turn about an axis anywhere.
Transform Turn(const Json& axis, double angle) {
  Transform there, back;
  there.position = VectorOf(axis["point_m"]);
  back.position = {-there.position.x, -there.position.y, -there.position.z};
  return there * RotationAbout(VectorOf(axis["direction"]), angle) * back;
}

class ReportArm : public InOwnFolder, public testing::WithParamInterface<const char*> {};

// The page draws the arm by its axes alone: their turns, one after the other, have to bring the
// tool to where the solver has it.
TEST_P(ReportArm, HasAxesThatMoveTheToolAsTheSolverDoes) {
  std::ofstream("arm.toml") << GetParam();
  const LoadedArm loaded = ReadArm("arm.toml");
  const Json json = ReportArmJson(loaded);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> angle(-2.5, 2.5);
  for (int i = 0; i < 20; ++i) {
    Joints joints;
    for (double& joint : joints) joint = angle(random);
    Transform tool;
    tool.position = VectorOf(json["tool"]["position_m"]);
    const auto wxyz = json["tool"]["wxyz"].get<std::array<double, 4>>();
    Quat turn = {wxyz[0], wxyz[1], wxyz[2], wxyz[3]};
    for (size_t j = 6; j-- > 0;) {
      const Json& axis = json["axes"][j];
      const Vec3 d = VectorOf(axis["direction"]);
      const double s = std::sin(joints[j] / 2);
      tool = Turn(axis, joints[j]) * tool;
      turn = Quat{std::cos(joints[j] / 2), s * d.x, s * d.y, s * d.z} * turn;
    }
    const Pose expected = Forward(loaded.arm, joints).value();
    EXPECT_LT(Distance(tool.position, expected.position), 1e-12) << i;
    EXPECT_LT(AngleBetween(turn, expected.orientation), 1e-12) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Arms, ReportArm,
                         testing::Values("description = '" QAL_ARMS_DIR "/painting_oblique.toml'",
                                         "description = '" QAL_ARMS_DIR "/ceiling_spherical.urdf'\n"
                                         "[base]\nxyz = [1, 2, 3]\nrpy_deg = [180, 0, 30]\n"
                                         "[tool]\nxyz = [0, 0.1, 0.2]\n",
                                         "solver = '" QAL_REFERENCE_SOLVER "'"));

LoadedArm Reference() { return {Arm::Reference(), "", "reference arm"}; }

// Ten samples 0.1 s apart, none like the others.
FileTrajectory Ten() {
  FileTrajectory trajectory;
  std::mt19937 random(3);
  std::uniform_real_distribution<double> angle(-0.01, 0.01);
  Joints joints = {0.1, 0.3, -0.2, 0.2, 0.5, 0};
  for (int i = 0; i < 10; ++i) {
    for (double& joint : joints) joint += angle(random);
    trajectory.push_back({0.1 * i, joints});
  }
  return trajectory;
}

double Worst(const std::vector<Joints>& values, size_t joint, size_t& sample) {
  double worst = -1;
  for (size_t i = 0; i < values.size(); ++i) {
    if (!(std::fabs(values[i][joint]) > worst)) continue;
    worst = std::fabs(values[i][joint]);
    sample = i;
  }
  return worst;
}

// What the curves show at its highest is what the verdict says, at the same sample.
TEST(MotionSeries, HasThePeaksThatAreMeasured) {
  const Arm arm = Arm::Reference();
  FileTrajectory by_differences = Ten();
  by_differences.back().joints[3] += 0.5;  // stops from full speed
  FileTrajectory by_rates = WithRates(Ten(), &FiniteDifferences::JointSpeedAt);
  for (const FileTrajectory& trajectory : {by_differences, by_rates}) {
    const MotionSeries series = SeriesOf(arm, trajectory);
    EXPECT_EQ(series.own_rates, HaveRates(trajectory));
    // A jerk limit beyond all: what may hide between two samples then is nothing to speak of.
    const Metrics metrics = Measure(trajectory, arm, Joints{1e9, 1e9, 1e9, 1e9, 1e9, 1e9});
    const std::pair<MetricIndex, const std::vector<Joints>*> curves[] = {
        {kJointSpeed, &series.velocities},
        {kJointAcceleration, &series.accelerations},
        {kJointJerk, &series.jerks}};
    for (const auto& [metric, values] : curves) {
      for (size_t joint = 0; joint < 6; ++joint) {
        size_t sample = 0;
        EXPECT_DOUBLE_EQ(Worst(*values, joint, sample), metrics[metric][joint]->value);
        EXPECT_EQ(sample, metrics[metric][joint]->sample) << metric << ", joint " << joint + 1;
      }
    }
  }
}

// The sample's tool is another one than the arm's; its speed is that between places 2 us apart.
TEST(MotionSeries, TakesTheToolsSpeedFromTheJoints) {
  Transform tool = FromRollPitchYaw({0.1, 0.2, 0.3});
  tool.position = {0.1, -0.2, 0.3};
  const Arm other = Arm::Reference().WithTool(tool).value();
  const Joints joints = {0.1, 0.3, -0.2, 0.2, 0.5, -0.4};
  const Joints velocities = {0.3, -0.5, 0.7, 1, -0.4, 0.6};
  const auto place = [&](double time_s) {
    Joints then = joints;
    for (size_t j = 0; j < 6; ++j) then[j] += time_s * velocities[j];
    return Forward(other, then).value();
  };
  const FileSample sample = {0, joints, place(0), velocities, Joints{}};
  const MotionSeries series = SeriesOf(Arm::Reference(), {sample});
  EXPECT_NEAR(series.tool_speed_m_s[0],
              Distance(place(-1e-6).position, place(1e-6).position) / 2e-6, 1e-8);
  // Joint 5 is nearest to its end: 2.967 - 0.5 rad.
  EXPECT_NEAR(series.limit_margin_rad[0], 2.967059678 - 0.5, 1e-12);
  EXPECT_EQ(series.singular_value[0],
            DistanceToSingularities(Arm::Reference(), joints)->smallest_singular_value);
}

Findings FindingsOfTen(double speed_limit, Origin origin) {
  Limits limits = LimitsOf(Arm::Reference());
  limits[kJointSpeed].assign(6, {speed_limit, origin});
  return FindingsOf(Reference(), {Ten(), {}}, limits, false);
}

TEST(ReportMotions, HoldTheNumbersOfEverySampleAndTheVerdict) {
  const Findings findings = FindingsOfTen(0.09, Origin::kOption);
  const Json json = ReportMotionJson(
      {"ten", findings, {{{0, "step 1: wait"}}, {{0, {1, 2, 3}, 0.1, 0.01, 0.2, 0.3}}}});
  const FileTrajectory samples = Ten();
  EXPECT_EQ(json["samples"], 10);
  EXPECT_EQ(json["rates"], "differences");
  EXPECT_EQ(Decoded<double>(json["time_s"])[7], samples[7].time_s);
  const std::vector<float> joints = Decoded<float>(json["joints_rad"]);
  ASSERT_EQ(joints.size(), 60U);
  EXPECT_EQ(joints[6 * 7 + 2], static_cast<float>(samples[7].joints[2]));
  const Pose pose = Forward(Arm::Reference(), samples[7].joints).value();
  EXPECT_EQ(Decoded<float>(json["positions_m"])[3 * 7 + 1], static_cast<float>(pose.position.y));
  EXPECT_EQ(Decoded<float>(json["wxyz"])[4 * 7 + 2], static_cast<float>(pose.orientation.y));
  EXPECT_EQ(json["steps"][0]["name"], "step 1: wait");
  EXPECT_EQ(json["corners"][0]["position_m"], Json({1, 2, 3}));

  const Violation& first = findings.violations.front();
  size_t found = 0;
  for (const Json& check : json["verdict"]["checks"]) {
    EXPECT_EQ(check["key"] == "motor_speed_rpm" && check["state"] != "measured", false);
    EXPECT_EQ(check["key"] == "joint_jerk_rad_s3" && check["origin"] != "assumed", false);
    if (check["state"] != "violation" || found++ > 0) continue;
    EXPECT_EQ(check["key"], "joint_speed_rad_s");
    EXPECT_EQ(check["joint"], first.entry + 1);
    EXPECT_EQ(check["limit"], 0.09);
    EXPECT_EQ(check["value"], findings.metrics[kJointSpeed][first.entry]->value);
    EXPECT_EQ(check["sample"], findings.metrics[kJointSpeed][first.entry]->sample);
  }
  EXPECT_EQ(found, findings.violations.size());
  EXPECT_EQ(json["verdict"]["ok"], false);
}

TEST(ReportMotions, SayTheWorstFirst) {
  const auto headline = [](const Findings& findings) {
    return ReportVerdictJson(findings)["headline"].get<std::string>();
  };
  EXPECT_EQ(headline(FindingsOfTen(1, Origin::kOption)), "within every limit");
  const Findings findings = FindingsOfTen(0.09, Origin::kOption);
  const Peaks& speeds = findings.metrics[kJointSpeed];
  size_t worst = 0;
  for (size_t j = 0; j < 6; ++j) worst = speeds[j]->value > speeds[worst]->value ? j : worst;
  const std::string expected =
      fmt::format("joint speed of joint {}, {:.4g} % of its limit, at {:.4g} s", worst + 1,
                  speeds[worst]->value / 0.0009, 0.1 * static_cast<double>(speeds[worst]->sample));
  EXPECT_EQ(headline(findings),
            fmt::format("{} violations; worst: {}", findings.violations.size(), expected));
  EXPECT_EQ(headline(FindingsOfTen(0.09, Origin::kAssumed)),
            fmt::format("within every described limit; {} assumed limits exceeded, worst: {}",
                        findings.violations.size(), expected));
}

TEST(ReportMotions, AreRefusedWhereTheTimeGoesBack) {
  FileTrajectory samples = Ten();
  samples[4].time_s = 0.2;
  const Findings findings =
      FindingsOf(Reference(), {samples, {}}, LimitsOf(Arm::Reference()), false);
  EXPECT_EQ("ten: sample 4: the time goes back from 0.3 to 0.2 s; this can't be played or drawn",
            Refusal<Failure>([&] {
              (void)ReportMotionJson({"ten", findings});
            }));
}

// Whatever a file puts into a name comes out as text.
TEST(ReportHtml, KeepsNamesFromBeingMarkup) {
  const std::string name =
      "</script><script>alert('x')</script><!-- & \xe2\x80\xa8 \" \\ @QAL_REPORT_DATA@";
  const std::string html =
      ReportHtml(Json{{"title", name}, {"other", "\xff"}}, "<p>@QAL_REPORT_DATA@</p>");
  ASSERT_EQ(0U, html.find("<p>{"));
  const std::string text = html.substr(3, html.size() - 7);
  EXPECT_EQ(std::string::npos, text.find_first_of("<>&"));
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' '; }));
  const Json data = Json::parse(text);
  EXPECT_EQ(name, data["title"]);
  EXPECT_EQ("\xef\xbf\xbd", data["other"]);
}

TEST(ReportHtml, SaysWhatToInstallWithoutAPage) {
  EXPECT_EQ(
      "this build has no report page; install nodejs and npm, then build with "
      "-DQAL_BUILD_REPORT=ON",
      Refusal<UsageError>([] { ExpectReportPage(""); }));
}

}  // namespace
}  // namespace qal::io
