#include <array>
#include <cmath>
#include <vector>

#include "../src/kinematics/ikfast.h"
#include "reference_arm.h"

// Closed-form kinematics of the reference arm: an ortho-parallel base (axis 1 vertical, axes 2 and
// 3 parallel) and a spherical wrist. Derivation in docs/architecture.md.

namespace {

using namespace qal::reference_arm;
using ikfast::IkReal;
using Joints = std::array<double, 6>;

constexpr double kPi = 3.14159265358979323846;

// A target's columns may be off unit length and right angles by this much. It lies far above what a
// normalised quaternion leaves (1e-15) and far below what a wrong matrix shows.
constexpr double kOrthonormalTolerance = 1e-8;

// Up to here past the workspace's rim a target counts as on it. In metres, 3e-15 at the most:
// rounding alone puts the outstretched arm's own poses that far outside. Closer to the rim than
// this the two elbow configurations count as one.
constexpr double kRimTolerance = 1e-14;

// Sine of joint 5 below which axes 4 and 6 count as one line, and joint 4 is set to 0. The
// direction of the bend is then lost in the last digits; leaving it out moves no matrix element
// further.
constexpr double kWristSingularSine = 1e-11;

struct Rotation {
  double m[3][3];
};

struct SinCos {
  double sine;
  double cosine;
  explicit SinCos(double angle) { ::sincos(angle, &sine, &cosine); }
};

double WrapAngle(double angle) {
  if (angle > kPi) return angle - 2 * kPi;
  if (angle <= -kPi) return angle + 2 * kPi;
  return angle;
}

// atan2 in (-pi, pi]: a negative zero above a negative number would give -pi.
double Angle(double sine, double cosine) { return WrapAngle(std::atan2(sine, cosine)); }

// The rotation from base to forearm: Rz(joint 1) * Ry(joints 2 + 3).
Rotation ForearmRotation(double joint1, double pitch) {
  const SinCos q1(joint1);
  const SinCos p(pitch);
  return {{{q1.cosine * p.cosine, -q1.sine, q1.cosine * p.sine},
           {q1.sine * p.cosine, q1.cosine, q1.sine * p.sine},
           {-p.sine, 0.0, p.cosine}}};
}

bool IsRotation(const double* r) {
  // Written so that NaN fails.
  for (int a = 0; a < 3; ++a) {
    for (int b = a; b < 3; ++b) {
      const double product = r[a] * r[b] + r[3 + a] * r[3 + b] + r[6 + a] * r[6 + b];
      if (!(std::fabs(product - (a == b ? 1.0 : 0.0)) <= kOrthonormalTolerance)) return false;
    }
  }
  const double determinant = r[0] * (r[4] * r[8] - r[5] * r[7]) -
                             r[1] * (r[3] * r[8] - r[5] * r[6]) +
                             r[2] * (r[3] * r[7] - r[4] * r[6]);
  return determinant > 0.0;
}

// Up to eight solutions in a fixed order: shoulder front then back, elbow up then down, wrist.
class Solutions {
 public:
  void Add(const Joints& joints) { joints_[count_++] = joints; }
  const Joints* begin() const { return joints_.data(); }
  const Joints* end() const { return joints_.data() + count_; }

 private:
  std::array<Joints, 8> joints_;
  size_t count_ = 0;
};

// Joints 4 to 6 for the rotation `flange` (base to flange) once joints 1 to 3 are known.
void SolveWrist(const Rotation& flange, double q1, double q2, double q3, Solutions& solutions) {
  const Rotation forearm = ForearmRotation(q1, q2 + q3);
  // Forearm to flange: Rx(joint 4) * Ry(joint 5) * Rx(joint 6). Its first column is
  // (cos q5, sin q4 sin q5, -cos q4 sin q5).
  double w[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      w[i][j] = forearm.m[0][i] * flange.m[0][j] + forearm.m[1][i] * flange.m[1][j] +
                forearm.m[2][i] * flange.m[2][j];
    }
  }
  const double bend = std::sqrt(w[1][0] * w[1][0] + w[2][0] * w[2][0]);
  const bool singular = bend < kWristSingularSine;
  const double s4 = singular ? 0.0 : w[1][0] / bend;
  const double c4 = singular ? 1.0 : -w[2][0] / bend;
  // Joints 5 and 6 from what is left when joint 4 is turned back. So they make up for whatever
  // rounding has done to joint 4, which near the singularity is much.
  const double q4 = singular ? 0.0 : Angle(w[1][0], -w[2][0]);
  const double q5 = Angle(s4 * w[1][0] - c4 * w[2][0], w[0][0]);
  const double s6 = -(c4 * w[1][2] + s4 * w[2][2]);
  const double c6 = c4 * w[1][1] + s4 * w[2][1];
  const double q6 = Angle(s6, c6);
  solutions.Add({q1, q2, q3, q4, q5, q6});
  // The same with the wrist turned over.
  solutions.Add({q1, q2, q3, WrapAngle(q4 + kPi), WrapAngle(-q5), WrapAngle(q6 + kPi)});
}

// Joints 2 and 3, then the wrist. The wrist's centre is `forward` of axis 2 and `up` above it.
void SolveElbow(const Rotation& flange, double q1, double forward, double up,
                Solutions& solutions) {
  // Forearm length from axis 3 to the wrist's centre, and its angle above the forearm's direction.
  const double forearm = std::sqrt(kForearmM * kForearmM + kElbowOffsetM * kElbowOffsetM);
  const double offset_angle = std::atan2(kElbowOffsetM, kForearmM);

  // Law of cosines; the elbow angle is 0 when the arm is stretched out.
  double cosine = (forward * forward + up * up - kUpperArmM * kUpperArmM - forearm * forearm) /
                  (2 * kUpperArmM * forearm);
  if (!(std::fabs(cosine) <= 1 + kRimTolerance)) return;
  const bool on_rim = std::fabs(cosine) >= 1 - kRimTolerance;
  if (on_rim) cosine = cosine > 0.0 ? 1.0 : -1.0;
  const double sine = std::sqrt((1 - cosine) * (1 + cosine));

  for (const double s : {sine, -sine}) {
    const double q3 = WrapAngle(std::atan2(s, cosine) - kPi / 2 + offset_angle);
    // The wrist's direction minus its direction with joint 2 at zero, as one angle.
    const double across = forearm * s;
    const double along = kUpperArmM + forearm * cosine;
    const double q2 = Angle(forward * along - up * across, up * along + forward * across);
    SolveWrist(flange, q1, q2, q3, solutions);
    if (on_rim) break;
  }
}

Solutions Solve(const double* position, const double* r) {
  Solutions solutions;
  // Tool to flange is a fixed quarter turn: the flange's x, y, z are the tool's z, y, -x.
  const Rotation flange = {{{r[2], r[1], -r[0]}, {r[5], r[4], -r[3]}, {r[8], r[7], -r[6]}}};
  const double x = position[0] - kFlangeM * r[2];
  const double y = position[1] - kFlangeM * r[5];
  const double up = position[2] - kFlangeM * r[8] - kShoulderHeightM;
  const double radius = std::sqrt(x * x + y * y);
  // On axis 1 itself every joint 1 reaches; atan2(0, 0) takes 0, and pi for the back.
  const double q1 = Angle(y, x);
  SolveElbow(flange, q1, radius - kShoulderOffsetM, up, solutions);
  SolveElbow(flange, WrapAngle(q1 + kPi), -radius - kShoulderOffsetM, up, solutions);
  return solutions;
}

}  // namespace

namespace ikfast {

bool ComputeIk(const IkReal* eetrans, const IkReal* eerot, const IkReal* /*pfree*/,
               IkSolutionListBase<IkReal>& list) {
  if (!IsRotation(eerot)) return false;
  const Solutions solutions = Solve(eetrans, eerot);  // a position that isn't finite finds nothing
  std::vector<IkSingleDOFSolutionBase<IkReal>> joints(6);
  const std::vector<int> no_free;
  for (const Joints& solution : solutions) {
    for (size_t j = 0; j < joints.size(); ++j) joints[j].foffset = solution[j];
    (void)list.AddSolution(joints, no_free);
  }
  return solutions.begin() != solutions.end();
}

void ComputeFk(const IkReal* joints, IkReal* eetrans, IkReal* eerot) {
  const double pitch = joints[1] + joints[2];
  const Rotation forearm = ForearmRotation(joints[0], pitch);
  const SinCos q2(joints[1]);
  const SinCos q4(joints[3]);
  const SinCos q5(joints[4]);
  const SinCos q6(joints[5]);
  // Forearm to flange: Rx(joint 4) * Ry(joint 5) * Rx(joint 6).
  const double wrist[3][3] = {
      {q5.cosine, q5.sine * q6.sine, q5.sine * q6.cosine},
      {q4.sine * q5.sine, q4.cosine * q6.cosine - q4.sine * q5.cosine * q6.sine,
       -q4.cosine * q6.sine - q4.sine * q5.cosine * q6.cosine},
      {-q4.cosine * q5.sine, q4.sine * q6.cosine + q4.cosine * q5.cosine * q6.sine,
       -q4.sine * q6.sine + q4.cosine * q5.cosine * q6.cosine}};
  const double(&f)[3][3] = forearm.m;
  for (int i = 0; i < 3; ++i) {
    double flange[3];
    for (int j = 0; j < 3; ++j) {
      flange[j] = f[i][0] * wrist[0][j] + f[i][1] * wrist[1][j] + f[i][2] * wrist[2][j];
    }
    // The tool's x, y, z are the flange's -z, y, x.
    eerot[3 * i] = -flange[2];
    eerot[3 * i + 1] = flange[1];
    eerot[3 * i + 2] = flange[0];
    eetrans[i] = kForearmM * f[i][0] + kElbowOffsetM * f[i][2] + kFlangeM * flange[0];
  }
  // Axis 2 and the upper arm, in the vertical plane that joint 1 turns.
  const double reach = kShoulderOffsetM + kUpperArmM * q2.sine;
  eetrans[0] += reach * f[1][1];
  eetrans[1] -= reach * f[0][1];
  eetrans[2] += kShoulderHeightM + kUpperArmM * q2.cosine;
}

int GetNumFreeParameters() { return 0; }
int* GetFreeParameters() { return nullptr; }
int GetNumJoints() { return 6; }
int GetIkRealSize() { return sizeof(IkReal); }
const char* GetIkFastVersion() { return "0x1000004a"; }
int GetIkType() { return 0x67000001; }
const char* GetKinematicsHash() { return "qal-reference-arm-1"; }

}  // namespace ikfast
