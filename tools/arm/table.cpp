#include "table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "../../io/error.h"
#include "units.h"

namespace qal::tools {

using namespace io;

namespace {

using nlohmann::json;

Frame Moved(double x, double y, double z) { return {kIdentity.rotation, {{x, y, z}}}; }
Frame Turned(const Vector3& axis, double angle) {
  return {RotationAbout(axis, angle), {{0, 0, 0}}};
}

constexpr Vector3 kX = {{1, 0, 0}};
constexpr Vector3 kY = {{0, 1, 0}};
constexpr Vector3 kZ = {{0, 0, 1}};

// One joint's line, whatever the convention.
struct JointLine {
  std::string name;
  double a, alpha, d;
  double theta;      // what is added to the joint
  double direction;  // 1 or -1
  std::optional<JointLimits> limits;
};

class TableReader {
 public:
  TableReader(const json& table, const std::string& path, const ReadOptions& options)
      : table_(table), path_(path), units_(options) {}

  Arm Read() {
    Expect(
        table_, path_,
        {"name", "convention", "base", "flange", "joint", "a1", "a2", "b", "c1", "c2", "c3", "c4"});
    Arm arm;
    arm.name = Text(table_, "name", path_, "arm");
    arm.base = "base";
    arm.tip = "flange";
    const std::string convention = Text(table_, "convention", path_, "");
    if (convention != "dh" && convention != "modified-dh" && convention != "ortho-parallel") {
      throw UsageError(
          fmt::format("{}: convention is '{}'; 'dh', 'modified-dh' or "
                      "'ortho-parallel' is expected",
                      path_, convention));
    }
    const bool ortho_parallel = convention == "ortho-parallel";
    const std::vector<JointLine> lines = JointLines(ortho_parallel);
    std::array<Frame, 6> before;  // from what the joint before turns to this joint
    std::array<Frame, 6> after;   // what this joint's own line adds behind it
    std::array<Vector3, 6> axes;
    if (ortho_parallel) {
      OrthoParallel(lines, before, after, axes);
    } else {
      DenavitHartenberg(lines, convention == "modified-dh", before, after, axes);
    }
    Frame fixed = FixedFrame("base");
    for (size_t j = 0; j < 6; ++j) {
      arm.joints[j] = {lines[j].name, fixed * before[j], lines[j].direction * axes[j],
                       lines[j].limits};
      fixed = after[j];
    }
    arm.tip_in_last = fixed * tip_ * FixedFrame("flange");
    arm.rounded_angles = units_.rounded_angles();
    return arm;
  }

 private:
  void Expect(const json& object, const std::string& where,
              const std::vector<std::string>& keys) const {
    if (!object.is_object()) throw UsageError(fmt::format("{}: a table is expected", where));
    for (const auto& entry : object.items()) {
      if (std::find(keys.begin(), keys.end(), entry.key()) == keys.end()) {
        throw UsageError(fmt::format("{}: unknown entry '{}'; expected are {}", where, entry.key(),
                                     fmt::join(keys, ", ")));
      }
    }
  }

  std::string Text(const json& object, const char* key, const std::string& where,
                   const std::string& otherwise) const {
    const auto found = object.find(key);
    if (found == object.end()) return otherwise;
    if (!found->is_string()) throw UsageError(fmt::format("{}: {} is no text", where, key));
    return found->get<std::string>();
  }

  double Finite(const json& value, const std::string& where) const {
    if (!value.is_number() || !std::isfinite(value.get<double>())) {
      throw UsageError(fmt::format("{}: {} is not a finite number", where, value.dump()));
    }
    return value.get<double>();
  }

  double Number(const json& object, const char* key, const std::string& where,
                std::optional<double> otherwise) const {
    const auto found = object.find(key);
    if (found != object.end()) return Finite(*found, fmt::format("{}, {}", where, key));
    if (!otherwise) throw UsageError(fmt::format("{}: {} is missing", where, key));
    return *otherwise;
  }

  Vector3 Triple(const json& object, const char* key, const std::string& where) const {
    const auto found = object.find(key);
    if (found == object.end()) return {{0, 0, 0}};
    const std::string place = fmt::format("{}, {}", where, key);
    if (!found->is_array() || found->size() != 3) {
      throw UsageError(fmt::format("{}: 3 numbers are expected", place));
    }
    return {{Finite((*found)[0], place), Finite((*found)[1], place), Finite((*found)[2], place)}};
  }

  Frame FixedFrame(const char* key) {
    const auto found = table_.find(key);
    if (found == table_.end()) return kIdentity;
    const std::string where = fmt::format("{}, {}", path_, key);
    Expect(*found, where, {"xyz", "rpy"});
    const Vector3 xyz = Triple(*found, "xyz", where);
    const Vector3 rpy = Triple(*found, "rpy", where);
    return {FromRollPitchYaw({{units_.Radians(rpy[0], where), units_.Radians(rpy[1], where),
                               units_.Radians(rpy[2], where)}}),
            {{units_.Metres(xyz[0]), units_.Metres(xyz[1]), units_.Metres(xyz[2])}}};
  }

  std::optional<JointLimits> Limits(const json& line, const std::string& where) const {
    if (line.count("lower") == 0 && line.count("upper") == 0) return std::nullopt;
    const JointLimits limits = {units_.LimitRadians(Number(line, "lower", where, std::nullopt)),
                                units_.LimitRadians(Number(line, "upper", where, std::nullopt))};
    if (limits.lower > limits.upper) {
      throw UsageError(fmt::format("{}: the lower limit lies above the upper one", where));
    }
    return limits;
  }

  std::vector<JointLine> JointLines(bool ortho_parallel) {
    const auto found = table_.find("joint");
    const size_t count = found != table_.end() && found->is_array() ? found->size() : 0;
    if (count != 6) {
      throw UsageError(fmt::format("{}: {} joints; six [[joint]] are expected", path_, count));
    }
    std::vector<std::string> keys = {"name", "theta", "direction", "lower", "upper"};
    if (!ortho_parallel) keys.insert(keys.end(), {"a", "alpha", "d"});
    std::vector<JointLine> lines;
    for (size_t j = 0; j < 6; ++j) {
      const json& line = (*found)[j];
      const std::string where = fmt::format("{}, joint {}", path_, j + 1);
      Expect(line, where, keys);
      const double direction = Number(line, "direction", where, 1.0);
      if (std::fabs(direction) != 1) {
        throw UsageError(fmt::format("{}: direction is {}; 1 or -1 is expected", where, direction));
      }
      lines.push_back({Text(line, "name", where, fmt::format("joint_{}", j + 1)),
                       units_.Metres(Number(line, "a", where, 0.0)),
                       units_.Radians(Number(line, "alpha", where, 0.0), where + ", alpha"),
                       units_.Metres(Number(line, "d", where, 0.0)),
                       units_.Radians(Number(line, "theta", where, 0.0), where + ", theta"),
                       direction, Limits(line, where)});
    }
    return lines;
  }

  // Joint j: Rz(theta) Tz(d) Tx(a) Rx(alpha); modified: Rx(alpha) Tx(a) Rz(theta) Tz(d). Turns
  // about an axis and moves along it may change places.
  static void DenavitHartenberg(const std::vector<JointLine>& lines, bool modified,
                                std::array<Frame, 6>& before, std::array<Frame, 6>& after,
                                std::array<Vector3, 6>& axes) {
    for (size_t j = 0; j < 6; ++j) {
      const JointLine& line = lines[j];
      const Frame link = Moved(line.a, 0, 0) * Turned(kX, line.alpha);
      const Frame joint = Turned(kZ, line.theta) * Moved(0, 0, line.d);
      before[j] = modified ? link : kIdentity;
      after[j] = modified ? joint : joint * link;
      axes[j] = kZ;
    }
  }

  // With all angles at zero the arm stands up: axes 1, 4 and 6 along z, axes 2, 3 and 5 along y.
  void OrthoParallel(const std::vector<JointLine>& lines, std::array<Frame, 6>& before,
                     std::array<Frame, 6>& after, std::array<Vector3, 6>& axes) {
    const auto length = [&](const char* key, std::optional<double> otherwise) {
      return units_.Metres(Number(table_, key, path_, otherwise));
    };
    before = {kIdentity,
              Moved(length("a1", 0.0), 0, length("c1", 0.0)),
              Moved(0, 0, length("c2", std::nullopt)),
              Moved(length("a2", 0.0), length("b", 0.0), length("c3", std::nullopt)),
              kIdentity,
              kIdentity};
    axes = {kZ, kY, kY, kZ, kY, kZ};
    for (size_t j = 0; j < 6; ++j) after[j] = Turned(axes[j], lines[j].theta);
    tip_ = Moved(0, 0, length("c4", 0.0));
  }

  const json& table_;
  const std::string& path_;
  FileUnits units_;
  Frame tip_ = kIdentity;
};

}  // namespace

Arm ReadTable(const json& table, const std::string& path, const ReadOptions& options) {
  return TableReader(table, path, options).Read();
}

}  // namespace qal::tools
