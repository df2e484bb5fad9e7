#ifndef QAL_SOLVER_CLOSED_FORM_GENERAL_H_
#define QAL_SOLVER_CLOSED_FORM_GENERAL_H_

#include "newton.h"
#include "path_tracker.h"
#include "solutions.h"

namespace qal::closed_form {

/// A pose of six revolute joints has at most as many solutions, complex ones counted (Primrose,
/// "On the input-output equation of the general 7R-mechanism", Mechanism and Machine Theory 21,
/// 1986), unless there are infinitely many.
constexpr int kMostSolutions = 16;

/// A pose with all its solutions, complex ones as well.
struct SolvedPose {
  QuaternionPose pose;  ///< of the frame that joint 6 turns, seen from joint 1's at zero
  int count;
  ComplexJoints solutions[kMostSolutions];
};

/// Any six revolute joints in a row that aren't singular everywhere.
///
/// A target's solutions are those of `start`, followed along a path from its pose to the target.
/// A path through complex poses meets no pose where two solutions become one, and so leads to all
/// of them (coefficient-parameter continuation: Sommese and Wampler, "The Numerical Solution of
/// Systems of Polynomials Arising in Engineering and Science", 2005, chapter 7). Whatever families
/// the arm is near to, they need no cases.
struct GeneralArm {
  Chain chain;
  SolvedPose start;
};

/// The tool frame of six joints [rad].
inline Frame Forward(const GeneralArm& arm, const double* joints) {
  return Forward(arm.chain, joints);
}

/// Whether all sines and cosines agree within a tolerance, which grows with them.
inline bool AreNear(const ComplexJoints& a, const ComplexJoints& b, double tolerance) {
  const auto near = [&](const Complex<double>& u, const Complex<double>& v) {
    const double size = std::fabs(u.re) + std::fabs(u.im);
    return std::fabs(u.re - v.re) + std::fabs(u.im - v.im) <= tolerance * (1 + size);
  };
  for (int j = 0; j < 6; ++j) {
    if (!near(a.joint[j].sine, b.joint[j].sine)) return false;
    if (!near(a.joint[j].cosine, b.joint[j].cosine)) return false;
  }
  return true;
}

inline ComplexJoints Conjugate(const ComplexJoints& joints) {
  ComplexJoints conjugate;
  for (int j = 0; j < 6; ++j) {
    conjugate.joint[j] = {Conjugate(joints.joint[j].sine), Conjugate(joints.joint[j].cosine)};
  }
  return conjugate;
}

/// Whether ends can be all solutions of a real pose: each reached, none twice, with each its
/// conjugate. A path that was mistaken for another leaves two ends alike.
inline bool AreComplete(const PathEnd* ends, int count) {
  constexpr double kTolerance = 1e-6;
  int far = 0;
  for (int i = 0; i < count; ++i) {
    if (!ends[i].reached) return false;
    // Rounding blurs them; but they come in pairs as well.
    far += ends[i].far ? 1 : 0;
    if (ends[i].far) continue;
    const ComplexJoints conjugate = Conjugate(ends[i].joints);
    bool paired = false;
    for (int k = 0; k < count; ++k) {
      if (k != i && AreNear(ends[i].joints, ends[k].joints, kTolerance)) return false;
      paired = paired || AreNear(conjugate, ends[k].joints, kTolerance);
    }
    if (!paired) return false;
  }
  return far % 2 == 0;
}

/// Whether coordinates [m] and matrix elements agree within a tolerance; NaN doesn't.
inline bool AreWithin(double tolerance, const Frame& a, const Frame& b) {
  for (int i = 0; i < 3; ++i) {
    if (!(std::fabs(a.position[i] - b.position[i]) <= tolerance)) return false;
    for (int k = 0; k < 3; ++k) {
      if (!(std::fabs(a.rotation[i][k] - b.rotation[i][k]) <= tolerance)) return false;
    }
  }
  return true;
}

/// The frame of a real pose.
inline Frame ToFrame(const PathPose& pose) {
  Frame frame;
  for (int i = 0; i < 3; ++i) {
    frame.position.element[i] = pose.position[i].re[0];
    for (int k = 0; k < 3; ++k) frame.rotation.row[i].element[k] = pose.rotation[i][k].re[0];
  }
  return frame;
}

/// Adds the end of a path if it is real, takes the target and isn't known yet.
/// @param target as joint 6 shall have it, seen from joint 1's frame at zero
inline void AddReal(const Chain& chain, const Frame& target, const PathEnd& end,
                    Solutions& solutions) {
  constexpr double kMostImaginary = 1e-4;  // at a double solution: the root of rounding, and more
  constexpr double kMostDifference = 5e-11;
  constexpr double kTwiceRad = 1e-6;
  const auto imaginary = [&](size_t j) {
    return std::fabs(end.joints.joint[j].sine.im) + std::fabs(end.joints.joint[j].cosine.im);
  };
  Joints joints;
  for (size_t j = 0; j < 6; j += 2) {
    if (!(std::max(imaginary(j), imaginary(j + 1)) < kMostImaginary)) return;
    const auto& [sine, cosine] = end.joints.joint[j];
    const auto& [next_sine, next_cosine] = end.joints.joint[j + 1];
    const Lanes angles = Atan2(SinCos<Lanes>{{sine.re, next_sine.re}, {cosine.re, next_cosine.re}});
    const Lanes both =
        WrapAngle(WrapAngle(angles - Lanes{chain.links[j].zero, chain.links[j + 1].zero}));
    joints[j] = both[0];
    joints[j + 1] = both[1];
  }
  const Frame reached = WithinChain(chain, Forward(chain, joints.data()));
  if (!AreWithin(kMostDifference, reached, target)) return;
  // Of infinitely many, at a singularity, those are kept that there is room for.
  if (!solutions.Has(joints, kTwiceRad)) solutions.Add(joints);
}

/// What Newton steps from the real part of a path's end come to. At a singularity joints that don't
/// help are left where they are.
inline PathEnd RealEnd(const Chain& chain, const PathPose& target, const PathEnd& end) {
  constexpr int kMostSteps = 12;
  constexpr double kLeastNorm = 1e-12;  // of lengths [m] and directions; 1e-6, squared
  SinCos<ComplexLanes> joints[6];
  for (int j = 0; j < 6; ++j) {
    const auto& [sine, cosine] = end.joints.joint[j];
    const double per_length = 1 / std::sqrt(sine.re * sine.re + cosine.re * cosine.re);
    joints[j] = {{per_length * sine.re * kOne, kZero}, {per_length * cosine.re * kOne, kZero}};
  }
  for (int n = 0; n < kMostSteps; ++n) {
    const PathStep at = StepTo(chain, joints, target, kLeastNorm);
    for (int j = 0; j < 6; ++j) joints[j] = TurnedBy(joints[j], at.step[j]);
  }
  PathEnd real = {{}, true, false};
  for (int j = 0; j < 6; ++j) {
    real.joints.joint[j] = {{joints[j].sine.re[0], 0}, {joints[j].cosine.re[0], 0}};
  }
  return real;
}

/// Whether a position [m, from joint 1] is further away than the links reach.
inline bool IsBeyondReach(const Chain& chain, const Vector<double>& position) {
  constexpr double kReachRounding = 1e-9;
  double reach = 0;
  for (int j = 0; j < 5; ++j) {
    reach += std::sqrt(Dot(chain.links[j].offset, chain.links[j].offset));
  }
  // So that what is not finite is beyond.
  return !(std::sqrt(Dot(position, position)) <= reach * (1 + kReachRounding));
}

/// All joints for the tool frame `target`, in no order that means anything. None where the arm
/// doesn't reach.
inline Solutions Solve(const GeneralArm& arm, const Frame& target) {
  // When the ends can't be all, once more on other paths with smaller steps.
  struct Attempt {
    Complex<double> weight;
    double care;
  };
  constexpr Attempt kAttempts[] = {{{0.8, 0.6}, 1}, {{1, 0.4}, 0.03}, {{0.5, 0.8}, 0.03}};
  Solutions solutions;
  const QuaternionPose pose = ToQuaternionPose(WithinChain(arm.chain, target));
  if (IsBeyondReach(arm.chain, pose.position)) return solutions;
  // What a matrix is off a rotation the quaternion isn't.
  const PathPose last = PoseAt({arm.start.pose, pose, {1, 0}}, kOne);
  const Frame goal = ToFrame(last);
  PathEnd ends[kMostSolutions];
  for (const Attempt& attempt : kAttempts) {
    PathTracker tracker(arm.chain, {arm.start.pose, pose, attempt.weight}, attempt.care);
    tracker.Track(arm.start.solutions, arm.start.count, ends);
    for (int i = 0; i < arm.start.count; ++i) {
      if (ends[i].reached) AddReal(arm.chain, goal, ends[i], solutions);
    }
    if (AreComplete(ends, arm.start.count)) return solutions;
  }
  // At a singularity the ends may be complex ones of infinitely many, or not quite reached.
  for (int i = 0; i < arm.start.count; ++i) {
    if (!ends[i].far) AddReal(arm.chain, goal, RealEnd(arm.chain, last, ends[i]), solutions);
  }
  return solutions;
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_GENERAL_H_
