#ifndef QAL_IO_UNITS_H_
#define QAL_IO_UNITS_H_

#include <qal/model/description.h>

#include <string>

#include "../solver/closed_form/angles.h"
#include "description.h"

namespace qal::io {

using closed_form::kPi;

/// Takes a file's numbers into metres and radians, as the options say.
class FileUnits {
 public:
  explicit FileUnits(const ReadOptions& options) : options_(options) {}

  double Metres(double written) const { return options_.millimetres ? written / 1000 : written; }
  Vec3 Metres(const Vec3& written) const {
    return {Metres(written.x), Metres(written.y), Metres(written.z)};
  }

  /// @param where what stands before the message
  /// @throw UsageError for more than a turn, as degrees read as radians mostly are
  double Radians(double written, const std::string& where) const;
  Vec3 Radians(const Vec3& written, const std::string& where) const;

  /// A joint limit, which may be more than a turn.
  double LimitRadians(double written) const {
    return options_.degrees ? written * kPi / 180 : written;
  }

 private:
  const ReadOptions& options_;
};

/// @throw UsageError when the arm is too small or too long to be one in metres
void CheckScale(const ArmDescription& arm, const std::string& path, const ReadOptions& options);

}  // namespace qal::io

#endif  // QAL_IO_UNITS_H_
