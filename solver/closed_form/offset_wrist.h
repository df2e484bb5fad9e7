#ifndef QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_H_
#define QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_H_

#include "offset_wrist_search.h"
#include "solve.h"

namespace qal::closed_form {

/// What a candidate misses of a target, and how that changes with its three angles. It is smooth
/// wherever the arm is, also with the wrist's centre on axis 1 and with axis 5 parallel to axis 3.
/// Lengths are by that of the outstretched arm.
struct Miss {
  Vector<double> elbow;  ///< from axis 2 to axis 3; x and z, in lengths of the upper arm
  /// The wrist's centre from where `lateral` has it; what the upper arm would have to be longer;
  /// the sine by which axes 4 and 5 are off a right angle.
  Vector<double> miss;
  Vector<double> by_angle1, by_pitch, by_angle6;

  Miss(const OffsetWristArm& arm, const WristCircle& circle, const Candidate& at) {
    const Body& body = arm.body;
    const Vector<double> w = SeenFrom(at.angle1, circle.Centre(at.angle6));
    const Vector<double> v = SeenFrom(at.angle1, circle.Velocity(at.angle6));
    const Vector<double> axis5 = SeenFrom(at.angle1, circle.Axis5(at.angle6));
    const Vector<double> across = SeenFrom(at.angle1, circle.Across(at.angle6));
    const SinCos<double> axis4 = at.pitch * arm.lean;
    const double per_size = 1 / (body.upper_arm + body.forearm);
    const double per_length = 1 / body.upper_arm;
    const double x = (w[0] - body.shoulder - body.forearm * at.pitch.sine) * per_length;
    const double z = (w[2] - body.forearm * at.pitch.cosine) * per_length;
    elbow = {{x, 0, z}};
    miss = {{(w[1] - body.lateral) * per_size, (x * x + z * z - 1) / 2 * body.upper_arm * per_size,
             axis5[0] * axis4.cosine - axis5[2] * axis4.sine}};
    by_angle1 = {{-w[0] * per_size, x * w[1] * per_size, axis5[1] * axis4.cosine}};
    by_pitch = {{0, (z * at.pitch.sine - x * at.pitch.cosine) * body.forearm * per_size,
                 -axis5[0] * axis4.sine - axis5[2] * axis4.cosine}};
    by_angle6 = {{v[1] * per_size, (x * v[0] + z * v[2]) * per_size,
                  across[2] * axis4.sine - across[0] * axis4.cosine}};
  }

  double Square() const { return Dot(miss, miss); }

  /// By how much the three angles have to change [rad]: Newton's step, damped as Levenberg and
  /// Marquardt do, by the square of what is missed; so it ends where the arm is singular, too.
  Vector<double> Step() const {
    const double damping = Square() + 1e-28;
    const Vector<double>& a = by_angle1;
    const Vector<double>& b = by_pitch;
    const Vector<double>& c = by_angle6;
    const Vector<double> row1 = {{Dot(a, a) + damping, Dot(a, b), Dot(a, c)}};
    const Vector<double> row2 = {{row1[1], Dot(b, b) + damping, Dot(b, c)}};
    const Vector<double> row3 = {{row1[2], row2[2], Dot(c, c) + damping}};
    const Vector<double> right = {{Dot(a, miss), Dot(b, miss), Dot(c, miss)}};
    const Vector<double> normal = Cross(row2, row3);
    const double factor = -1 / Dot(row1, normal);
    return {{factor * Dot(right, normal), factor * Dot(row1, Cross(right, row3)),
             factor * Dot(row1, Cross(row2, right))}};
  }
};

/// By how much two candidates' angles differ [rad], while that is little.
inline double Distance(const Candidate& a, const Candidate& b) {
  const auto distance = [](const SinCos<double>& p, const SinCos<double>& q) {
    return std::fabs(p.sine - q.sine) + std::fabs(p.cosine - q.cosine);
  };
  return distance(a.angle1, b.angle1) + distance(a.pitch, b.pitch) + distance(a.angle6, b.angle6);
}

/// Finds the solutions for one target.
class OffsetWristSolver {
 public:
  OffsetWristSolver(const OffsetWristArm& arm, const Frame& target)
      : arm_(arm), circle_(arm, target) {}

  Solutions Run() {
    // Written so that NaN fails. A little more than what can be reached.
    const Body& body = arm_.body;
    const double reach = 1.001 * (std::fabs(body.shoulder) + std::fabs(body.lateral) +
                                  body.upper_arm + body.forearm + circle_.Radius());
    if (!(Dot(circle_.middle, circle_.middle) <= reach * reach)) return {};
    const Ways ways(circle_, body.lateral);
    for (const Way& way : ways) Search(arm_, circle_, way, *this).Run();
    if (solutions_.Count() > 0) return solutions_;
    // Where several singularities come together, roots are lost in rounding: tries whatever is
    // near.
    last_resort_ = true;
    for (const Way& way : ways) {
      Search search(arm_, circle_, way, *this);
      search.Run();
      search.TakeSmallest();
    }
    return solutions_;
  }

 private:
  using Search = WaySearch<OffsetWristSolver>;
  friend Search;

  // Takes the solution that a candidate leads to, unless that is further away than `off` [rad].
  bool operator()(const Candidate& start, double off) {
    // At this the position and each matrix element are within 1e-10 of the target.
    constexpr double kMostMiss = 2e-11;
    // Solutions nearer to each other are one, found twice.
    constexpr double kSame = 1e-7;
    Candidate candidate = start;
    const Miss miss = Polish(candidate);
    if (!(miss.Square() <= kMostMiss * kMostMiss)) return false;
    if (!last_resort_ && Distance(start, candidate) > off) return false;
    for (size_t i = 0; i < solutions_.Count(); ++i) {
      if (Distance(taken_[i], candidate) < kSame) return true;
    }
    if (solutions_.Count() == Solutions::kMost) return true;
    taken_[solutions_.Count()] = candidate;
    Add(candidate, miss.elbow);
    return true;
  }

  Miss Polish(Candidate& candidate) const {
    // What rounding leaves, and what it may leave at a singularity.
    constexpr double kLeast2 = 1e-32;
    constexpr double kLittle2 = 1e-24;
    const int most_steps = last_resort_ ? 100 : 12;
    Miss miss(arm_, circle_, candidate);
    for (int i = 0; i < most_steps && miss.Square() > kLeast2; ++i) {
      const Vector<double> step = miss.Step();
      const SinCos<Lanes> first = SinCosOf(Lanes{step[0], step[1]});
      const SinCos<Lanes> last = SinCosOf(Lanes{step[2], 0});
      const Candidate next = {candidate.angle1 * SinCos<double>{first.sine[0], first.cosine[0]},
                              candidate.pitch * SinCos<double>{first.sine[1], first.cosine[1]},
                              candidate.angle6 * SinCos<double>{last.sine[0], last.cosine[0]}};
      const Miss next_miss(arm_, circle_, next);
      // Written so that a step lost in rounding ends it.
      const bool at_end = miss.Square() <= kLittle2 && !(next_miss.Square() < miss.Square() / 4);
      if (at_end && !(next_miss.Square() < miss.Square())) break;
      candidate = next;
      miss = next_miss;
      if (at_end) break;
    }
    return miss;
  }

  // The other angles follow.
  void Add(const Candidate& candidate, const Vector<double>& elbow) {
    const SinCos<double>& angle1 = candidate.angle1;
    const SinCos<double>& angle6 = candidate.angle6;
    const Vector<double> axis5 = SeenFrom(angle1, circle_.Axis5(angle6));
    const Vector<double> across = SeenFrom(angle1, circle_.Across(angle6));
    const Vector<double> axis6 = SeenFrom(angle1, circle_.flange[0]);
    const SinCos<double> axis4 = candidate.pitch * arm_.lean;
    const Vector<double> along = {{axis4.cosine, 0, -axis4.sine}};
    const SinCos<double> angle2 = {elbow[0], elbow[2]};
    const SinCos<double> angle3 = candidate.pitch * Inverse(angle2);
    const SinCos<double> angle4 = {axis5[0] * axis4.sine + axis5[2] * axis4.cosine, axis5[1]};
    const SinCos<double> angle5 = {Dot(along, across), Dot(along, axis6)};
    const auto both = [](const SinCos<double>& a, const SinCos<double>& b) {
      return Atan2(SinCos<Lanes>{{a.sine, b.sine}, {a.cosine, b.cosine}});
    };
    const Lanes first = both(angle1, angle2);
    const Lanes middle = both(angle3, angle4);
    const Lanes last = both(angle5, angle6);
    solutions_.Add(arm_.body, {first[0], first[1], middle[0], middle[1], last[0], last[1]});
  }

  const OffsetWristArm& arm_;
  const WristCircle circle_;
  bool last_resort_ = false;
  Candidate taken_[Solutions::kMost] = {};
  Solutions solutions_;
};

/// All joints for the tool frame `target`: shoulder front, then rear, each by growing angle 6; but
/// where `lateral` joins the two, from one to the other. At a singularity with solutions everywhere
/// some of them.
inline Solutions Solve(const OffsetWristArm& arm, const Frame& target) {
  return OffsetWristSolver(arm, target).Run();
}

/// The ways to reach `target` for an arm that is only near the family. The body's slack doesn't
/// count: where two solutions come near to being one, the arm may have them though the member has
/// not, so that the two may not differ by more than what makes that rare.
inline Solutions SeedsOf(const OffsetWristArm& arm, const Frame& target) {
  return Solve(arm, target);
}

/// The tool frame of six joints [rad].
inline Frame Forward(const OffsetWristArm& arm, const double* joints) {
  const Body& body = arm.body;
  SinCos<double> sincos[6];
  ModelSinCos(body, joints, sincos);
  const SinCos<double> pitch = sincos[1] * sincos[2];
  const SinCos<double> axis4 = pitch * arm.lean;
  const Matrix<double> wrist = Rotated<1>(
      axis4,
      Rotated<0>(sincos[3],
                 Rotated<1>(sincos[4], Matrix<double>{{{{1, 0, 0}}, {{0, 1, 0}}, {{0, 0, 1}}}})));
  const double x = body.shoulder + body.upper_arm * sincos[1].sine + body.forearm * pitch.sine;
  const double z = body.upper_arm * sincos[1].cosine + body.forearm * pitch.cosine;
  const Vector<double> centre = {{x, body.lateral, z}};
  const Vector<double> offset = {{0, arm.wrist_offset_y, arm.wrist_offset_z}};
  return ToolFrame(body, sincos[0], centre + wrist * offset,
                   wrist * Rotated<0>(sincos[5], body.tool));
}

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_H_
