#ifndef QAL_IO_ARM_FILE_H_
#define QAL_IO_ARM_FILE_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "description.h"
#include "urdf_visuals.h"

namespace qal::io {

/// What a file of an arm says. docs/arm-file.md has the keys of an arm file; a URDF, a table and a
/// solver library are files of an arm, too.
struct ArmFile {
  std::string name;                           ///< what messages call it
  std::string kind;                           ///< "URDF", "table", "arm file" or "solver library"
  std::optional<ArmDescription> description;  ///< none: a solver is all there is
  ArmSettings settings;
  std::string solver;                     ///< path of a solver library; empty: the closed form
  std::vector<std::string> sources = {};  ///< paths that it was read from; -: standard input
  /// Where the description is a URDF, its text; else null.
  std::shared_ptr<const UrdfSource> urdf = {};
};

/// What gives a file's content.
using ReadText = std::function<std::string(const std::string& path)>;

/// The content of a description's file, as `ReadFile`.
std::string ReadDescriptionText(const std::string& path);

/// Reads a file of an arm, whatever its name: what it is shows in its content.
/// @param path -: standard input, but not for a library; what an arm file names is looked for in
///             its folder, standard input's in the current one
/// @param read is asked for the file's content first, then for that of a description that it names
/// @throw UsageError "FILE: ..." or "FILE, line N: ..." with the key and what was expected
ArmFile ReadArmFile(const std::string& path, const ReadOptions& options,
                    const ReadText& read = ReadDescriptionText);

/// The description in a URDF, a table or an arm file; an arm file's name and limits go before its
/// description's.
/// @throw UsageError when there is none
ArmDescription DescriptionIn(const ArmFile& file);

/// The same, read from a file.
/// @throw UsageError as both
ArmDescription ReadDescription(const std::string& path, const ReadOptions& options);

}  // namespace qal::io

#endif  // QAL_IO_ARM_FILE_H_
