#include <qal/model/chain.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "../../io/arm_settings.h"
#include "../../io/error.h"
#include "../../io/program_file.h"
#include "../../io/stl.h"
#include "../../io/table.h"
#include "../../io/trajectory_csv.h"
#include "../../io/trajectory_json.h"
#include "../../io/trajectory_ros.h"
#include "../../io/units.h"
#include "../../io/urdf.h"
#include "../../io/urdf_visuals.h"

/// Which format the harness reads: csv, json, ...; by the program.
extern const char* const fuzz_format;

namespace {

using namespace qal::io;

void Require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

bool Same(const FileSample& a, const FileSample& b) {
  if (a.time_s != b.time_s || a.joints != b.joints || a.velocities != b.velocities ||
      a.accelerations != b.accelerations) {
    return false;
  }
  if (!a.pose || !b.pose) return !a.pose && !b.pose;
  const auto numbers = [](const qal::Pose& pose) {
    const auto& [p, q] = pose;
    return std::array<double, 7>{p.x, p.y, p.z, q.w, q.x, q.y, q.z};
  };
  return numbers(*a.pose) == numbers(*b.pose);
}

// What is read and written is read the same again.
template <typename Read, typename Write>
void CheckTrajectory(const std::string& text, Read read, Write write) {
  const FileTrajectory samples = read(text).samples;
  Require(!samples.empty(), "no sample, and not refused");
  std::string written;
  try {
    written = write(samples);
  } catch (const UsageError&) {  // times that a format has no room for
    return;
  }
  const FileTrajectory again = read(written).samples;
  Require(std::equal(samples.begin(), samples.end(), again.begin(), again.end(), Same),
          "not the same when read again");
}

void CheckArm(const qal::ArmDescription& arm) {
  CheckScale(arm, "file", {});
  const qal::Vec3 tip = TipFrame(arm, {}).position;
  Require(std::isfinite(tip.x + tip.y + tip.z), "a tip that isn't finite");
}

// Each triangle has three corners in three places.
void CheckMesh(const std::string& text) {
  constexpr size_t kMost = 100000;
  const Mesh mesh = MeshOf(ParseStl(text, kMost), {0.001, -0.001, 0.001});
  Require(mesh.triangles() <= kMost, "more triangles than are taken");
  for (size_t i = 0; i < mesh.indices.size(); i += 3) {
    const uint32_t* const corner = &mesh.indices[i];
    Require(corner[0] != corner[1] && corner[1] != corner[2] && corner[2] != corner[0], "an edge");
    Require(corner[0] < mesh.vertices.size() && corner[1] < mesh.vertices.size() &&
                corner[2] < mesh.vertices.size(),
            "a corner from nowhere");
  }
}

void CheckVisuals(const std::string& text) {
  for (const UrdfVisual& visual : ReadVisuals({text, "file", {}}).visuals) {
    Require(visual.link >= 0 && visual.link <= 6, "a link of no joint");
    Require(std::isfinite(visual.placement.position.x), "a place that isn't finite");
  }
}

void CheckSettings(const qal::ArmSettings& settings) {
  for (const qal::JointSettings& joint : settings.joints) {
    Require(std::isfinite(joint.jerk_rad_s3.value_or(0)), "a limit that isn't finite");
  }
  for (const double element : settings.tool.rotation) {
    Require(std::isfinite(element), "a frame that isn't finite");
  }
}

void CheckProgram(const ProgramFile& file) {
  Require(file.places.size() == file.program.steps.size(), "a step from nowhere");
  for (const qal::ProgramStep& step : file.program.steps) {
    const auto* line = std::get_if<qal::LineStep>(&step);
    if (line == nullptr) continue;
    Require(line->limits.speed_m_s > 0, "a line without a speed");
    Require(!line->zone || line->zone->tool_m > 0, "a zone that is none");
  }
}

void Read(const std::string& format, const std::string& text) {
  if (format == "csv") {
    CheckTrajectory(text, ParseCsv, ToCsv);
  } else if (format == "json") {
    CheckTrajectory(text, ParseJsonTrajectory,
                    [](const FileTrajectory& t) { return ToJson(t).dump(); });
  } else if (format == "ros") {
    CheckTrajectory(
        text, [](std::string_view t) { return ParseRosYaml(t, {}); },
        [](const FileTrajectory& t) { return ToRosYaml(t, DefaultJointNames()); });
  } else if (format == "urdf") {
    CheckArm(ReadUrdf(text, "file", {}));
    CheckVisuals(text);
  } else if (format == "stl") {
    CheckMesh(text);
  } else {
    const Document table = format == "toml" ? ParseToml(text, "file") : ParseJson(text, "file");
    const Fields fields(table);
    if (fields.Has("step")) return CheckProgram(ReadProgram(table, qal::Arm::Reference()));
    if (fields.Has("convention")) return CheckArm(ReadTable(fields, {}));
    CheckSettings(ReadArmSettings(fields));
  }
}

}  // namespace

// Reads a file of one format: it is refused with a reason, or what has been read is sound.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    Read(fuzz_format, std::string(data, data + size));
  } catch (const UsageError& error) {
    const size_t length = std::strlen(error.what());
    Require(length > 0 && length < 2100, "no reason, or one that is no line to read");
  }
  return 0;
}
