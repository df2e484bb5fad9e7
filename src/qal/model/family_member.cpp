#include "family_member.h"

#include <algorithm>
#include <cmath>

namespace qal {

namespace {

using closed_form::Body;
using closed_form::OffsetWristArm;
using closed_form::ParallelAxesArm;
using closed_form::SinCos;
using closed_form::SphericalWristArm;
using closed_form::Transposed;

// Numbers within rounding of a plain one become that one. What this leaves out is far below what
// the solutions may be off.
constexpr double kTidy = 1e-13;

// A length of not more than ten decimals.
double Tidy(double length) {
  const double plain = std::round(length * 1e10) / 1e10;
  return std::fabs(length - plain) < kTidy ? plain + 0.0 : length;
}

// A multiple of 15 degrees.
double TidyAngle(double angle) {
  const double plain = std::round(angle / (kPi / 12)) * kPi / 12;
  return std::fabs(angle - plain) < kTidy ? plain + 0.0 : angle;
}

// A matrix element that is 0, 1 or -1 where axes are at right angles.
double TidyCosine(double value) {
  const double whole = std::round(value);
  return std::fabs(value - whole) < kTidy ? whole + 0.0 : value;
}

Vector3 Tidy(const Vector3& v) { return {{Tidy(v[0]), Tidy(v[1]), Tidy(v[2])}}; }

Matrix3 Tidy(Matrix3 m) {
  for (Vector3& row : m.row) {
    for (double& element : row.element) element = TidyCosine(element);
  }
  return m;
}

SinCos<double> TidySinCos(double angle) {
  return {TidyCosine(std::sin(angle)), TidyCosine(std::cos(angle))};
}

// Into (-pi, pi].
double Wrapped(double angle) { return angle - std::ceil((angle - kPi) / (2 * kPi)) * 2 * kPi; }

// From here on in the arm's frame.
constexpr Vector3 kX = {{1, 0, 0}};
constexpr Vector3 kY = {{0, 1, 0}};
constexpr Vector3 kZ = {{0, 0, 1}};

// The angle about y that takes z to the direction of `v` in the x-z plane.
double PitchOf(const Vector3& v) { return std::atan2(v[0], v[2]); }

// The angle about `axis` from one vector to another, both at right angles to it.
double AngleAbout(const Vector3& axis, const Vector3& from, const Vector3& to) {
  return std::atan2(Dot(Cross(from, to), axis), Dot(from, to));
}

// What the families share, and what the rest is found from.
struct Start {
  Body body;
  Axes axes;
  Vector3 centre;        // the wrist's
  Matrix3 tip;           // the tip frame's rotation
  double forearm_pitch;  // model angles 2 and 3 together; all with the joints at zero
};

// `forearm_end`: a point on axis 4 or the wrist's centre.
Start MakeStart(const ArmDescription& arm, const Axes& axes, const Vector3& centre,
                const Vector3& forearm_end) {
  const Vector3& z = axes[0].direction;
  Vector3 y = axes[1].direction - Dot(axes[1].direction, z) * z;
  y = (1 / Length(y)) * y;
  // With the joints at zero the wrist shall lie in front of axis 1, not behind: then solutions
  // start with the arm's front.
  if (Dot(centre - axes[0].point, Cross(y, z)) < -kTidy) y = -1.0 * y;
  const Matrix3 to_arm = {{Cross(y, z), y, z}};
  const Vector3 origin = axes[0].point + Dot(axes[1].point - axes[0].point, z) * z;

  Start start = {};
  for (size_t j = 0; j < axes.size(); ++j) {
    start.axes[j] = {to_arm * (axes[j].point - origin), to_arm * axes[j].direction};
  }
  start.centre = to_arm * (centre - origin);
  const Frame tip = ToFrame(TipFrame(arm, {}));
  start.tip = to_arm * tip.rotation;
  const Vector3 upper_arm = start.axes[2].point - start.axes[1].point;
  const Vector3 forearm = to_arm * (forearm_end - origin) - start.axes[2].point;
  start.forearm_pitch = PitchOf(forearm);

  Body& body = start.body;
  body.base = {Tidy(Transposed(to_arm)), Tidy(origin)};
  body.shoulder = Tidy(start.axes[1].point[0]);
  body.lateral = Tidy(start.centre[1]);
  body.upper_arm = Tidy(std::hypot(upper_arm[0], upper_arm[2]));
  body.forearm = Tidy(std::hypot(forearm[0], forearm[2]));
  body.centre_in_tool = Tidy(Transposed(tip.rotation) * (centre - tip.position));
  std::fill(body.direction, body.direction + 6, 1.0);
  for (size_t j = 1; j < 3; ++j) body.direction[j] = start.axes[j].direction[1] < 0 ? -1.0 : 1.0;
  body.zero[1] = TidyAngle(PitchOf(upper_arm));
  body.zero[2] = TidyAngle(Wrapped(start.forearm_pitch - PitchOf(upper_arm)));
  return start;
}

// A wrist whose axis 4 ends the forearm.
struct ForearmWrist {
  SinCos<double> lean, skew;
  Matrix3 flange;  // in the arm's frame, with the joints at zero
};

// Completes the body as well.
ForearmWrist MakeForearmWrist(Start& start) {
  Body& body = start.body;
  const Vector3& axis4 = start.axes[3].direction;
  const Vector3& axis5 = start.axes[4].direction;
  const Vector3& axis6 = start.axes[5].direction;
  // Axis 4 is x of the frame that is rotated from the arm's by `pitch` about y, then `skew` about
  // z.
  const double pitch = std::atan2(-axis4[2], axis4[0]);
  const double skew = std::atan2(axis4[1], std::hypot(axis4[0], axis4[2]));
  const Matrix3 frame4 = RotationMatrix(kY, pitch) * RotationMatrix(kZ, skew);
  const double angle4 = AngleAbout(axis4, Transposed(frame4)[1], axis5);
  const double angle5 = AngleAbout(axis5, axis4, axis6);
  body.zero[3] = TidyAngle(angle4);
  body.zero[4] = TidyAngle(angle5);
  const Matrix3 flange = frame4 * (RotationMatrix(kX, angle4) * RotationMatrix(kY, angle5));
  body.tool = Tidy(Transposed(flange) * start.tip);
  return {TidySinCos(pitch - start.forearm_pitch), TidySinCos(skew), flange};
}

Member MakeSphericalWrist(const ArmDescription& arm, const Axes& axes) {
  const Vector3 centre = MeetingOf(axes[4], axes[3]).point;
  Start start = MakeStart(arm, axes, centre, centre);
  const ForearmWrist wrist = MakeForearmWrist(start);
  return SphericalWristArm{start.body, wrist.lean, wrist.skew};
}

Member MakeOffsetWrist(const ArmDescription& arm, const Axes& axes) {
  const Vector3 centre = MeetingOf(axes[4], axes[3]).point;
  Start start = MakeStart(arm, axes, centre, centre);
  const ForearmWrist wrist = MakeForearmWrist(start);
  // The point of axis 6 nearest to the wrist's centre.
  const auto nearest = [](const Line& axis, const Vector3& point) {
    return axis.point + Dot(point - axis.point, axis.direction) * axis.direction;
  };
  const Frame tip = ToFrame(TipFrame(arm, {}));
  start.body.centre_in_tool =
      Tidy(Transposed(tip.rotation) * (nearest(axes[5], centre) - tip.position));
  const Vector3 offset =
      Transposed(wrist.flange) * (nearest(start.axes[5], start.centre) - start.centre);
  return OffsetWristArm{start.body, wrist.lean, Tidy(offset[1]), Tidy(offset[2])};
}

Member MakeParallelAxes(const ArmDescription& arm, const Axes& axes) {
  const Vector3 centre = MeetingOf(axes[4], axes[5]).point;
  Start start = MakeStart(arm, axes, centre, axes[3].point);
  Body& body = start.body;
  const Vector3& axis5 = start.axes[4].direction;
  // Axis 5 is z of the frame that is rotated from the arm's by `pitch` about y.
  const double pitch = PitchOf(axis5);
  const double angle5 = AngleAbout(axis5, kY, start.axes[5].direction);
  body.direction[3] = start.axes[3].direction[1] < 0 ? -1.0 : 1.0;
  body.zero[3] = TidyAngle(Wrapped(pitch - start.forearm_pitch));
  body.zero[4] = TidyAngle(angle5);
  const Matrix3 flange = RotationMatrix(kY, pitch) * RotationMatrix(kZ, angle5);
  body.tool = Tidy(Transposed(flange) * start.tip);
  const Vector3 offset =
      Transposed(RotationMatrix(kY, pitch)) * (start.centre - start.axes[3].point);
  return ParallelAxesArm{body, Tidy(offset[0]), Tidy(offset[2])};
}

}  // namespace

Member MakeMember(Family family, const ArmDescription& arm, const Axes& axes) {
  switch (family) {
    case Family::kThreeParallelAxes:
      return MakeParallelAxes(arm, axes);
    case Family::kSphericalWrist:
      return MakeSphericalWrist(arm, axes);
    case Family::kOffsetWrist:
    case Family::kGeneral:
      break;
  }
  return MakeOffsetWrist(arm, axes);
}

const Body& BodyOf(const Member& member) {
  return std::visit([](const auto& arm) -> const Body& { return arm.body; }, member);
}

}  // namespace qal
