#include "run_qal.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

std::string FreshPath(const std::string& name) {
  static const std::string folder = [] {
    std::string made = (std::filesystem::temp_directory_path() / "qal_test_XXXXXX").string();
    if (::mkdtemp(made.data()) == nullptr) std::abort();
    return made;
  }();
  const std::string path = folder + "/" + name;
  std::filesystem::remove(path);
  return path;
}

std::string FileContent(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(none)";
  return std::string(std::istreambuf_iterator<char>(file), {});
}

Outcome RunQal(const std::string& arguments, const std::vector<std::string>& environment) {
  std::vector<std::string> words = {QAL_BINARY};
  std::istringstream stream(arguments);
  for (std::string word; stream >> word;) words.push_back(word);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  const std::string out = FreshPath("stdout");
  const std::string err = FreshPath("stderr");
  const pid_t child = ::fork();
  if (child == 0) {
    if (std::freopen(out.c_str(), "w", stdout) == nullptr) ::_exit(126);
    if (std::freopen(err.c_str(), "w", stderr) == nullptr) ::_exit(126);
    for (const std::string& variable : environment) ::putenv(const_cast<char*>(variable.c_str()));
    ::execv(QAL_BINARY, argv.data());
    ::_exit(127);
  }
  int status = 0;
  (void)::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), FileContent(out),
          FileContent(err)};
}

std::string LastLine(const std::string& text) {
  std::istringstream lines(text);
  std::string last;
  for (std::string line; std::getline(lines, line);) last = line;
  return last;
}
