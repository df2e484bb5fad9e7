#include "program_points.h"

#include <fmt/format.h>
#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <algorithm>
#include <cmath>

#include "error_text.h"
#include "frame.h"
#include "limits.h"
#include "numbers.h"
#include "suggestion.h"

namespace qal::io {

namespace {

constexpr char kWhatAPointHas[] = "one of joints_rad, joints_deg, xyz and of";

Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

Vec3 Rotated(const Quat& q, const Vec3& v) {
  const Quat turned = q * Quat{0, v.x, v.y, v.z} * Conjugate(q);
  return {turned.x, turned.y, turned.z};
}

PointGrid ReadGrid(const Fields& grid) {
  grid.Expect({"counts", "steps"});
  for (const char* key : {"counts", "steps"}) {
    if (!grid.Has(key)) grid.Refuse("", std::string(key) + " is missing");
  }
  PointGrid read = {{}, grid.Triples("steps")};
  if (read.steps.empty() || read.steps.size() > 3) {
    grid.Refuse("steps", "one to three steps are expected");
  }
  double places = 1;
  for (const double count : grid.Numbers("counts", read.steps.size())) {
    places *= count;
    if (count < 1 || count != std::floor(count) || places > static_cast<double>(kMostSteps)) {
      grid.Refuse("counts", fmt::format("whole numbers from 1 are expected, of at most {} places",
                                        kMostSteps));
    }
    read.counts.push_back(static_cast<size_t>(count));
  }
  return read;
}

std::variant<Joints, Pose, std::string> ReadOrigin(const Fields& fields) {
  const std::string joints = fields.AngleKey("joints_rad");
  if (!joints.empty() + fields.Has("xyz") + fields.Has("of") != 1) {
    fields.Refuse("", fmt::format("{} is expected", kWhatAPointHas));
  }
  const std::optional<Quat> orientation = ReadOrientation(fields);
  if (fields.Has("xyz")) {
    if (!orientation) fields.Refuse("", "rpy, rpy_deg or quat_wxyz is missing");
    return Pose{fields.Triple("xyz"), *orientation};
  }
  if (orientation) {
    fields.Refuse("", "an orientation goes with xyz; rpy_base and rpy_tool turn another point");
  }
  if (fields.Has("of")) return fields.Text("of", "");
  const std::vector<double> angles = fields.Numbers(joints, 6);
  Joints read;
  std::transform(angles.begin(), angles.end(), read.begin(),
                 [&](double angle) { return angle * AngleUnit(joints); });
  return read;
}

FilePoint ReadPoint(const Fields& fields) {
  fields.Expect(
      WithOrientationKeys({"joints_rad", "joints_deg", "xyz", "of", "offset_base", "offset_tool",
                           "rpy_base", "rpy_base_deg", "rpy_tool", "rpy_tool_deg", "grid"}));
  FilePoint point = {fields,
                     ReadOrigin(fields),
                     fields.Triple("offset_base"),
                     fields.Triple("offset_tool"),
                     FromRollPitchYawAngles(ReadRpy(fields, "rpy_base")),
                     FromRollPitchYawAngles(ReadRpy(fields, "rpy_tool")),
                     std::nullopt};
  if (fields.Has("grid")) point.grid = ReadGrid(fields.Object("grid"));
  return point;
}

// Whether a point is elsewhere than what it is of.
bool IsMoved(const Fields& fields) {
  for (const char* key : {"offset_base", "offset_tool", "rpy_base", "rpy_base_deg", "rpy_tool",
                          "rpy_tool_deg", "grid"}) {
    if (fields.Has(key)) return true;
  }
  return false;
}

Pose PoseOf(const Target& target, const Arm& arm, const FilePoint& point) {
  if (const Pose* pose = std::get_if<Pose>(&target)) return *pose;
  const Result<Pose> pose = Forward(arm, std::get<Joints>(target));
  if (!pose) point.fields.Refuse("", ErrorText(pose.error()));
  return *pose;
}

Vec3 GridPlace(const FilePoint& point, const std::optional<size_t>& repetition) {
  if (!point.grid) return {0, 0, 0};
  if (!repetition) {
    point.fields.Refuse("grid",
                        "its places are those of repetitions: a step with repeat is expected "
                        "around the steps that go there");
  }
  if (*repetition >= point.grid->Places()) {
    point.fields.Refuse(
        "grid", fmt::format("it has {} places; there are more repetitions", point.grid->Places()));
  }
  return point.grid->At(*repetition);
}

// What a point makes of the one that it is of.
Target Moved(const Target& from, const FilePoint& point, const PointUse& use) {
  if (!IsMoved(point.fields)) return from;
  const Pose pose = PoseOf(from, use.arm, point);
  return Pose{pose.position + GridPlace(point, use.repetition) + point.offset_base +
                  Rotated(pose.orientation, point.offset_tool),
              point.turn_base * pose.orientation * point.turn_tool};
}

}  // namespace

size_t PointGrid::Places() const {
  size_t places = 1;
  for (const size_t count : counts) places *= count;
  return places;
}

Vec3 PointGrid::At(size_t place) const {
  Vec3 sum = {0, 0, 0};
  for (size_t i = 0; i < counts.size(); ++i) {
    const auto index = static_cast<double>(place % counts[i]);
    sum = sum + Vec3{index * steps[i].x, index * steps[i].y, index * steps[i].z};
    place /= counts[i];
  }
  return sum;
}

ProgramPoints::ProgramPoints(const Fields& file) {
  if (!file.Has("points")) return;
  const Fields points = file.Object("points");
  for (const std::string& name : points.Keys()) {
    points_.emplace(name, ReadPoint(points.Object(name)));
  }
  for (const auto& [name, point] : points_) (void)ChainOf(point);  // refuses what leads nowhere
}

const FilePoint& ProgramPoints::Named(const std::string& name, const Fields& fields,
                                      const std::string& key) const {
  const auto found = points_.find(name);
  if (found != points_.end()) return found->second;
  std::vector<std::string> names;
  for (const auto& [known, point] : points_) names.push_back(known);
  fields.Refuse(key, fmt::format("no point '{}'; {}", name, SuggestionText(name, names)));
}

// The point, the one that it is of, and so on.
std::vector<const FilePoint*> ProgramPoints::ChainOf(const FilePoint& point) const {
  std::vector<const FilePoint*> chain = {&point};
  while (const std::string* name = std::get_if<std::string>(&chain.back()->of)) {
    const FilePoint& next = Named(*name, chain.back()->fields, "of");
    if (std::find(chain.begin(), chain.end(), &next) != chain.end()) {
      point.fields.Refuse("of", "leads back to where it was; a point of joints or xyz is expected");
    }
    if (chain.size() == kDeepest) {
      point.fields.Refuse("of", fmt::format("more than {} points of each other", kDeepest));
    }
    chain.push_back(&next);
  }
  return chain;
}

Target ProgramPoints::At(const Fields& step, const std::string& key, const PointUse& use) const {
  std::optional<FilePoint> in_place;
  if (step.at(key).is_object()) {
    in_place = ReadPoint(step.Object(key));
  } else if (!step.at(key).is_string()) {
    step.Refuse(key,
                fmt::format("the name of a point is expected, or a table with {}", kWhatAPointHas));
  }
  const std::vector<const FilePoint*> chain =
      ChainOf(in_place ? *in_place : Named(step.Text(key, ""), step, key));
  Target target;
  if (const Joints* joints = std::get_if<Joints>(&chain.back()->of)) target = *joints;
  if (const Pose* pose = std::get_if<Pose>(&chain.back()->of)) target = *pose;
  std::for_each(chain.rbegin(), chain.rend(),
                [&](const FilePoint* point) { target = Moved(target, *point, use); });
  return target;
}

Vec3 ProgramPoints::PositionAt(const Fields& step, const std::string& key,
                               const PointUse& use) const {
  if (!step.Has(key)) step.Refuse("", key + " is missing");
  if (step.at(key).is_array()) return step.Triple(key);
  const Target target = At(step, key, use);
  if (const Pose* pose = std::get_if<Pose>(&target)) return pose->position;
  const Result<Pose> pose = Forward(use.arm, std::get<Joints>(target));
  if (!pose) step.Refuse(key, ErrorText(pose.error()));
  return pose->position;
}

}  // namespace qal::io
