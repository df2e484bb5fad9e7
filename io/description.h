#ifndef QAL_IO_DESCRIPTION_H_
#define QAL_IO_DESCRIPTION_H_

#include <qal/model/description.h>

#include <string>

namespace qal::io {

struct ReadOptions {
  std::string base;          ///< base link of a URDF; empty: the link that has no parent
  std::string tip;           ///< tip link of a URDF; empty: where the chain of six joints ends
  bool millimetres = false;  ///< lengths are written in mm
  bool degrees = false;      ///< angles of a table are written in degrees
};

/// The arm that a URDF or a table of parameters (TOML, JSON) describes: a text, told by its
/// content. What the files contain is in docs/your-arm.md.
/// @param path what messages call the text
/// @throw UsageError "PATH: ..." or "PATH, line N: ..." when the text does not describe six
/// revolute
///        joints in a chain
ArmDescription ParseDescription(const std::string& text, const std::string& path,
                                const ReadOptions& options);

/// @throw UsageError when the options are not for a URDF, or not for a table
void ExpectUrdfOptions(const ReadOptions& options);
void ExpectTableOptions(const ReadOptions& options);

}  // namespace qal::io

#endif  // QAL_IO_DESCRIPTION_H_
