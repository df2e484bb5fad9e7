#ifndef QAL_BENCH_PROGRAM_WAYS_H_
#define QAL_BENCH_PROGRAM_WAYS_H_

#include <qal/model/rotations.h>
#include <qal/plan/program.h>

#include <algorithm>
#include <cmath>

// Where the tool's steps of a program lead, by elementary geometry: not as the planner does it.
namespace qal::bench {

inline Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(double f, const Vec3& v) { return {f * v.x, f * v.y, f * v.z}; }
inline double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Norm(const Vec3& v) { return std::hypot(v.x, v.y, v.z); }

/// The rotation vector from one orientation to another, the shorter way [base frame].
inline Vec3 TurnBetween(const Quat& from, const Quat& to) {
  const Quat turn = SignedAs(to, from) * Conjugate(from);
  const Vec3 v = {turn.x, turn.y, turn.z};
  const double sine = Norm(v);
  return sine > 0 ? (2 * std::atan2(sine, turn.w) / sine) * v : Vec3{0, 0, 0};
}

inline Quat Turned(const Quat& from, const Vec3& by) {
  const double half = Norm(by) / 2;
  const double share = half > 0 ? std::sin(half) / (2 * half) : 0.5;
  return Quat{std::cos(half), share * by.x, share * by.y, share * by.z} * from;
}

/// The tool's way on a line or an arc.
class StepWay {
 public:
  static StepWay Line(const Pose& from, const Pose& to) {
    StepWay way(from, TurnBetween(from.orientation, to.orientation));
    way.along_ = to.position - from.position;
    return way;
  }

  static StepWay Arc(const Pose& from, const ArcAbout& arc) {
    const Vec3 axis = (1 / Norm(arc.axis)) * arc.axis;
    const Vec3 off = from.position - arc.centre;
    const Vec3 radius = off - Dot(off, axis) * axis;
    const Vec3 turn = arc.turn == ArcTurn::kWithArc ? arc.angle_rad * axis : Vec3{0, 0, 0};
    return StepWay(from, turn, radius, axis, arc.angle_rad);
  }

  /// @param to of the arc's end
  static StepWay Arc(const Pose& from, const ArcThrough& arc, const Pose& to) {
    const Vec3 a = arc.through - from.position;
    const Vec3 b = to.position - from.position;
    const Vec3 normal = Cross(a, b);
    // The centre of the circle through 0, a and b.
    const Vec3 centre = (0.5 / Dot(normal, normal)) * Cross(Dot(a, a) * b - Dot(b, b) * a, normal);
    // Seen along this the start, the middle and the end are counter-clockwise.
    const Vec3 axis = (1 / Norm(normal)) * normal;
    const Vec3 radius = -1.0 * centre;
    const double angle = Angle(radius, axis, b - centre);
    Vec3 turn = {0, 0, 0};
    if (arc.turn == ArcTurn::kToEnd) turn = TurnBetween(from.orientation, to.orientation);
    if (arc.turn == ArcTurn::kWithArc) turn = angle * axis;
    return StepWay(from, turn, radius, axis, angle);
  }

  double length_m() const { return Norm(along_) + Norm(radius_) * std::fabs(angle_); }

  Pose At(double part) const {
    const double by = part * angle_;
    const Vec3 moved = std::sin(by) * Cross(axis_, radius_) -
                       2 * std::sin(by / 2) * std::sin(by / 2) * radius_ + part * along_;
    return {from_.position + moved, Turned(from_.orientation, part * turn_)};
  }

  bool moves() const { return length_m() + Norm(turn_) > 1e-12; }  // not by rounding

  /// The part of the way, from 0 to 1, whose position is nearest to a pose's; of a turn on the
  /// spot, by the angle.
  double PartNearest(const Pose& pose) const { return std::clamp(Guess(pose), 0.0, 1.0); }

  /// The part that is nearest to a pose close to the way, a radian being like a metre. Of
  /// an arc of more than a full turn the first one.
  double PartNear(const Pose& pose) const {
    double part = PartNearest(pose);
    const double speeds = length_m() * length_m() + Dot(turn_, turn_);
    for (int i = 0; i < 2 && speeds > 0; ++i) {
      const Pose there = At(part);
      const Vec3 tangent =
          along_ + angle_ * Cross(axis_, there.position - from_.position + radius_);
      const double ahead = Dot(pose.position - there.position, tangent) +
                           Dot(TurnBetween(there.orientation, pose.orientation), turn_);
      part = std::clamp(part + ahead / speeds, 0.0, 1.0);
    }
    return part;
  }

 private:
  static constexpr double kPi = 3.14159265358979323846;

  StepWay(const Pose& from, const Vec3& turn) : from_(from), turn_(turn) {}
  StepWay(const Pose& from, const Vec3& turn, const Vec3& radius, const Vec3& axis, double angle)
      : from_(from), turn_(turn), radius_(radius), axis_(axis), angle_(angle) {}

  double Guess(const Pose& pose) const {
    const Vec3 moved = pose.position - from_.position;
    if (angle_ != 0) {
      const Vec3 axis = angle_ < 0 ? -1.0 * axis_ : axis_;
      const double angle = Angle(radius_, axis, moved + radius_);
      const double whole = std::fabs(angle_);
      // Beyond the end it may as well be before the start.
      return angle > (whole + 2 * kPi) / 2 ? 0 : angle / whole;
    }
    if (Norm(along_) > 0) return Dot(moved, along_) / Dot(along_, along_);
    const double turn = Norm(turn_);
    return turn > 0 ? AngleBetween(from_.orientation, pose.orientation) / turn : 0;
  }

  // Counter-clockwise from `radius` to `to`, 0 to 2 pi.
  static double Angle(const Vec3& radius, const Vec3& axis, const Vec3& to) {
    const double angle = std::atan2(Dot(Cross(axis, radius), to), Dot(radius, to));
    return angle < 0 ? angle + 2 * kPi : angle;
  }

  Pose from_;
  Vec3 turn_;                // rotation vector of the whole way [base frame]
  Vec3 along_ = {0, 0, 0};   // of a line
  Vec3 radius_ = {0, 0, 0};  // of an arc, from its centre to the start
  Vec3 axis_ = {0, 0, 1};
  double angle_ = 0;
};

}  // namespace qal::bench

#endif  // QAL_BENCH_PROGRAM_WAYS_H_
