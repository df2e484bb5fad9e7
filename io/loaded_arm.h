#ifndef QAL_IO_LOADED_ARM_H_
#define QAL_IO_LOADED_ARM_H_

#include <qal/model/arm.h>

#include <functional>
#include <optional>
#include <string>

#include "arm_file.h"
#include "json.h"

namespace qal::io {

/// An arm, and what it comes from.
struct LoadedArm {
  Arm arm;
  std::string file;                             ///< empty: built in
  std::string kind;                             ///< as in `ArmFile`, or "reference arm"
  std::shared_ptr<const UrdfSource> urdf = {};  ///< as in `ArmFile`
};

/// The arm that a file of an arm makes.
/// @param geometry of the solver made of the description
/// @throw UsageError when its numbers make no arm or its solver is none
/// @throw Failure    "FILE: ..." when the arm is singular everywhere and no solver is named
LoadedArm MakeArm(const ArmFile& file, Geometry geometry = Geometry::kDescribed);

/// The arm of a file: a URDF, a table, an arm file or a solver library, whatever its name.
/// @throw as ReadArmFile and MakeArm
LoadedArm ReadArm(const std::string& path, const ReadOptions& options = {});

/// The arm that a command works with: the option's, else the environment's, else the reference arm.
/// A file that isn't there is an error, never another arm.
/// @param option      what --arm says
/// @param environment QAL_ARM's value; null or empty when it isn't set
/// @param before_solver called with a solver library's path before it is loaded, and so may do
///                      anything
LoadedArm ResolveArm(const std::optional<std::string>& option, const char* environment,
                     const ReadOptions& options = {},
                     const std::function<void(const std::string&)>& before_solver = {});

/// The file that `ResolveArm` would make an arm of; nothing: none is named. No solver is loaded.
/// @throw UsageError as ReadArmFile
std::optional<ArmFile> ResolveArmFile(const std::optional<std::string>& option,
                                      const char* environment, const ReadOptions& options = {});

/// Which arm it is, in one line:
///
///     reference arm (built in), spherical wrist, hash qal-reference-arm-1
///     my_arm from arms/my_arm.toml, spherical wrist, hash qal-...
///     my_arm from arms/my_arm.toml, solver /home/me/libik.so, no hash
std::string ArmHeading(const LoadedArm& loaded);

/// The same for programs: `name`, `file` (null: built in), `kind`, `family`, `solver` (the
/// library's path; null: a closed form) and `hash` (null: none).
Json ArmJson(const LoadedArm& loaded);

}  // namespace qal::io

#endif  // QAL_IO_LOADED_ARM_H_
