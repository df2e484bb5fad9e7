#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "../../src/kinematics/solve/solver_functions.h"
#include "arms.h"

// The program itself defines what the solvers define, and exports it. None of it may be called.
namespace ikfast {

bool ComputeIk(const IkReal* /*eetrans*/, const IkReal* /*eerot*/, const IkReal* /*pfree*/,
               IkSolutionListBase<IkReal>& /*solutions*/) {
  ADD_FAILURE() << "the program's own ComputeIk is called";
  return false;
}

void ComputeFk(const IkReal* /*joints*/, IkReal* /*eetrans*/, IkReal* /*eerot*/) {
  ADD_FAILURE() << "the program's own ComputeFk is called";
}

}  // namespace ikfast

struct [[gnu::visibility("default")]] SolverOfJoint1 {
  static double Offset();
  virtual ~SolverOfJoint1() = default;
  virtual double Joint1(double /*x*/) const { return 99; }
};
__attribute__((weak)) double SolverOfJoint1::Offset() { return 77; }

namespace qal {
namespace {

// Everything that a solver says of a set of joints and of its pose: compared bit for bit.
std::vector<double> AnswersOf(const Solver& solver, const Joints& joints, int spoiled) {
  double eetrans[3];
  double eerot[9];
  solver.functions().Forward(joints.data(), eetrans, eerot);
  std::vector<double> answers(eetrans, eetrans + 3);
  answers.insert(answers.end(), eerot, eerot + 9);
  if (spoiled % 3 == 1) eetrans[spoiled % 9 / 3] += 0.2;
  if (spoiled % 7 == 1) eerot[spoiled % 9] *= spoiled % 2 ? 1 + 1e-7 : 1 + 1e-10;
  if (spoiled % 11 == 1) eetrans[1] = HUGE_VAL;
  SolutionList solutions;
  answers.push_back(solver.functions().Inverse(eetrans, eerot, solutions));
  solutions.ForEach([&](const double* q) { answers.insert(answers.end(), q, q + 6); });
  return answers;
}

bool SameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

std::string LibraryOf(const std::string& file) {
  return QAL_ARM_LIBRARIES "/" + file.substr(0, file.find('.')) + "/libik.so";
}

const std::string kForeign = QAL_FOREIGN_LIBRARIES "/here/libik.so";

// A closed form taken at run time is the library that a compiler makes of the same geometry: every
// arm, all of them and two foreign solvers open side by side, queried in turn.
TEST(Solvers, SideBySideAnswerAsTheLibrariesOfTheirArmsToTheLastBit) {
  std::vector<std::pair<Solver, Solver>> pairs = {
      {Solver::Reference(), Solver::Load(QAL_REFERENCE_SOLVER).value()}};
  for (const char* file : kArmFiles) {
    pairs.emplace_back(Solver::ClosedForm(Describe(file)).value(),
                       Solver::Load(LibraryOf(file)).value());
  }
  pairs.emplace_back(Solver::Reference(), Solver::Load(kForeign).value());
  const Solver namesake = Solver::Load(QAL_FOREIGN_LIBRARIES "/namesake/libik.so").value();
  RandomJoints random(3.3);
  for (int i = 0; i < 3000 && !HasFailure(); ++i) {
    Joints joints = random();
    if (i % 4 == 0) {  // singular ones
      for (double& joint : joints) joint = std::round(joint * 4 / M_PI) * M_PI / 4;
    }
    for (const auto& [made, library] : pairs) {
      EXPECT_TRUE(SameBits(AnswersOf(made, joints, i), AnswersOf(library, joints, i)))
          << library.path() << ' ' << testing::PrintToString(joints);
    }
    // Without RTLD_DEEPBIND, which sanitizers refuse, the program's class answers.
    const double offset = ::dlsym(RTLD_DEFAULT, "__asan_init") == nullptr ? 0.25 : 77;
    const std::vector<double> answers = AnswersOf(namesake, joints, 0);
    EXPECT_EQ(answers[0], joints[0] + offset);
    EXPECT_EQ(answers.size(), 12u + 1 + 6);  // the array, which isn't its own, would have none
  }
  pairs.pop_back();  // which has a hash of its own
  for (const auto& [made, library] : pairs) {
    EXPECT_EQ(made.hash(), library.hash());
    EXPECT_NE(made.hash(), "");
    EXPECT_EQ(made.path(), "");
    EXPECT_EQ(library.family(), "libik.so");
  }
  EXPECT_EQ(pairs[0].first.family(), "spherical wrist");
  EXPECT_EQ(pairs[6].first.family(), "three parallel axes");
  EXPECT_EQ(pairs.back().first.family(), "no family");
}

TEST(Solvers, StayOpenAsLongAsACopyLives) {
  const std::string path = LibraryOf("service_parallel");
  const auto open = [&] {
    void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr) (void)::dlclose(library);
    return library != nullptr;
  };
  {
    std::optional<Solver> copy;
    {
      const std::filesystem::path here = std::filesystem::current_path();
      std::filesystem::current_path(std::filesystem::path(path).parent_path());
      const Solver solver = Solver::Load("libik.so").value();  // of the current folder
      std::filesystem::current_path(here);
      copy = solver;
    }
    EXPECT_EQ(copy->path(), path);
    EXPECT_TRUE(open());
    EXPECT_EQ(AnswersOf(*copy, {}, 0).size() % 6, 1u);
  }
  EXPECT_FALSE(open());
}

// A solver sees the C++ library's streams before the program's, which are elsewhere in memory.
TEST(Solvers, PrintWhereTheProgramPrints) {
  ::setenv("QAL_FOREIGN_FAULT", "prints", 1);
  const Arm arm = Arm::FromSolver(Solver::Load(kForeign).value()).value();
  testing::internal::CaptureStdout();
  std::cout << "program, ";
  EXPECT_TRUE(Nearest(arm, {{0.35, 0, 0.3}, {0, 0, 1, 0}}, {}));
  const std::string printed = testing::internal::GetCapturedStdout();
  ::unsetenv("QAL_FOREIGN_FAULT");
  EXPECT_NE(printed.find("program, "), std::string::npos) << printed;
  EXPECT_NE(printed.find("solver by stream\n"), std::string::npos) << printed;
}

TEST(Solvers, AreRefusedWithTheReasonAndItsNumbers) {
  const struct {
    std::string path;
    const char* fault;
    Error expected;  // its detail is a part of what is said
  } cases[] = {
      {"/none/libik.so", "", {Reason::kLibraryNotLoaded, -1, 0, 0, "cannot open shared object"}},
      {"", "", {Reason::kLibraryNotLoaded, -1, 0, 0, ""}},
      {QAL_ARMS_DIR "/reference.urdf", "", {Reason::kLibraryNotLoaded, -1, 0, 0, "ELF header"}},
      {QAL_FOREIGN_LIBRARIES "/without_forward/libik.so",
       "",
       {Reason::kFunctionMissing, -1, 0, 0, "ikfast::ComputeFk"}},
      {QAL_PLAIN_NAMES, "", {Reason::kFunctionMissing, -1, 0, 0, "plain C name ComputeIk"}},
      {kForeign, "is for seven joints", {Reason::kNotSixJoints, -1, 7, 6, ""}},
      {kForeign, "is for a free joint", {Reason::kFreeParameters, -1, 1, 0, ""}},
  };
  for (const auto& [path, fault, expected] : cases) {
    ::setenv("QAL_FOREIGN_FAULT", fault, 1);
    const Result<Solver> solver = Solver::Load(path);
    ASSERT_FALSE(solver) << path;
    Error error = solver.error();
    EXPECT_NE(error.detail.find(expected.detail), std::string::npos) << error.detail;
    error.detail = expected.detail;
    EXPECT_EQ(Text(error), Text(expected)) << path;
  }
  ::unsetenv("QAL_FOREIGN_FAULT");
  ArmDescription arm = Describe("reference.urdf");
  arm.joints[4].axis = {std::sqrt(0.5), std::sqrt(0.5), 0};
  EXPECT_EQ(Text(Solver::ClosedForm(arm, Geometry::kNominal).error()), Text({Reason::kNoFamily}));
  arm.joints[4].axis = arm.joints[5].axis;
  EXPECT_EQ(Text(Solver::ClosedForm(arm).error()), Text({Reason::kSingularEverywhere}));
}

}  // namespace
}  // namespace qal
