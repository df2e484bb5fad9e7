#ifndef QAL_IO_PROGRAM_FILE_H_
#define QAL_IO_PROGRAM_FILE_H_

#include <qal/plan/program.h>

#include <string>
#include <vector>

#include "document.h"

namespace qal::io {

/// Where a step of a program is from.
struct StepPlace {
  unsigned line;        ///< from 1; 0: the file gives no lines
  std::string label;    ///< "step 3", or "step 3.2, repetition 17"
  std::string what;     ///< "line to 'pick'"
  std::string pointer;  ///< of its table in the document: "/step/2", "/step/2/steps/1"
};

/// A program as a file has it.
struct ProgramFile {
  std::string name;  ///< what messages call the file
  Program program;
  std::vector<StepPlace> places;  ///< of the program's steps

  /// "step 3 (line to 'pick')".
  std::string StepText(size_t step) const;
  /// "PATH, line 12, step 3 (line to 'pick')".
  std::string Place(size_t step) const;
};

/// The document of a program, in TOML or JSON.
/// @param path -: standard input
/// @throw UsageError as ParseToml and ParseJson
Document ReadProgramDocument(const std::string& path);

/// Reads a program of an arm; docs/programs.md has the keys.
/// @throw UsageError "PATH, line N, step M, KEY: ..." with what was expected
ProgramFile ReadProgram(const Document& document, const Arm& arm);

/// The same of a file in TOML or JSON.
/// @param path -: standard input
ProgramFile ReadProgram(const std::string& path, const Arm& arm);

}  // namespace qal::io

#endif  // QAL_IO_PROGRAM_FILE_H_
