#include "../../io/limits.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "../../io/arm_file.h"
#include "../../io/trajectory_file.h"
#include "../support/refusal.h"
#include "../support/tool_run.h"

namespace qal::io {
namespace {

std::string Repeated(const std::string& text, size_t count) {
  std::string repeated;
  for (size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

// Readers of texts that nobody wrote by hand: a text that takes more than its share ends the test's
// process, or leaves it too large. Both bounds are above what these texts take under the sanitizers
// (3 s, 760 MiB), and below what a reader takes that doesn't keep to the limits.
class Limits : public InOwnFolder {
 protected:
  Limits() {
    rusage used;
    ::getrusage(RUSAGE_SELF, &used);
    const rlim_t end = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) + 60;
    const rlimit cpu_s = {end, RLIM_INFINITY};
    ::setrlimit(RLIMIT_CPU, &cpu_s);
  }
  ~Limits() override {
    rusage used;
    ::getrusage(RUSAGE_SELF, &used);
    EXPECT_LE(used.ru_maxrss >> 10, 1200) << "[MiB]";
  }

  static void ReadArmText(const std::string& text) {
    std::ofstream("file") << text;
    (void)ReadDescription("file", {});
  }
  static void ReadTrajectoryText(const std::string& text) {
    std::ofstream("file") << text;
    (void)ReadTrajectory("file", std::nullopt, {});
  }
};

struct Row {
  std::string text;
  std::string expected;  // the reason, or its beginning when it ends in "..."
};

template <typename Read>
void ExpectReasons(Read read, const std::vector<Row>& rows) {
  for (const auto& [text, expected] : rows) {
    const std::string reason = Refusal([&, &file = text] { read(file); });
    const size_t dots = expected.find("...");
    EXPECT_EQ(reason.substr(0, dots), expected.substr(0, dots)) << text.substr(0, 60);
  }
}

constexpr size_t kMany = 300000;
const std::string kCsvHead = "time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad";
const std::string kRosHead =
    "joint_names: [joint_1, joint_2, joint_3, joint_4, joint_5, joint_6]\n";

// clang-format off
TEST_F(Limits, NestingIsRefusedAtADepth) {
  const std::string within = Repeated("[", 63) + Repeated("]", 63);
  ExpectReasons(ReadArmText, {
      {R"({"convention": )" + Repeated("[", kMany), "file, line 1, column 79: nested more than 64 deep"},
      {R"({"a":)" + Repeated(R"({"a":)", kMany), "file, line 1, column 321: nested more than 64 deep"},
      {R"({"convention": )" + within + "}", "file, convention: [[[[..."},
      {"convention =\n" , "file, line 1: not well-formed TOML..."},
      {"convention = " + Repeated("[", kMany), "file, line 1: nested more than 64 deep"},
      {"a = 1\nb = " + Repeated("{a = ", kMany), "file, line 2: nested more than 64 deep"},
      {Repeated("a.", kMany) + "a = 1", "file, line 1: nested more than 64 deep"},
      {"b = '''\n#'''\n[ \"\\\"#\" " + Repeated(" . 'a'", kMany) + "]", "file, line 3: nested more than 64 deep"},
      {"b = {a = \"\"\"x\"\"\"\"\"" + Repeated(", b." + Repeated("a.", kMany), 1) + "a = 1}", "file, line 1: nested more than 64 deep"},
      {Repeated(Repeated("a.", 60) + "a = {", 60) + Repeated("}", 60), "file, line 1: nested more than 64 deep"},
      {"[" + Repeated("a.", 40) + "a]\n" + Repeated("b.", 40) + "b = 1", "file, line 2: nested more than 64 deep"},
      {"convention = " + within, "file, line 1, convention: [[[[..."},
      {"a = '" + Repeated(".", 100) + "' # " + Repeated(".", 100), "file, line 1: unknown entry 'a'..."},
      {"<robot>\n" + Repeated("<a>", kMany), "file, line 2: nested more than 64 deep"},
      {"<robot>" + Repeated("<a x='/>'>", 63) + Repeated("</a>", 63) + Repeated("<a/>", 99) + "</robot>", "file: no links"},
  });
  ExpectReasons(ReadTrajectoryText, {
      {"{\"more\": " + Repeated("[", kMany), "file: line 1, column 73: nested more than 64 deep"},
      {kRosHead + "points: " + Repeated("[", kMany), "file: line 2: nested more than 64 deep"},
      {kRosHead + "points: " + Repeated("{a: ", kMany), "file: line 2: nested more than 64 deep"},
      {kRosHead + "points:\n " + Repeated("- ", kMany), "file: line 3: nested more than 64 deep"},
      {kRosHead + "points:\n " + Repeated("? ", kMany), "file: line 3: nested more than 64 deep"},
  });
}

TEST_F(Limits, MuchOfAnythingTakesNoMoreThanItsShare) {
  ExpectReasons(ReadArmText, {
      {"{\"a\": [" + Repeated("0,", 2 * kMostValues), "file, line 1, column 2000005: more than 1000000 values"},
      {"a = [" + Repeated("{},", kMostValues), "file, line 1: more than 1000000 values"},
      {"<robot>" + Repeated("<a/>", 4 * kMostValues), "file, line 1: more than 1000000 values"},
      {"<robot>\n<a " + Repeated("a='' ", kMany), "file, line 2: an element with more than 100 attributes"},
      {Repeated(" ", 65 << 20), "cannot read file: larger than 64 MiB"},
  });
  std::string many_keys;
  for (size_t i = 0; i <= kMostValues; ++i) many_keys += '"' + std::to_string(i) + "\":0,";
  const std::string time = "  time_from_start: {sec: 0, nanosec: 0}\n";
  ExpectReasons(ReadTrajectoryText, {
      {Repeated(",", 60 << 20), "file: line 1: 62914561 columns, at most 1000 are read"},
      {kCsvHead + "\n" + Repeated(",", 60 << 20), "file: line 2: 7 fields were expected, as in the header; the row has 62914561"},
      {"%TAG !a! a\n" + Repeated("%TAG !b! b\n", 100000), "file: line 101: more than 100 %TAG directives"},
      {"a: &a [0]\n" + kRosHead + "points:\n- positions: &p [0, 0, 0, 0, 0, *a]\n" + time + "- positions: *p\n" + time, "file: line 1: positions: a number was expected"},
      {"{" + many_keys + "\"a\": 0}", "file: line 1, column 10888900: more than 1000000 values"},
      {"a: *a", "file: line 1: nothing is named 'a' before"},
  });
}
// clang-format on

// A chain or a star of links, as many as a whole building's.
TEST_F(Limits, LinksTakeTimeInProportion) {
  constexpr int kLinks = 20000;
  for (const bool star : {false, true}) {
    std::string urdf = "<robot name='r'><link name='0'/>";
    for (int i = 1; i < kLinks; ++i) {
      const std::string name = std::to_string(i);
      urdf += "<link name='" + name + "'/><joint name='" + name + "' type='fixed'><parent link='" +
              std::to_string(star ? 0 : i - 1) + "'/><child link='" + name + "'/></joint>";
    }
    ExpectReasons(
        ReadArmText,
        {{urdf + "</robot>",
          star ? "file: the chain from '0' has 19999 ends; --tip names one of '1', '10',..."
               : "file: 0 joints turn from '0' to '19999'; six are expected"}});
  }
}

// Where and what it is, and what was expected, stay of a reason that quotes a megabyte.
TEST_F(Limits, AReasonIsALineToRead) {
  const std::string name(1 << 20, 'n');
  const auto expect_short = [](const std::string& reason, const std::string& end) {
    EXPECT_LE(reason.size(), 2010u);
    EXPECT_EQ(reason.substr(0, 4), "file");
    EXPECT_NE(reason.find("nnn ... "), std::string::npos) << reason;
    EXPECT_EQ(reason.substr(reason.size() - end.size()), end);
  };
  const std::string link = "<link name='" + name + "'/>";
  for (const auto& [text, end] : std::vector<Row>{
           {name + " = 1", "base, tool"},
           {"{\"" + name + "\": 1}", "base, tool"},
           {"convention = '" + name + "'", "'modified-dh' or 'ortho-parallel' is expected"},
           {"<robot>" + link + link + "</robot>", "n'"},
       }) {
    expect_short(Refusal([&, &arm = text] { ReadArmText(arm); }), end);
  }
  const std::string point = "points:\n- positions: [0, 0, 0, 0, 0, " + name +
                            "]\n  time_from_start: {sec: 0, nanosec: 0}\n";
  for (const std::string& text : {kCsvHead + "\n" + name + ",0,0,0,0,0,0", kRosHead + point}) {
    expect_short(Refusal([&] { ReadTrajectoryText(text); }), "n' is not a number");
  }
}

// clang-format off
// A second value at a key or of a name would be taken, or passed over, silently.
TEST_F(Limits, WhatIsThereTwiceIsRefused) {
  const std::string arms = QAL_ARMS_DIR "/";
  const auto changed = [&arms](const std::string& text, const std::string& by) {
    std::string urdf = FileContent(arms + "reference.urdf");
    return urdf.replace(urdf.find(text), text.size(), by);
  };
  ExpectReasons(ReadArmText, {
      {"{\"name\": \"a\",\n \"name\": \"b\"}", "file, line 2, column 7: 'name' is a duplicate key"},
      {R"({"limits": {"lower_rad": 0, "lower_rad": 0}})", "file, line 1, column 39: 'lower_rad' is a duplicate key"},
      {"name = 'a'\nname = 'b'\n", "file, line 2: not well-formed TOML..."},
      {"[limits]\n[limits]\n", "file, line 2: not well-formed TOML..."},
      {changed("\"joint_2\"", "\"joint_1\""), "file, line 19: a second joint named 'joint_1'"},
      {changed("<axis", "<axis xyz=\"1 0 0\"/><axis"), "file, line 16: a second <axis> in <joint>"},
      {changed("<child", "<child link=\"link_2\"/><child"), "file, line 14: a second <child> in <joint>"},
      {changed("lower=", "lower=\"0\" lower="), "file, line 17: not well-formed XML..."},
      {changed("</robot>", "</robot><robot/>"), "file, line 59: a second root element, <robot>"},
  });
  ExpectReasons(ReadTrajectoryText, {
      {R"({"time_s": [0], "time_s": [1]})", "file: line 1, column 24: 'time_s' is a duplicate key"},
      {kRosHead + kRosHead, "file: line 2: 'joint_names' is a duplicate key"},
      {"a: {b: 1,\n 'b': 1}\n" + kRosHead, "file: line 2: 'b' is a duplicate key"},
  });
}

// A byte that ends a C string ends no message and no name.
TEST_F(Limits, ANulByteIsNoText) {
  const std::string nul(1, '\0');
  for (const std::string& text : {"name = '" + nul + "'", "{" + nul, "<robot name='" + nul + "'>"}) {
    ExpectReasons(ReadArmText, {{"\n" + text, "file, line 2: a NUL byte; text is expected"}});
  }
  for (const std::string& text : {kCsvHead + "\n" + nul, "{\n" + nul, kRosHead + nul}) {
    ExpectReasons(ReadTrajectoryText, {{text, "file: line 2: a NUL byte; text is expected"}});
  }
  ExpectReasons(ReadArmText, {
      {"{\"a\\u0000b\": 1}", "file: unknown entry 'a b'; expected are..."},
      {"\"a\\u0000b\" = 1", "file, line 1: unknown entry 'a b'; expected are..."},
  });
}

// Differences of numbers like these are infinite, and what is divided by them 0.
TEST_F(Limits, NumbersThatNoRateIsTrueOfAreRefused) {
  const std::string reason = " is too large to tell a speed from; at most 1e+12 s, rad or m are expected";
  const std::string pose = ",x_m,y_m,z_m,qw,qx,qy,qz\n";
  ExpectReasons(ReadTrajectoryText, {
      {kCsvHead + "\n-1e308,0,0,0,0,0,0\n1e308,9,0,0,0,0,0\n", "file: sample 0 (line 2): -1e+308" + reason},
      {kCsvHead + "\n0,0,0,0,0,0,0\n1,0,0,0,0,0,2e12\n", "file: sample 1 (line 3): 2e+12" + reason},
      {kCsvHead + pose + "0,0,0,0,0,0,0,0,0,1e200,1,0,0,0\n", "file: sample 0 (line 2): 1e+200" + reason},
      {R"({"time_s": [0, 1e308], "joints_rad": [[0,0,0,0,0,0], [0,0,0,0,0,0]]})", "file: sample 1: 1e+308" + reason},
  });
}
// clang-format on

}  // namespace
}  // namespace qal::io
