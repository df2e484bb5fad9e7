#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "../../src/kinematics/ikfast.h"
#include "../../tools/arm/read_arm.h"
#include "../../tools/common/files.h"
#include "arms.h"

namespace qal::tools {
namespace {

// A folder that is gone after the test, and commands run in it.
class Mkik : public testing::Test {
 protected:
  Mkik() {
    std::string path = (std::filesystem::temp_directory_path() / "mkik_test.XXXXXX").string();
    if (::mkdtemp(path.data()) != nullptr) folder_ = path;
  }
  ~Mkik() override { std::filesystem::remove_all(folder_); }

  std::string In(const char* file) const { return folder_ + '/' + file; }

  // Exit status; what came out is in output_ and error_.
  int Run(const std::string& command) {
    const int status = std::system(
        ("cd '" + folder_ + "' && " + command + " >'" + In("out") + "' 2>'" + In("err") + "'")
            .c_str());
    output_ = ReadFile(In("out"));
    error_ = ReadFile(In("err"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // Left behind in the folder, apart from Run's own files.
  std::string Files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.insert(entry.path().filename());
    }
    std::string files;
    for (const std::string& name : names) {
      if (name != "out" && name != "err") files += name + ' ';
    }
    return files;
  }

  std::string folder_;
  std::string output_;
  std::string error_;
};

const std::string kMkik = QAL_MKIK " ";

TEST_F(Mkik, BuildsALibraryThatSolvesAndExportsTheEntryPointsAlone) {
  const std::string file = ArmPath("service_parallel.urdf");
  ASSERT_EQ(Run(kMkik + file + " -o libik.so"), 0) << error_;
  ASSERT_EQ(Run("nm -D --defined-only libik.so | cut -d' ' -f3- | LC_ALL=C sort"), 0);
  EXPECT_EQ(output_,
            "_ZN6ikfast12GetNumJointsEv\n_ZN6ikfast13GetIkRealSizeEv\n"
            "_ZN6ikfast16GetIkFastVersionEv\n_ZN6ikfast17GetFreeParametersEv\n"
            "_ZN6ikfast17GetKinematicsHashEv\n_ZN6ikfast20GetNumFreeParametersEv\n"
            "_ZN6ikfast9ComputeFkEPKdPdS2_\n"
            "_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE\n"
            "_ZN6ikfast9GetIkTypeEv\n");

  void* library = ::dlopen(In("libik.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << ::dlerror();
  const auto fk = reinterpret_cast<decltype(&ikfast::ComputeFk)>(
      ::dlsym(library, "_ZN6ikfast9ComputeFkEPKdPdS2_"));
  const auto ik = reinterpret_cast<decltype(&ikfast::ComputeIk)>(
      ::dlsym(library, "_ZN6ikfast9ComputeIkEPKdS1_S1_RNS_18IkSolutionListBaseIdEE"));
  const Arm arm = ReadArm(file, {});
  const closed_form::Joints joints = {0.1, -0.7, 1.1, 0.4, -1.2, 2.5};
  const Frame expected = TipFrame(arm, joints);
  Frame found;
  double rotation[9];
  fk(joints.data(), found.position.element, rotation);
  for (int i = 0; i < 9; ++i) found.rotation.row[i / 3].element[i % 3] = rotation[i];
  EXPECT_LE(LargestDifference(found, expected), 1e-14);
  ikfast::IkSolutionList<double> list;
  ASSERT_TRUE(ik(found.position.element, rotation, nullptr, list));
  double nearest = 1;
  for (size_t i = 0; i < list.GetNumSolutions(); ++i) {
    closed_form::Joints solution;
    list.GetSolution(i).GetSolution(solution.data(), nullptr);
    nearest = std::min(nearest, LargestDifference(solution, joints));
  }
  EXPECT_LE(nearest, 1e-13);
  ::dlclose(library);
}

// Needs no header and no library of ours, and no warning can be turned on that it gives.
TEST_F(Mkik, WritesASourceThatBuildsByItself) {
  for (const char* file : {"ceiling_spherical.urdf", "carrying_parallel.toml"}) {
    ASSERT_EQ(Run(kMkik + ArmPath(file) + " -o solver.cpp"), 0) << error_;
    EXPECT_EQ(Files(), "solver.cpp ");
    EXPECT_EQ(Run("${CXX:-c++} -std=c++17 -Wall -Wextra -Wconversion -Wshadow -Werror "
                  "-fsyntax-only solver.cpp"),
              0)
        << error_;
  }
}

TEST_F(Mkik, SaysWhatItFound) {
  ASSERT_EQ(Run(kMkik + ArmPath("reference.urdf") + " --json"), 0) << error_;
  const nlohmann::json found = nlohmann::json::parse(output_);
  EXPECT_EQ(found["family"], "spherical wrist");
  EXPECT_EQ(found["lengths_m"]["upper_arm"], 0.4);
  EXPECT_EQ(found["joints"][2]["upper_rad"], 2.967059678);
  EXPECT_LT(found["check"]["solutions"], 1e-12);
  ASSERT_EQ(Run(kMkik + ArmPath("carrying_parallel.toml")), 0) << error_;
  EXPECT_EQ(output_.substr(0, output_.find('\n')),
            "carrying_parallel: three parallel axes, from 'base' to 'flange'");
  EXPECT_EQ(Files(), "");
}

TEST_F(Mkik, TellsItsFailuresInOneLineAndLeavesNothing) {
  WriteFile(In("skew.urdf"), "<robot name='x'><link name='a'/></robot>");
  WriteFile(In("arm.xacro"), "");
  const std::string reference = ArmPath("reference.urdf");
  const struct {
    std::string arguments;
    int status;
    std::string message;
  } cases[] = {
      {"", 2, "ARM is required (--help shows the usage)"},
      {"none.urdf", 2, "cannot read none.urdf: No such file or directory"},
      {"arm.xacro", 2, "arm.xacro: a xacro file; run xacro on it and give its output"},
      {"arm.step", 2, "arm.step: .urdf, .xml, .toml or .json is expected"},
      {"skew.urdf", 2, "skew.urdf: no joints behind 'a'"},
      {reference + " --tip hand", 2, reference + ": no link named 'hand' (--tip)"},
      {reference + " --deg", 2, "--deg is for tables; a URDF's angles are radians"},
      {reference + " --mm", 2,
       reference + ": the arm is 0.001247 m long; 0.05 to 20 m are expected"},
      {ArmPath("carrying_parallel.toml") + " --tip hand", 2,
       "--base and --tip are for URDFs; a table has no links"},
      {reference + " -o none/libik.so", 2, "cannot write none/libik.so: No such file or directory"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(kMkik + c.arguments), c.status);
    EXPECT_EQ(error_, "mkik: " + c.message + "\n");
    EXPECT_EQ(output_, "");
  }
  EXPECT_EQ(Run("CXX=no-compiler " + kMkik + reference + " -o libik.so"), 1);
  EXPECT_EQ(error_,
            "mkik: cannot run the compiler 'no-compiler': No such file or directory; set CXX, or "
            "write the source with --source and build it where a compiler is\n");
  EXPECT_EQ(Run("CXX=false " + kMkik + reference + " -o libik.so"), 1);
  EXPECT_EQ(error_, "mkik: the compiler 'false' failed (status 1)\n");
  EXPECT_EQ(Files(), "arm.xacro skew.urdf ");
}

}  // namespace
}  // namespace qal::tools
