#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "../../tools/arm/table.h"
#include "../../tools/arm/units.h"
#include "../../tools/arm/urdf.h"
#include "../io/error.h"
#include "../../tools/qal/trajectory_csv.h"
#include "../../tools/qal/trajectory_json.h"
#include "../../tools/qal/trajectory_ros.h"

namespace {

using namespace qal::tools;

void Require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

bool Same(const Sample& a, const Sample& b) {
  if (a.time_s != b.time_s || a.joints_rad != b.joints_rad) return false;
  if (!a.pose || !b.pose) return !a.pose && !b.pose;
  return a.pose->position == b.pose->position && a.pose->orientation == b.pose->orientation;
}

// What is read and written is read the same again.
template <typename Read, typename Write>
void CheckTrajectory(const std::string& text, Read read, Write write) {
  const Trajectory samples = read(text).samples;
  Require(!samples.empty(), "no sample, and not refused");
  std::string written;
  try {
    written = write(samples);
  } catch (const UsageError&) {  // times that a format has no room for
    return;
  }
  const Trajectory again = read(written).samples;
  Require(std::equal(samples.begin(), samples.end(), again.begin(), again.end(), Same),
          "not the same when read again");
}

void CheckArm(const Arm& arm) {
  CheckScale(arm, "file");
  Require(std::isfinite(Length(TipFrame(arm, {}).position)), "a tip that isn't finite");
}

void Read(const std::string& format, const std::string& text) {
  if (format == "csv") {
    CheckTrajectory(text, ParseCsv, [](const Trajectory& t) { return ToCsv(t, false); });
  } else if (format == "json") {
    CheckTrajectory(
        text, [](std::string_view t) { return qal::tools::ParseJson(t); },
        [](const Trajectory& t) { return ToJson(t).dump(); });
  } else if (format == "ros") {
    const JointNames names = DefaultJointNames();
    CheckTrajectory(
        text, [&](std::string_view t) { return ParseRosYaml(t, names); },
        [&](const Trajectory& t) { return ToRosYaml(t, names); });
  } else if (format == "urdf") {
    CheckArm(ReadUrdf(text, "file", {}));
  } else {
    CheckArm(ReadTable(format == "toml" ? ParseToml(text, "file") : ParseJson(text, "file"), "file",
                       {}));
  }
}

}  // namespace

// Reads a file of one format: it is refused with a reason, or what has been read is sound.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    Read(QAL_FUZZ_FORMAT, std::string(data, data + size));
  } catch (const UsageError& error) {
    Require(*error.what() != '\0', "no reason");
  }
  return 0;
}
