#ifndef QAL_IO_PROGRAM_EDITS_H_
#define QAL_IO_PROGRAM_EDITS_H_

#include <string>
#include <vector>

#include "json.h"
#include "program_file.h"

namespace qal::io {

/// A key of a program's file, and a new value for it.
struct ProgramEdit {
  std::string pointer;  ///< of the table: "/step/2", or "" for the file's own keys
  std::string label;    ///< "step 3"; empty for the file's own keys
  std::string key;
  Json value;
};

/// What to change in a file to have a changed program of it: other joints at the start, other ends
/// of steps, stops in place of zones, orientation errors. What else differs has no edit.
std::vector<ProgramEdit> EditsOf(const ProgramFile& file, const Program& changed);

/// The program of a document with edits. A step of a block changes in each repetition.
/// @throw UsageError as ReadProgram
ProgramFile ReadEdited(const Document& document, const std::vector<ProgramEdit>& edits,
                       const Arm& arm);

/// "step 3: line = {xyz = [0.3, 0, 0.5], ...}", as TOML has it, or JSON in a file of that.
std::string EditText(const std::vector<ProgramEdit>& edits, bool as_json);

}  // namespace qal::io

#endif  // QAL_IO_PROGRAM_EDITS_H_
