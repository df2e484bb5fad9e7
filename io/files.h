#ifndef QAL_IO_FILES_H_
#define QAL_IO_FILES_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace qal::io {

/// Lets a write that can't go on say so (a closed pipe, a limit on file sizes), where otherwise a
/// signal ends the process. Before the first of these.
void KeepWriteSignalsAway();

/// What messages call a file: its path, or "standard input" for -.
std::string NameOf(const std::string& path);

/// The content of a file, or for - what standard input brings until its end.
/// @param largest size that it may have [bytes]
/// @throw UsageError "cannot read PATH: REASON"; a folder is no file
std::string ReadFile(const std::string& path, size_t largest);

/// Whether two paths, or - for standard input, lead to one file, by whatever names and links; of
/// two that aren't there, whether they will. A device or a pipe is no file that could be lost.
bool SameFile(const std::string& one, const std::string& other);

/// Writes a file as a whole: next to it first, then renamed, so that a failure leaves what stood
/// there before and nothing half written; a stop (Ctrl-C) waits until that is done. A link stays,
/// and what it names is replaced, or made where it isn't there. The new file has the permissions of
/// the old, but no set-user-ID, set-group-ID and sticky bit, and belongs to who writes it; other
/// hard links keep the old one. What is no regular file (a device, a pipe) is written in place.
/// @throw UsageError "cannot write PATH: REASON"; a file without write permission is left alone, by
///        root as well where nobody has it
void WriteFile(const std::string& path, std::string_view content);

/// From here on standard output is for `WriteStandardOutput` alone: what else writes there, such as
/// a solver library, goes to standard error.
void KeepStandardOutputForData();

/// Writes to standard output. A reader that has closed its end of the pipe has all it wanted: no
/// error.
/// @throw UsageError "cannot write standard output: REASON"
void WriteStandardOutput(std::string_view content);

}  // namespace qal::io

#endif  // QAL_IO_FILES_H_
