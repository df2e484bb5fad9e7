#ifndef QAL_SOLVER_CLOSED_FORM_POLISHED_H_
#define QAL_SOLVER_CLOSED_FORM_POLISHED_H_

#include "newton.h"
#include "solve.h"

namespace qal::closed_form {

/// An arm that is near a family: the family's nearest member, which knows the ways to reach a
/// target, and the arm as it is described, on which each way is made exact.
template <class Member>
struct PolishedArm {
  Member member;  ///< its body has a slack
  Chain chain;
  /// A few times what member and chain are apart: lengths [m] and angles.
  double apart_m;
  SinCos<double> apart;
};

/// What is exact, in metres and as a rotation: a thousand times rounding.
constexpr double kPolished = 1e-13;
/// Solutions closer than this [rad] are the same: at the rim of the workspace that is where 1e-10
/// of its size decides.
constexpr double kSameRad = 1e-5;

/// Newton's method from two joint sets.
struct PolishedPair {
  NewtonPoint at;
  Mask reached;   ///< exact
  Mask doubtful;  ///< not reached, or not by steps that shrink as they do away from singularities
};

/// @param most steps
template <const Blocks& blocks>
PolishedPair PolishPair(const Chain& chain, const Frame& within, const double* a, const double* b,
                        int most) {
  // Where each step is below this part of the one before, and the first below as many radians,
  // there is one solution near, and it is on this side of the folds.
  constexpr double kShrinking = 0.1;
  // A longer step says which way at the best.
  constexpr double kLongestRad = 0.2;
  PolishedPair pair;
  PutJoints(chain, within, a, b, pair.at);
  pair.doubtful = Mask{0, 0};
  Lanes before = kOne;
  for (int n = 0;; ++n) {
    pair.reached = pair.at.off <= kPolished;
    if (!Any(~pair.reached) || n == most) break;
    Lanes step[6];
    StepFor<blocks>(pair.at, pair.at.residual, step);
    const Lanes length = LargestOf(step);
    // Written so that NaN is doubtful, and moves nothing.
    pair.doubtful |= ~pair.reached & ~(length < kShrinking * before + 1e-9);
    before = length;
    const Lanes scale = length > kLongestRad ? kLongestRad / length : kOne;
    const Mask moves = ~pair.reached & (length < 1e100);
    for (int j = 0; j < 6; ++j) step[j] = Where(moves, scale * step[j]);
    MoveJoints(chain, within, step, pair.at);
  }
  pair.doubtful |= ~pair.reached;
  return pair;
}

/// The largest difference of two joint sets [rad].
inline double JointDistance(const double* a, const double* b) {
  double largest = 0;
  for (int j = 0; j < 6; ++j) {
    const double around = AngleDistance(a[j], b[j]);
    largest = around > largest ? around : largest;
  }
  return largest;
}

/// Where solutions on the other side of a fold would be. Near it, along the direction that hardly
/// moves the tip, the residual is s * (s - L): at a solution, s = 0, and at its twin, s = L. The
/// Newton step a little way off tells L. Looked for on both sides.
/// @param solution six joints
template <const Blocks& blocks>
void AcrossFold(const Chain& chain, const Frame& within, const Joints& solution,
                Joints (&twins)[2]) {
  constexpr double kAsideRad = 0.02;
  constexpr double kFurthestRad = 1;
  NewtonPoint at;
  PutJoints(chain, within, solution.data(), solution.data(), at);
  // Any small motion of the tip takes the joints along that direction most of all.
  const Lanes any[6] = {0.3 * kOne, -0.5 * kOne, 0.4 * kOne, 0.6 * kOne, -0.35 * kOne, 0.45 * kOne};
  Lanes direction[6];
  StepFor<blocks>(at, any, direction);
  Lanes length2 = kZero;
  for (const Lanes part : direction) length2 += part * part;
  const Lanes per_length = 1 / Sqrt(length2);
  const Lanes aside = kAsideRad * Lanes{1, -1};
  Lanes step[6];
  for (int j = 0; j < 6; ++j) {
    direction[j] *= per_length;
    step[j] = aside * direction[j];
  }
  MoveJoints(chain, within, step, at);
  StepFor<blocks>(at, at.residual, step);
  Lanes along = kZero;
  for (int j = 0; j < 6; ++j) along += direction[j] * step[j];
  const Lanes twin = Clamped(aside * (aside + 2 * along) / (aside + along), kFurthestRad * kOne);
  for (size_t j = 0; j < 6; ++j) {
    const Lanes joint = solution[j] + twin * direction[j];
    for (int lane = 0; lane < 2; ++lane) twins[lane][j] = joint[lane];
  }
}

/// How the equations of Newton steps fall into blocks, by family.
template <class Member>
inline constexpr Blocks kBlocksOf = kWristBlocks;
struct ParallelAxesArm;
template <>
inline constexpr Blocks kBlocksOf<ParallelAxesArm> = kPlaneBlocks;

/// One target's solutions.
template <class Member>
class PolishedSearch {
 public:
  PolishedSearch(const PolishedArm<Member>& arm, const Frame& target)
      : arm_(arm), target_(target), within_(WithinChain(arm.chain, target)) {}

  Solutions operator()() {
    seeds_ = SeedsOf(arm_.member, target_);
    const Joints* const seeds = seeds_.begin();
    const size_t count = seeds_.Count();
    bool doubtful = false;
    for (size_t i = 0; i < count; i += 2) {
      const size_t k = i + 1 < count ? i + 1 : i;
      const Mask doubts = Polish(seeds[i], seeds[k], kFewSteps);
      doubtful_[i] = doubts[0] != 0;
      doubtful_[k] = doubts[k - i] != 0;
      doubtful = doubtful || doubtful_[i] || doubtful_[k];
    }
    if (doubtful) SearchAround();
    return found_;
  }

 private:
  static constexpr int kFewSteps = 4;
  static constexpr int kManySteps = 24;

  // Near folds the member may have ways that the arm has not, and the other way round: those of
  // targets nearby are tried as well, and what is across a fold from each solution.
  void SearchAround() {
    PolishSeedsOf(target_);
    for (int i = 0; i < 6; ++i) {
      Frame nearby = target_;
      nearby.position.element[i % 3] += i < 3 ? arm_.apart_m : -arm_.apart_m;
      PolishSeedsOf(nearby);
      const SinCos<double> turn = i < 3 ? arm_.apart : Inverse(arm_.apart);
      const Matrix<double>& r = target_.rotation;
      PolishSeedsOf({i % 3 == 0   ? Rotated<0>(turn, r)
                     : i % 3 == 1 ? Rotated<1>(turn, r)
                                  : Rotated<2>(turn, r),
                     target_.position});
    }
    for (size_t i = 0; i < found_.Count(); ++i) {
      Joints twins[2];
      AcrossFold<kBlocksOf<Member>>(arm_.chain, within_, found_.begin()[i], twins);
      (void)Polish(twins[0], twins[1], kManySteps);
    }
  }

  // Leaves out what is nearest to a first seed without a doubt.
  void PolishSeedsOf(const Frame& target) {
    const Solutions seeds = SeedsOf(arm_.member, target);
    const Joints* waiting = nullptr;
    for (const Joints& seed : seeds) {
      if (!Worthwhile(seed)) continue;
      if (waiting != nullptr) {
        (void)Polish(*waiting, seed, kManySteps);
        waiting = nullptr;
      } else {
        waiting = &seed;
      }
    }
    if (waiting != nullptr) (void)Polish(*waiting, *waiting, kManySteps);
  }

  bool Worthwhile(const Joints& seed) const {
    constexpr double kNearRad = 1;
    double nearest = kNearRad;
    bool worthwhile = true;
    for (size_t i = 0; i < seeds_.Count(); ++i) {
      const double distance = JointDistance(seed.data(), seeds_.begin()[i].data());
      if (!(distance < nearest)) continue;
      nearest = distance;
      worthwhile = doubtful_[i];
    }
    return worthwhile;
  }

  // Adds what is reached and new; returns what is doubtful.
  Mask Polish(const Joints& a, const Joints& b, int most) {
    const PolishedPair pair =
        PolishPair<kBlocksOf<Member>>(arm_.chain, within_, a.data(), b.data(), most);
    Lanes joints[6];
    for (int j = 0; j < 6; ++j) joints[j] = WrapAngle(WrapAngle(pair.at.joints[j]));
    for (int lane = 0; lane < 2; ++lane) {
      if (pair.reached[lane] == 0) continue;
      Joints solution;
      for (size_t j = 0; j < 6; ++j) solution[j] = joints[j][lane];
      if (!found_.Has(solution, kSameRad)) found_.Add(solution);
    }
    return pair.doubtful;
  }

  const PolishedArm<Member>& arm_;
  const Frame& target_;
  const Frame within_;
  Solutions seeds_;
  bool doubtful_[Solutions::kMost] = {};
  Solutions found_;
};

/// All joints for the tool frame `target`, in (-pi, pi].
template <class Member>
Solutions Solve(const PolishedArm<Member>& arm, const Frame& target) {
  const Vector<double>& p = target.position;
  if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return {};
  return PolishedSearch<Member>(arm, target)();
}

/// The tool frame of six joints [rad].
template <class Member>
Frame Forward(const PolishedArm<Member>& arm, const double* joints) {
  return Forward(arm.chain, joints);
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_POLISHED_H_
