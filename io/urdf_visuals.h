#ifndef QAL_IO_URDF_VISUALS_H_
#define QAL_IO_URDF_VISUALS_H_

#include <qal/model/description.h>

#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "description.h"

namespace qal::io {

/// The text of a URDF, kept for what of it is no description of an arm.
struct UrdfSource {
  std::string text;
  std::string path;  ///< what messages call it
  ReadOptions options;
};

struct BoxShape {
  Vec3 size;  ///< [m]
};
struct CylinderShape {
  double radius;  ///< [m], as is the length
  double length;
};
struct SphereShape {
  double radius;  ///< [m]
};
struct MeshFile {
  std::string name;  ///< as the URDF has it
  Vec3 scale;        ///< to metres
};

/// How a part of an arm looks.
struct UrdfVisual {
  std::string link_name;
  int link;             ///< how many of the arm's joints move it: 0 to 6
  Transform placement;  ///< with all joints at zero, in the base link
  std::variant<BoxShape, CylinderShape, SphereShape, MeshFile> shape;
  std::optional<std::array<double, 3>> color;  ///< red, green, blue, 0 to 1
};

struct UrdfVisuals {
  std::vector<UrdfVisual> visuals;
  std::vector<std::string> notes;  ///< what of them can't be read, and why
};

/// What the links from the base link on look like. Whatever joint a link has that is none of the
/// arm's, such as a gripper's, stands at zero.
/// @throw UsageError as ReadUrdf
UrdfVisuals ReadVisuals(const UrdfSource& source);

}  // namespace qal::io

#endif  // QAL_IO_URDF_VISUALS_H_
