#include "build.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <sstream>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "../../io/files.h"
#include "../../io/held_signals.h"
#include "../../io/limits.h"
#include "../../src/qal/solve/kinematics.h"
#include "../common/child.h"

namespace qal::tools {

using namespace io;

namespace {

// A folder of its own for what the compiler reads and writes, gone with the object.
class ScratchFolder {
 public:
  ScratchFolder() {
    const char* const named = std::getenv("TMPDIR");
    const std::string folder = named != nullptr && *named != '\0' ? named : "/tmp";
    path_ = std::filesystem::absolute(folder) / "mkik.XXXXXX";
    if (::mkdtemp(path_.data()) == nullptr) {
      throw UsageError(
          fmt::format("cannot write in {}: {}; TMPDIR has to name a folder to compile in", folder,
                      std::strerror(errno)));
    }
  }
  ~ScratchFolder() {
    std::error_code ignored;  // nothing depends on it
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::string& path() const { return path_; }
  std::string File(const char* name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

// Becomes the command. Returns only where that can't be: why.
std::string Become(const std::vector<std::string>& command, const std::string& folder) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  // What a compiler that is stopped leaves goes with the folder.
  (void)::setenv("TMPDIR", folder.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): of one thread
  (void)::execvp(arguments[0], arguments.data());
  return std::strerror(errno);
}

void Compile(const ScratchFolder& scratch) {
  std::vector<std::string> command = CompilerCommand();
  const std::string compiler = command[0];
  std::istringstream options(
      "-std=c++17 -O3 -fno-math-errno -fPIC -shared -fvisibility=hidden -fstack-protector-strong "
      "-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -Wl,-soname,libik.so -Wl,-z,defs,-z,relro,-z,now "
      "-Xlinker --version-script -Xlinker");
  for (std::string word; options >> word;) command.push_back(word);
  command.insert(command.end(), {scratch.File("exports.map"), scratch.File("solver.cpp"), "-o",
                                 scratch.File("libik.so")});
  if (::isatty(STDERR_FILENO) != 0) fmt::print(stderr, "compiling by '{}' ...\n", compiler);
  const ChildEnd end = RunInChild([&] { return Become(command, scratch.path()); }, std::nullopt);
  if (end.said) {
    throw Failure(
        fmt::format("cannot run the compiler '{}': {}; set CXX, or build the source that --source "
                    "writes where a compiler is",
                    compiler, *end.said));
  }
  if (!end.succeeded) {
    throw Failure(fmt::format("the compiler '{}' failed ({})", compiler, end.how));
  }
}

// Why an arm's inverse kinematics doesn't find the joints of a pose that is another's; empty: does.
std::string WhyMissed(const Arm& inverse, const Arm& forward, const Joints& joints) {
  constexpr double kSameJointsRad = 1e-5;  // as where the model is checked
  const Result<Pose> pose = Forward(forward, joints);
  if (!pose) return ErrorText(pose.error());
  const Result<State> nearest = Nearest(inverse, *pose, joints);
  if (!nearest) return ErrorText(nearest.error());
  for (size_t j = 0; j < joints.size(); ++j) {
    if (std::fabs(nearest->joints[j] - joints[j]) <= kSameJointsRad) continue;
    return fmt::format("joints {:.9g} rad are not among the solutions of their pose",
                       fmt::join(joints, " "));
  }
  return "";
}

// What a library has that keeps it from being the solver of the arm; empty: nothing.
std::string FaultOf(const std::string& library, const Arm& arm) {
  constexpr int kJointSets = 10;
  const Result<Solver> solver = Solver::Load(library);
  if (!solver) return ErrorText(solver.error());
  const Arm made = *Arm::FromSolver(*solver);
  std::mt19937 engine(1);
  std::uniform_real_distribution<double> range(-2.9, 2.9);
  for (int i = 0; i < kJointSets; ++i) {
    Joints joints;
    for (double& joint : joints) joint = range(engine);
    if (!WhyMissed(arm, arm, joints).empty()) continue;  // at a singularity, as `Verify` allows
    for (const std::string& why : {WhyMissed(made, arm, joints), WhyMissed(arm, made, joints)}) {
      if (!why.empty()) return why;
    }
  }
  return "";
}

// In a process of its own: what a compiler makes may do anything.
void Check(const std::string& library, const Arm& arm) {
  constexpr int kTimeoutS = 30;
  const ChildEnd end = RunInChild([&] { return FaultOf(library, arm); }, kTimeoutS);
  if (end.said && end.said->empty()) return;
  throw Failure(
      fmt::format("the compiler '{}' made no solver that works here ({}); for another machine, "
                  "--source writes the source to build there",
                  CompilerCommand()[0], end.said.value_or("its process: " + end.how)));
}

}  // namespace

// CXX may carry arguments, as in "ccache g++".
std::vector<std::string> CompilerCommand() {
  std::vector<std::string> command;
  const char* compiler = std::getenv("CXX");
  std::istringstream words(compiler != nullptr ? compiler : "");
  for (std::string word; words >> word;) command.push_back(word);
  if (command.empty()) command.push_back("c++");
  return command;
}

void BuildLibrary(const std::string& source, const std::string& exports, const Solver& solver,
                  const std::string& path) {
  const HeldSignals held;  // a stop waits until the folder is gone
  const ScratchFolder scratch;
  WriteFile(scratch.File("solver.cpp"), source);
  WriteFile(scratch.File("exports.map"), exports);
  Compile(scratch);
  Check(scratch.File("libik.so"), *Arm::FromSolver(solver));
  WriteFile(path, ReadFile(scratch.File("libik.so"), kLargestLibrary));
}

}  // namespace qal::tools
