#ifndef QAL_IO_PROGRAM_POINTS_H_
#define QAL_IO_PROGRAM_POINTS_H_

#include <qal/plan/program.h>

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "document.h"

namespace qal::io {

/// Places at equal distances, in up to three directions: the first counts fastest.
struct PointGrid {
  std::vector<size_t> counts;
  std::vector<Vec3> steps;  ///< [m, base frame]

  size_t Places() const;
  Vec3 At(size_t place) const;
};

/// A point as a file has it.
struct FilePoint {
  Fields fields;
  std::variant<Joints, Pose, std::string> of;  ///< the last: another point's name
  Vec3 offset_base;                            ///< [m]
  Vec3 offset_tool;                            ///< [m] along the axes of the tool there
  Quat turn_base;                              ///< about the base's axes, at the tool centre point
  Quat turn_tool;
  std::optional<PointGrid> grid;
};

/// Where a point is asked for.
struct PointUse {
  const Arm& arm;                    ///< with the tool of that step
  std::optional<size_t> repetition;  ///< of the block around it, from 0
};

/// The points of a program. Wherever one is asked for, a file has its name, or a table of its keys.
class ProgramPoints {
 public:
  /// Reads `[points]`, where there are any.
  /// @param file has to outlive this
  /// @throw UsageError as Fields; for a point of one that isn't there, or of itself
  explicit ProgramPoints(const Fields& file);

  /// The point at a key: of joints without offset their joints, otherwise a pose.
  /// @throw UsageError for a name that isn't there, a grid outside a block or too small for it
  Target At(const Fields& step, const std::string& key, const PointUse& use) const;
  /// The position of a point at a key, or the list of three numbers that is there.
  Vec3 PositionAt(const Fields& step, const std::string& key, const PointUse& use) const;

 private:
  const FilePoint& Named(const std::string& name, const Fields& fields,
                         const std::string& key) const;
  std::vector<const FilePoint*> ChainOf(const FilePoint& point) const;

  std::map<std::string, FilePoint> points_;
};

}  // namespace qal::io

#endif  // QAL_IO_PROGRAM_POINTS_H_
