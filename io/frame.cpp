#include "frame.h"

#include <fmt/format.h>
#include <qal/model/chain.h>
#include <qal/model/rotations.h>

#include <cmath>

#include "units.h"

namespace qal::io {

namespace {

// A quaternion, w first, of any length.
Quat ReadQuaternion(const Fields& fields) {
  const std::vector<double> q = fields.Numbers("quat_wxyz", 4);
  const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  // Below it a quaternion is a zero with rounding errors; above it, it has no square.
  if (!(length > 1e-6 && std::isfinite(length))) {
    fields.Refuse("quat_wxyz", "a quaternion of length 1 is expected");
  }
  return {q[0] / length, q[1] / length, q[2] / length, q[3] / length};
}

Transform RotationOf(const Quat& q) {
  const auto& [w, x, y, z] = q;
  return {{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y), 2 * (x * y + w * z),
           1 - 2 * (x * x + z * z), 2 * (y * z - w * x), 2 * (x * z - w * y), 2 * (y * z + w * x),
           1 - 2 * (x * x + y * y)},
          {0, 0, 0}};
}

bool HasQuaternion(const Fields& fields) {
  if (!fields.Has("quat_wxyz")) return false;
  for (const char* key : {"rpy", "rpy_deg"}) {
    if (!fields.Has(key)) continue;
    fields.Refuse("quat_wxyz", fmt::format("there is {} as well; one of them is expected", key));
  }
  return true;
}

}  // namespace

std::vector<std::string> WithOrientationKeys(std::vector<std::string> keys) {
  keys.insert(keys.end(), {"rpy", "rpy_deg", "quat_wxyz"});
  return keys;
}

Vec3 ReadRpy(const Fields& fields, const std::string& key) {
  const std::string in_degrees = key + "_deg";
  ReadOptions read;
  read.degrees = fields.Has(in_degrees);
  if (!read.degrees) return FileUnits(read).Radians(fields.Triple(key), fields.Where(key));
  if (fields.Has(key))
    fields.Refuse(in_degrees, "given in radians as well; one of them is expected");
  return FileUnits(read).Radians(fields.Triple(in_degrees), fields.Where(in_degrees));
}

std::optional<Quat> ReadOrientation(const Fields& fields) {
  if (HasQuaternion(fields)) return ReadQuaternion(fields);
  if (!fields.Has("rpy") && !fields.Has("rpy_deg")) return std::nullopt;
  return FromRollPitchYawAngles(ReadRpy(fields, "rpy"));
}

Transform ReadFrame(const Fields& fields) {
  fields.Expect(WithOrientationKeys({"xyz"}));
  // Of angles directly, so that a frame at right angles is one to the last digit.
  Transform frame = HasQuaternion(fields) ? RotationOf(ReadQuaternion(fields))
                                          : FromRollPitchYaw(ReadRpy(fields, "rpy"));
  frame.position = fields.Triple("xyz");
  return frame;
}

}  // namespace qal::io
