#ifndef QAL_TESTS_TOOL_RUN_QAL_H_
#define QAL_TESTS_TOOL_RUN_QAL_H_

#include <string>
#include <vector>

/// What a run of the built `qal` came to.
struct Outcome {
  int status;  // the exit status, or minus the signal that ended it
  std::string out;
  std::string err;
};

/// Runs `qal` with the words of `arguments`, which blanks part.
/// @param environment variables to add, as "NAME=VALUE"
Outcome RunQal(const std::string& arguments, const std::vector<std::string>& environment = {});

/// The last line of a text, without its line end.
std::string LastLine(const std::string& text);

/// A path for a test's own file, empty at first.
std::string FreshPath(const std::string& name);

/// A file's content, or "(none)".
std::string FileContent(const std::string& path);

#endif  // QAL_TESTS_TOOL_RUN_QAL_H_
