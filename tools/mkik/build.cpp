#include "build.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <vector>

#include "../../io/error.h"
#include "../../io/files.h"

extern char** environ;

namespace qal::tools {

using namespace io;

namespace {

// A folder of its own for what the compiler reads and writes, gone with the object.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "mkik.XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) {
      throw UsageError(fmt::format("cannot write {}: {}", path, std::strerror(errno)));
    }
    path_ = path;
  }
  ~ScratchFolder() {
    std::error_code ignored;  // nothing depends on it
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  std::string File(const char* name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

// Runs a command and returns what waitpid says of it.
int Run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error =
      ::posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
  if (error != 0) {
    throw Failure(
        fmt::format("cannot run the compiler '{}': {}; set CXX, or build the source that --source "
                    "writes where a compiler is",
                    command[0], std::strerror(error)));
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
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

void BuildLibrary(const std::string& source, const std::string& exports, const std::string& path) {
  const ScratchFolder scratch;
  WriteFile(scratch.File("solver.cpp"), source);
  WriteFile(scratch.File("exports.map"), exports);
  std::vector<std::string> command = CompilerCommand();
  for (const std::string& word :
       {std::string("-std=c++17"), std::string("-O3"), std::string("-ffp-contract=off"),
        std::string("-fno-math-errno"), std::string("-fPIC"), std::string("-shared"),
        std::string("-fvisibility=hidden"), "-Wl,--version-script=" + scratch.File("exports.map"),
        std::string("-Wl,-soname,libik.so"), std::string("-Wl,-z,defs"), std::string("-o"),
        scratch.File("libik.so"), scratch.File("solver.cpp")}) {
    command.push_back(word);
  }
  const int status = Run(command);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw Failure(fmt::format("the compiler '{}' failed ({})", command[0],
                              WIFEXITED(status) ? fmt::format("status {}", WEXITSTATUS(status))
                                                : fmt::format("signal {}", WTERMSIG(status))));
  }
  WriteFile(path, ReadFile(scratch.File("libik.so")));
}

}  // namespace qal::tools
