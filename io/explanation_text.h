#ifndef QAL_IO_EXPLANATION_TEXT_H_
#define QAL_IO_EXPLANATION_TEXT_H_

#include <qal/explain/explain.h>

#include <string>
#include <vector>

#include "error_text.h"

namespace qal::io {

/// A change in words.
struct Remedy {
  std::string kind;          ///< `ChangeKey`
  std::string text;          ///< what to change
  std::string command = {};  ///< the command line that works; empty: it is no command's
  std::string keys = {};     ///< where a file is to be changed, its keys with their new values
};

/// What was asked for, why it fails, and what would make it work.
struct ExplainedRequest {
  std::string what;  ///< as texts call it: "pose", "poses", "line", "move", "arc", "program"
  Explanation why;
  std::optional<Branch> before = {};  ///< of the joints before
  std::string place = {};  ///< of a program, the step: "cell.toml, line 9, step 2 (line to 'far')"
  std::vector<Remedy> remedies = {};
  std::vector<Vec3> path = {};             ///< all of the tool's way that was asked for [m]
  std::vector<BranchAudit> branches = {};  ///< of a line's start, where they were asked for
};

/// "out_of_reach", and so on; "none".
const char* CauseKey(Cause cause);

/// "start", "end", and so on.
const char* ChangeKey(Change::Kind kind);

/// What fails, where, and the kind of cause; or that it works, and how long it takes. One line.
std::string Headline(const ExplainedRequest& request, const TextUnits& units = {});

/// Why, with all numbers, each a line: nothing where it works.
std::vector<std::string> ReasonLines(const ExplainedRequest& request, const TextUnits& units = {});

/// A change in words, on one line.
/// @param what as in ExplainedRequest
std::string ChangeText(const Change& change, const std::string& what, const TextUnits& units = {});

/// What became of a line with one of its start configurations: "completed", or where it fails and
/// why.
std::string AuditText(const BranchAudit& audit, const TextUnits& units = {});

}  // namespace qal::io

#endif  // QAL_IO_EXPLANATION_TEXT_H_
