#ifndef QAL_TOOLS_QAL_REPORT_OPTION_H_
#define QAL_TOOLS_QAL_REPORT_OPTION_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "../../io/report_html.h"

namespace qal::tools {

/// The last part of a path, as a title names a file.
std::string FileTitle(const std::string& path);

/// @throw UsageError when a file to write is one of those that are shown
void ExpectOtherFile(const std::string& written, const std::vector<std::string>& shown);

/// A report that a command writes.
class ReportOption {
 public:
  /// Adds --report, for a report besides the command's answer.
  void AddTo(CLI::App& command);
  /// Adds -o, for a report that is the answer.
  void AddOutputTo(CLI::App& command);

  bool given() const { return !path_.empty(); }
  const std::string& path() const { return path_; }
  /// What a report is about where nothing else says it: the command.
  const std::string& title() const { return title_; }

  /// Before any work is done for it.
  /// @throw UsageError when there is no page, or standard output has the command's answer
  void Check() const;
  /// Writes the report, whole or not at all, if one is wanted; for - to standard output. On a
  /// terminal it says how far it is when it takes long.
  /// @throw as `io::ReportJson`, and when the file can't be written
  void Write(const io::LoadedArm& loaded, io::Report report) const;
  /// The same of a page's data.
  void Write(const io::Json& data) const;

 private:
  std::string path_;
  std::string title_;
  bool is_answer_ = false;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_REPORT_OPTION_H_
