#include "report_motion.h"

#include <fmt/format.h>

#include "error.h"
#include "motion_series.h"
#include "number_bytes.h"

namespace qal::io {

namespace {

// What of a sample is drawn has the seven digits of a float.
void Add(double value, NumberBytes& bytes) { bytes.Add(static_cast<float>(value)); }
void Add(const Joints& values, NumberBytes& bytes) {
  for (const double value : values) Add(value, bytes);
}
void Add(const Vec3& v, NumberBytes& bytes) {
  for (const double value : {v.x, v.y, v.z}) Add(value, bytes);
}
void Add(const Quat& q, NumberBytes& bytes) {
  for (const double value : {q.w, q.x, q.y, q.z}) Add(value, bytes);
}

template <typename Values>
std::string Floats(const Values& values) {
  NumberBytes bytes;
  for (const auto& value : values) Add(value, bytes);
  return bytes.Text();
}

template <typename Part>
std::string Floats(const std::vector<Pose>& poses, Part part) {
  NumberBytes bytes;
  for (const Pose& pose : poses) Add(pose.*part, bytes);
  return bytes.Text();
}

// Times of a long motion need more.
std::string Doubles(const std::vector<double>& values) {
  NumberBytes bytes;
  for (const double value : values) bytes.Add(value);
  return bytes.Text();
}

Json StepsJson(const ReportProgram& program) {
  Json list = Json::array();
  for (const auto& [begin_s, name] : program.steps) {
    list.push_back({{"begin_s", begin_s}, {"name", name}});
  }
  return list;
}

Json CornersJson(const ReportProgram& program) {
  Json list = Json::array();
  for (const ReportProgram::Corner& corner : program.corners) {
    const Vec3& at = corner.position;
    list.push_back({{"step", corner.step},
                    {"position_m", {at.x, at.y, at.z}},
                    {"radius_m", corner.radius_m},
                    {"deviation_m", corner.deviation_m},
                    {"begin_s", corner.begin_s},
                    {"end_s", corner.end_s}});
  }
  return list;
}

}  // namespace

void ExpectOrder(const std::string& name, const LocatedTrajectory& trajectory) {
  const FileTrajectory& samples = trajectory.samples;
  for (size_t i = 1; i < samples.size(); ++i) {
    if (!(samples[i].time_s < samples[i - 1].time_s)) continue;
    throw Failure(fmt::format(
        "{}: {}: the time goes back from {:.9g} to {:.9g} s; this can't be played or drawn", name,
        Place(trajectory, i), samples[i - 1].time_s, samples[i].time_s));
  }
}

Json ReportMotionJson(const ReportMotion& motion,
                      const std::function<void(size_t done)>& progress) {
  const LocatedTrajectory& trajectory = motion.findings.trajectory;
  ExpectOrder(motion.name, trajectory);
  const MotionSeries series = SeriesOf(motion.findings.loaded.arm, trajectory.samples, progress);
  return {{"name", motion.name},
          {"samples", trajectory.samples.size()},
          {"time_s", Doubles(series.time_s)},
          {"joints_rad", Floats(series.joints)},
          {"velocities_rad_s", Floats(series.velocities)},
          {"accelerations_rad_s2", Floats(series.accelerations)},
          {"jerks_rad_s3", Floats(series.jerks)},
          {"rates", series.own_rates ? "own" : "differences"},
          {"positions_m", Floats(series.poses, &Pose::position)},
          {"wxyz", Floats(series.poses, &Pose::orientation)},
          {"tool_speed_m_s", Floats(series.tool_speed_m_s)},
          {"limit_margin_rad", Floats(series.limit_margin_rad)},
          {"singular_value", Floats(series.singular_value)},
          {"steps", StepsJson(motion.program)},
          {"corners", CornersJson(motion.program)},
          {"verdict", ReportVerdictJson(motion.findings)},
          {"notes", trajectory.notes}};
}

}  // namespace qal::io
