#include "table.h"

#include <fmt/format.h>
#include <qal/model/chain.h>

#include <cmath>

#include "error.h"
#include "units.h"

namespace qal::io {

namespace {

Transform Moved(double x, double y, double z) {
  Transform transform;
  transform.position = {x, y, z};
  return transform;
}

constexpr Vec3 kX = {1, 0, 0};
constexpr Vec3 kY = {0, 1, 0};
constexpr Vec3 kZ = {0, 0, 1};

// One joint's line, whatever the convention.
struct JointLine {
  JointDescription joint;  // without its place
  double a, alpha, d;
  double theta;      // what is added to the joint
  double direction;  // 1 or -1
};

class TableReader {
 public:
  TableReader(const Fields& table, const ReadOptions& options) : table_(table), units_(options) {}

  ArmDescription Read() {
    table_.Expect(
        {"name", "convention", "base", "flange", "joint", "a1", "a2", "b", "c1", "c2", "c3", "c4"});
    ArmDescription arm;
    arm.name = table_.Text("name", "arm");
    arm.base = "base";
    arm.tip = "flange";
    const std::string convention = table_.Text("convention", "");
    if (convention != "dh" && convention != "modified-dh" && convention != "ortho-parallel") {
      table_.Refuse(
          "convention",
          fmt::format("'{}'; 'dh', 'modified-dh' or 'ortho-parallel' is expected", convention));
    }
    const bool ortho_parallel = convention == "ortho-parallel";
    const std::vector<JointLine> lines = JointLines(ortho_parallel);
    std::array<Transform, 6> before;  // from what the joint before turns to this joint
    std::array<Transform, 6> after;   // what this joint's own line adds behind it
    std::array<Vec3, 6> axes;
    if (ortho_parallel) {
      OrthoParallel(lines, before, after, axes);
    } else {
      DenavitHartenberg(lines, convention == "modified-dh", before, after, axes);
    }
    Transform fixed = FixedFrame("base");
    for (size_t j = 0; j < 6; ++j) {
      const double direction = lines[j].direction;
      arm.joints[j] = lines[j].joint;
      arm.joints[j].origin = fixed * before[j];
      arm.joints[j].axis = {direction * axes[j].x, direction * axes[j].y, direction * axes[j].z};
      fixed = after[j];
    }
    arm.tip_in_last = fixed * tip_ * FixedFrame("flange");
    return arm;
  }

 private:
  Transform FixedFrame(const char* key) {
    if (!table_.Has(key)) return {};
    const Fields frame = table_.Object(key);
    frame.Expect({"xyz", "rpy"});
    Transform transform = FromRollPitchYaw(units_.Radians(frame.Triple("rpy"), frame.Where("rpy")));
    transform.position = units_.Metres(frame.Triple("xyz"));
    return transform;
  }

  void ReadLimits(const Fields& line, JointDescription& joint) const {
    if (!line.Has("lower") && !line.Has("upper")) return;
    joint.lower_rad = units_.LimitRadians(line.Number("lower", std::nullopt));
    joint.upper_rad = units_.LimitRadians(line.Number("upper", std::nullopt));
    if (*joint.lower_rad > *joint.upper_rad) {
      line.Refuse("", "the lower limit lies above the upper one");
    }
  }

  std::vector<JointLine> JointLines(bool ortho_parallel) {
    const size_t count =
        table_.Has("joint") && table_.at("joint").is_array() ? table_.at("joint").size() : 0;
    if (count != 6) {
      table_.Refuse("", fmt::format("{} joints; six [[joint]] are expected", count));
    }
    std::vector<std::string> keys = {"name", "theta", "direction", "lower", "upper"};
    if (!ortho_parallel) keys.insert(keys.end(), {"a", "alpha", "d"});
    std::vector<JointLine> lines;
    for (size_t j = 0; j < 6; ++j) {
      const Fields line = table_.Entry("joint", j);
      line.Expect(keys);
      JointLine read = {};
      read.joint.name = line.Text("name", fmt::format("joint_{}", j + 1));
      read.a = units_.Metres(line.Number("a", 0.0));
      read.alpha = units_.Radians(line.Number("alpha", 0.0), line.Where("alpha"));
      read.d = units_.Metres(line.Number("d", 0.0));
      read.theta = units_.Radians(line.Number("theta", 0.0), line.Where("theta"));
      read.direction = line.Number("direction", 1.0);
      if (std::fabs(read.direction) != 1) {
        line.Refuse("direction", fmt::format("{}; 1 or -1 is expected", read.direction));
      }
      ReadLimits(line, read.joint);
      lines.push_back(read);
    }
    return lines;
  }

  // Joint j: Rz(theta) Tz(d) Tx(a) Rx(alpha); modified: Rx(alpha) Tx(a) Rz(theta) Tz(d). Turns
  // about an axis and moves along it may change places.
  static void DenavitHartenberg(const std::vector<JointLine>& lines, bool modified,
                                std::array<Transform, 6>& before, std::array<Transform, 6>& after,
                                std::array<Vec3, 6>& axes) {
    for (size_t j = 0; j < 6; ++j) {
      const JointLine& line = lines[j];
      const Transform link = Moved(line.a, 0, 0) * RotationAbout(kX, line.alpha);
      const Transform joint = RotationAbout(kZ, line.theta) * Moved(0, 0, line.d);
      before[j] = modified ? link : Transform();
      after[j] = modified ? joint : joint * link;
      axes[j] = kZ;
    }
  }

  // With all angles at zero the arm stands up: axes 1, 4 and 6 along z, axes 2, 3 and 5 along y.
  void OrthoParallel(const std::vector<JointLine>& lines, std::array<Transform, 6>& before,
                     std::array<Transform, 6>& after, std::array<Vec3, 6>& axes) {
    const auto length = [&](const char* key, std::optional<double> otherwise) {
      return units_.Metres(table_.Number(key, otherwise));
    };
    before[1] = Moved(length("a1", 0.0), 0, length("c1", 0.0));
    before[2] = Moved(0, 0, length("c2", std::nullopt));
    before[3] = Moved(length("a2", 0.0), length("b", 0.0), length("c3", std::nullopt));
    axes = {kZ, kY, kY, kZ, kY, kZ};
    for (size_t j = 0; j < 6; ++j) after[j] = RotationAbout(axes[j], lines[j].theta);
    tip_ = Moved(0, 0, length("c4", 0.0));
  }

  const Fields& table_;
  const FileUnits units_;
  Transform tip_;
};

}  // namespace

ArmDescription ReadTable(const Fields& table, const ReadOptions& options) {
  return TableReader(table, options).Read();
}

}  // namespace qal::io
