#include "program_way.h"

#include <qal/model/rotations.h>
#include <qal/solve/kinematics.h>

#include <cmath>
#include <optional>

#include "../../solver/closed_form/angles.h"

namespace qal::tools {

namespace {

Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec3 operator*(double s, const Vec3& v) { return {s * v.x, s * v.y, s * v.z}; }
double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Quat TurnAbout(const Vec3& axis, double angle_rad) {
  const double part = std::sin(angle_rad / 2) / std::sqrt(Dot(axis, axis));
  return {std::cos(angle_rad / 2), part * axis.x, part * axis.y, part * axis.z};
}

Vec3 Turned(const Quat& turn, const Vec3& v) {
  const Quat turned = turn * Quat{0, v.x, v.y, v.z} * Conjugate(turn);
  return {turned.x, turned.y, turned.z};
}

// The arc through three points; nothing where they are on a line.
std::optional<ArcAbout> ArcOf(const Vec3& from, const ArcThrough& arc, const Vec3& to) {
  const Vec3 a = arc.through - from;
  const Vec3 b = to - from;
  const Vec3 normal = Cross(a, b);
  const double square = Dot(normal, normal);
  if (!(square > 0)) return std::nullopt;
  const Vec3 to_centre =
      (0.5 / square) * (Dot(a, a) * Cross(b, normal) - Dot(b, b) * Cross(a, normal));
  const Vec3 end = b - to_centre;
  const double sine = Dot(Cross(end, to_centre), normal) / std::sqrt(square);
  double angle_rad = std::atan2(sine, -1 * Dot(end, to_centre));
  if (angle_rad < 0) angle_rad += 2 * closed_form::kPi;
  return ArcAbout{from + to_centre, normal, angle_rad, arc.turn};
}

// Goes along a program, step by step.
class Walker {
 public:
  Walker(const Arm& arm, const Joints& start) : own_(arm), arm_(arm), joints_(start) {
    if (const auto pose = Forward(arm, start)) Go(*pose);
  }

  void Do(const WaitStep& /*step*/) {}
  void Do(const ToolStep& step);
  void Do(const JointStep& step);
  void Do(const LineStep& step) { Arrive(PoseOf(step.to)); }
  void Do(const ArcStep& step);

  std::vector<Vec3> way() && { return std::move(way_); }

 private:
  static constexpr int kPieces = 24;

  void Go(const Pose& pose) {
    pose_ = pose;
    way_.push_back(pose.position);
  }
  // At the end of a way of the tool.
  void Arrive(const Pose& pose) {
    Go(pose);
    if (const auto solved = Nearest(arm_, pose, joints_)) joints_ = solved->joints;
  }
  Pose PoseOf(const Target& target) const {
    if (const Pose* const pose = std::get_if<Pose>(&target)) return *pose;
    const auto pose = Forward(arm_, std::get<Joints>(target));
    return pose ? *pose : pose_;
  }

  Arm own_;
  Arm arm_;
  Joints joints_;
  Pose pose_ = {{0, 0, 0}, {1, 0, 0, 0}};
  std::vector<Vec3> way_;
};

void Walker::Do(const ToolStep& step) {
  if (const auto with = own_.WithTool(step.tool)) arm_ = *with;
  if (const auto pose = Forward(arm_, joints_)) pose_ = *pose;
}

void Walker::Do(const JointStep& step) {
  Joints end = joints_;
  if (const Joints* const joints = std::get_if<Joints>(&step.to)) {
    end = *joints;
  } else if (const auto solved = Nearest(arm_, std::get<Pose>(step.to), joints_)) {
    end = solved->joints;
  } else {
    return Go(std::get<Pose>(step.to));
  }
  const Joints begin = joints_;
  for (int i = 1; i <= kPieces; ++i) {
    for (size_t j = 0; j < end.size(); ++j) {
      joints_[j] = begin[j] + (end[j] - begin[j]) * i / kPieces;
    }
    if (const auto pose = Forward(arm_, joints_)) Go(*pose);
  }
  joints_ = end;
}

void Walker::Do(const ArcStep& step) {
  const Pose begin = pose_;
  Pose end = begin;
  std::optional<ArcAbout> about;
  if (const auto* const through = std::get_if<ArcThrough>(&step.arc)) {
    end = PoseOf(through->to);
    about = ArcOf(begin.position, *through, end.position);
  } else {
    about = std::get<ArcAbout>(step.arc);
  }
  if (!about) return Arrive(end);
  const Vec3 radius = begin.position - about->centre;
  for (int i = 1; i < kPieces; ++i) {
    const Quat turn = TurnAbout(about->axis, about->angle_rad * i / kPieces);
    way_.push_back(about->centre + Turned(turn, radius));
  }
  const Quat turn = TurnAbout(about->axis, about->angle_rad);
  end.position = about->centre + Turned(turn, radius);
  if (about->turn == ArcTurn::kWithArc) end.orientation = turn * begin.orientation;
  if (about->turn == ArcTurn::kFixed) end.orientation = begin.orientation;
  Arrive(end);
}

}  // namespace

std::vector<Vec3> WayOf(const Arm& arm, const Program& program) {
  Walker walker(arm, program.start);
  for (const ProgramStep& step : program.steps) {
    std::visit([&walker](const auto& way) { walker.Do(way); }, step);
  }
  return std::move(walker).way();
}

}  // namespace qal::tools
