#ifndef QAL_TESTS_SUPPORT_TOOL_RUN_H_
#define QAL_TESTS_SUPPORT_TOOL_RUN_H_

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// Runs its test in a folder of the test's own, empty at first and gone afterwards.
class InOwnFolder : public testing::Test {
 protected:
  InOwnFolder() {
    if (::mkdtemp(folder_.data()) == nullptr) std::abort();
    std::filesystem::current_path(folder_);
  }
  ~InOwnFolder() override {
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder_);
  }

 private:
  std::string folder_ = testing::TempDir() + "/tool_test.XXXXXX";
};

/// A file's content, or "(none)".
inline std::string FileContent(const std::string& path) {
  std::ostringstream content;
  const std::ifstream file(path, std::ios::binary);
  if (!file) return "(none)";
  content << file.rdbuf();
  return content.str();
}

/// What a command line came to: its exit status, standard output and standard error.
struct ToolRun {
  int status;
  std::string out;
  std::string err;

  /// The last line of standard error, without its end.
  std::string LastLine() const {
    const std::string lines = err.substr(0, err.find_last_not_of('\n') + 1);
    return lines.substr(lines.rfind('\n') + 1);
  }
};

/// Runs a command line of the shell in the test's folder.
inline ToolRun Shell(const std::string& command) {
  const int status = std::system(("{ " + command + "\n} >.out 2>.err").c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, FileContent(".out"), FileContent(".err")};
}

/// The names of the files in the test's folder, each with a line end.
inline std::string Files() { return Shell("ls").out; }

#endif  // QAL_TESTS_SUPPORT_TOOL_RUN_H_
