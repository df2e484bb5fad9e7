#include "general_arm.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace qal {

namespace {

using closed_form::Chain;
using closed_form::Complex;
using closed_form::ComplexJoints;
using closed_form::Joints;
using closed_form::PathEnd;
using closed_form::SinCos;
using closed_form::SolvedPose;
using closed_form::Vector;

// Knuth's linear congruential generator (MMIX): the same numbers everywhere.
class Random {
 public:
  double operator()(double low, double high) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return low + (high - low) * (static_cast<double>(state_ >> 11) * 0x1p-53);
  }

 private:
  std::uint64_t state_ = 1;
};

Joints RandomJoints(Random& random) {
  Joints joints;
  for (double& joint : joints) joint = random(-closed_form::kPi, closed_form::kPi);
  return joints;
}

// The least pivot of a matrix, elimination going from the largest element to the next.
double LeastPivot(double (&m)[6][6]) {
  double pivot = 0;
  for (int k = 0; k < 6; ++k) {
    int row = k;
    int column = k;
    for (int i = k; i < 6; ++i) {
      for (int j = k; j < 6; ++j) {
        if (std::fabs(m[i][j]) <= std::fabs(m[row][column])) continue;
        row = i;
        column = j;
      }
    }
    std::swap(m[k], m[row]);
    for (double(&r)[6] : m) std::swap(r[k], r[column]);
    pivot = std::fabs(m[k][k]);
    if (pivot == 0) return 0;
    for (int i = k + 1; i < 6; ++i) {
      const double factor = m[i][k] / m[k][k];
      for (int j = k; j < 6; ++j) m[i][j] -= factor * m[k][j];
    }
  }
  return pivot;
}

struct JointsAndPivot {
  Joints joints;
  double pivot;
};

// Of 20 random joint sets the one furthest from singular.
JointsAndPivot LeastSingular(const Chain& chain, Random& random) {
  JointsAndPivot best = {{}, -1};
  for (int n = 0; n < 20; ++n) {
    const Joints joints = RandomJoints(random);
    SinCos<double> sincos[6];
    ChainSinCos(chain, joints.data(), sincos);
    const auto pose = PoseOf(chain, sincos);
    double length = 0;
    for (int j = 0; j < 5; ++j) {
      const Vector<double>& offset = chain.links[j].offset;
      length += std::sqrt(Dot(offset, offset));
    }
    if (length == 0) return {joints, 0};
    double jacobian[6][6];
    for (int j = 0; j < 6; ++j) {
      const Vector<double> moved = Cross(pose.point[j], pose.axis[j]);
      for (int i = 0; i < 3; ++i) {
        jacobian[i][j] = moved[i] / length;
        jacobian[3 + i][j] = pose.axis[j][i];
      }
    }
    const double pivot = LeastPivot(jacobian);
    if (pivot > best.pivot) best = {joints, pivot};
  }
  return best;
}

void AddNew(SolvedPose& solved, const ComplexJoints& joints) {
  // Far out they are known to fewer digits only.
  constexpr double kTolerance = 1e-3;
  if (solved.count == closed_form::kMostSolutions) return;
  for (int i = 0; i < solved.count; ++i) {
    if (AreNear(solved.solutions[i], joints, kTolerance)) return;
  }
  solved.solutions[solved.count++] = joints;
}

// The pose of real joints, with them as its only solution.
SolvedPose PoseOfJoints(const Chain& chain, const Joints& joints) {
  const closed_form::Frame tool = Forward(chain, joints.data());
  SolvedPose solved = {closed_form::ToQuaternionPose(WithinChain(chain, tool)), 1, {}};
  SinCos<double> sincos[6];
  ChainSinCos(chain, joints.data(), sincos);
  for (int j = 0; j < 6; ++j) {
    solved.solutions[0].joint[j] = {{sincos[j].sine, 0}, {sincos[j].cosine, 0}};
  }
  return solved;
}

// Adds what the solutions of one pose lead to at the other, and the conjugates.
void Carry(const Chain& chain, const SolvedPose& from, SolvedPose& to, Random& random) {
  constexpr double kCare = 0.1;
  const double re = random(0.4, 0.9);
  const Complex<double> weight = {re, random(0.5, 1)};
  PathEnd ends[closed_form::kMostSolutions];
  closed_form::PathTracker tracker(chain, {from.pose, to.pose, weight}, kCare);
  tracker.Track(from.solutions, from.count, ends);
  for (int i = 0; i < from.count; ++i) {
    if (!ends[i].reached) continue;
    AddNew(to, ends[i].joints);
    AddNew(to, Conjugate(ends[i].joints));
  }
}

}  // namespace

bool IsSingularEverywhere(const Chain& chain) {
  Random random;
  return !(LeastSingular(chain, random).pivot >= 1e-3);
}

closed_form::GeneralArm MakeGeneralArm(const Chain& chain) {
  constexpr int kFruitless = 20;
  Random random;
  closed_form::GeneralArm arm = {chain, PoseOfJoints(chain, LeastSingular(chain, random).joints)};
  SolvedPose& start = arm.start;
  for (int fruitless = 0; fruitless < kFruitless && start.count < closed_form::kMostSolutions;) {
    const int known = start.count;
    SolvedPose there = PoseOfJoints(chain, RandomJoints(random));
    Carry(chain, start, there, random);
    Carry(chain, there, start, random);
    fruitless = start.count > known ? 0 : fruitless + 1;
  }
  return arm;
}

}  // namespace qal
