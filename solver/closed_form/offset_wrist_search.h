#ifndef QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_SEARCH_H_
#define QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_SEARCH_H_

#include "offset_wrist_nodes.h"

namespace qal::closed_form {

/// Goes along a way and hands on what may be a solution. Between two nodes the excess is taken for
/// the cubic with its values and slopes, where the angles change little enough for that; so two
/// roots that are next to each other show in the cubic's extremum.
/// @tparam Found called with a candidate and how far its angles may be off [rad]; returns whether
///               there was a solution that near
template <class Found>
class WaySearch {
 public:
  WaySearch(const OffsetWristArm& arm, const WristCircle& circle, const Way& way, Found& found)
      : arm_(arm), circle_(circle), way_(way), found_(found) {
    const Body& body = arm.body;
    size_ = 2 * (body.upper_arm + body.forearm) * (body.forearm + circle.Radius());
  }

  void Run() {
    // Too short to be seen from within.
    constexpr double kShortest = 1e-6;
    Node nodes[kNodes + 1];
    Node rear[kNodes + 1];
    if (way_.round) {
      for (int k = 0; k < kNodes; ++k) {
        const Nodes both = NodesAt(arm_, circle_, way_, k * kStep * kOne, kSides);
        nodes[k] = both[0];
        rear[k] = both[1];
      }
      GoAlong(nodes, 0);
      GoAlong(rear, 1);
    } else if (way_.width < kShortest) {
      const Node node = At(0);
      for (int sign = 0; sign < 2; ++sign) (void)found_(node.With(sign), kAnywhere);
    } else {
      for (int k = 0; k < kNodes / 2; ++k) {
        const double at = (k + 0.5) * kStep;
        const Nodes both = NodesAt(arm_, circle_, way_, Lanes{at, 2 * kPi - at}, kSides);
        nodes[k] = both[0];
        nodes[kNodes - 1 - k] = both[1];
      }
      GoAlong(nodes, 0);
    }
  }

  /// Hands on where the excess is smallest.
  void TakeSmallest() {
    Nodes nodes[kNodes];
    for (int k = 0; k < kNodes; ++k) {
      nodes[k] = NodesAt(arm_, circle_, way_, k * kStep * kOne, kSides);
    }
    for (int side = 0; side < 2; ++side) {
      for (int sign = 0; sign < 2; ++sign) {
        const auto excess = [&](int k) {
          return std::fabs(nodes[(k + kNodes) % kNodes][side].Excess(sign).value);
        };
        for (int k = 0; k < kNodes; ++k) {
          if (excess(k) > size_ / 10 || excess(k) > excess(k - 1) || excess(k) > excess(k + 1)) {
            continue;
          }
          (void)found_(nodes[k][side].With(sign), kAnywhere);
        }
      }
    }
  }

 private:
  static constexpr int kNodes = 48;
  static constexpr double kStep = 2 * kPi / kNodes;
  static constexpr Lanes kSides = {1, -1};
  static constexpr int kMostHalvings = 14;
  // Together, so that a pose with solutions everywhere ends as well.
  static constexpr int kMostCuts = 600;
  // Angles change by less between nodes where the excess is a cubic [rad]: then it is one within
  // 1 / kMargin of the size times the fourth power of that.
  static constexpr double kMostTurn = 1;
  static constexpr double kMargin = 12;
  // What of the size rounding leaves of an excess; what it may leave where the angles change fast.
  static constexpr double kRounding = 1e-14;
  static constexpr double kMostRounding = 1e-12;
  // How far off candidates are that rest on more than a root of the excess [rad].
  static constexpr double kNearby = 0.1;
  static constexpr double kAnywhere = 1;

  Node At(double at) const {
    return NodesAt(arm_, circle_, way_, at * kOne, side_ == 0 ? kOne : -kOne)[0];
  }

  void GoAlong(Node (&nodes)[kNodes + 1], int side) {
    nodes[kNodes] = nodes[0];
    nodes[kNodes].at += 2 * kPi;
    side_ = side;
    for (int sign = 0; sign < 2; ++sign) {
      // Of solutions everywhere the first is taken.
      bool is_zero = false;
      for (int k = 0; k < kNodes; ++k) {
        const bool was_zero = is_zero;
        is_zero = std::fabs(nodes[k].Excess(sign).value) <= kRounding * size_;
        if (is_zero && !was_zero) (void)found_(nodes[k].With(sign), kNearby);
      }
    }
    for (int k = 0; k < kNodes; ++k) Examine(nodes[k], nodes[k + 1], 0);
  }

  static double Turn(const Node& a, const Node& b) {
    return (b.at - a.at) * (a.rate < b.rate ? b.rate : a.rate);
  }

  static bool Near(const SinCos<double>& a, const SinCos<double>& b, double cosine) {
    return a.sine * b.sine + a.cosine * b.cosine >= cosine;
  }

  // NOLINTNEXTLINE(misc-no-recursion): no deeper than kMostHalvings
  void Examine(const Node& a, const Node& b, int halvings) {
    constexpr double kCosine = 0.9;
    const bool smooth = Turn(a, b) <= kMostTurn &&
                        Near(a.candidate.angle1, b.candidate.angle1, kCosine) &&
                        Near(a.candidate.pitch, b.candidate.pitch, kCosine);
    if (smooth) {
      for (int sign = 0; sign < 2; ++sign) Isolate(sign, a, b, halvings);
    } else if (halvings < kMostHalvings && cuts_ < kMostCuts) {
      ++cuts_;
      const Node middle = At((a.at + b.at) / 2);
      Examine(a, middle, halvings + 1);
      Examine(middle, b, halvings + 1);
    } else {
      Leap(a, b);
    }
  }

  // Between nodes that angle 1 or the pitch leap between, and all else stays the same. The pitch
  // does so with axis 5 parallel to axis 3: then any pitch will do that the elbow allows.
  void Leap(const Node& a, const Node& b) {
    constexpr double kSameCosine = 0.999;
    const Body& body = arm_.body;
    const Candidate& from = a.candidate;
    const bool leaps1 = !Near(from.angle1, b.candidate.angle1, kSameCosine);
    const Vector<double> centre = SeenFrom(from.angle1, circle_.Centre(from.angle6));
    const double x = (leaps1 ? 0 : centre[0]) - body.shoulder;
    const double z = centre[2];
    const double length2 = x * x + z * z;
    const double length = std::sqrt(length2);
    const double links2 = body.forearm * body.forearm - body.upper_arm * body.upper_arm;
    // Law of cosines, between the forearm and the line from axis 2 to the wrist's centre.
    SinCos<double> ways[2];
    const double cosine = (length2 + links2) / (2 * body.forearm * length);
    if (!BothWays({x / length, z / length}, cosine, ways)) return;
    for (const SinCos<double>& pitch : ways) {
      if (leaps1) {
        LeapAngle1(from, pitch);
      } else {
        (void)found_({from.angle1, pitch, from.angle6}, kAnywhere);
      }
    }
  }

  // Angle 1 leaps with the wrist's centre on axis 1: then it has to take axis 5 to where it is at
  // right angles to axis 4.
  void LeapAngle1(const Candidate& from, const SinCos<double>& pitch) {
    const SinCos<double> axis4 = pitch * arm_.lean;
    const Vector<double> axis5 = circle_.Axis5(from.angle6);
    const double level = std::sqrt(axis5[0] * axis5[0] + axis5[1] * axis5[1]);
    const double length = axis4.cosine * level;
    if (length * length <= kNothing2) {
      (void)found_({from.angle1, pitch, from.angle6}, kAnywhere);
      return;
    }
    SinCos<double> ways[2];
    const double cosine = axis4.sine * axis5[2] / length;
    if (!BothWays({axis5[1] / level, axis5[0] / level}, cosine, ways)) return;
    for (const SinCos<double>& angle1 : ways) {
      (void)found_({angle1, pitch, from.angle6}, kAnywhere);
    }
  }

  // Both angles that differ from `middle` by one of this cosine; false when that is none, nor near.
  static bool BothWays(const SinCos<double>& middle, double cosine, SinCos<double> (&ways)[2]) {
    if (!(std::fabs(cosine) < 1.01)) return false;
    const double within = cosine > 1 ? 1 : cosine < -1 ? -1 : cosine;
    const double sine = std::sqrt(1 - within * within);
    ways[0] = middle * SinCos<double>{sine, within};
    ways[1] = middle * SinCos<double>{-sine, within};
    return true;
  }

  // Takes the roots between two nodes one by one: cuts at the extrema that are near zero or beyond
  // it, until there is no root, or one.
  // NOLINTNEXTLINE(misc-no-recursion): no deeper than twice kMostHalvings
  void Isolate(int sign, const Node& a, const Node& b, int halvings) {
    const double width = b.at - a.at;
    const Jet at_a = a.Excess(sign);
    const Jet at_b = b.Excess(sign);
    const Cubic cubic(at_a.value, width * at_a.slope, at_b.value, width * at_b.slope);
    const double turn2 = Turn(a, b) * Turn(a, b);
    const double margin = size_ * (turn2 * turn2 / kMargin + kMostRounding);
    double extrema[2];
    const int count = cubic.Extrema(extrema);
    double cut = -1;
    int changes = 0;
    bool negative = at_a.value < 0;
    for (int i = 0; i < count; ++i) {
      const double extreme = cubic(extrema[i]);
      if (std::fabs(extreme) <= margin) cut = extrema[i];
      changes += (extreme < 0) != negative;
      negative = extreme < 0;
    }
    changes += (at_b.value < 0) != negative;
    if (changes > 1 && cut < 0) cut = extrema[0];
    if (cut < 0 || halvings > 2 * kMostHalvings || cuts_ >= kMostCuts) {
      if ((at_a.value < 0) != (at_b.value < 0)) {
        TakeRoot(sign, a, b);
      } else if (cut >= 0) {
        (void)found_(At(a.at + cut * width).With(sign), kNearby);
      }
      return;
    }
    ++cuts_;
    cut = cut < 0.1 ? 0.1 : cut > 0.9 ? 0.9 : cut;
    const Node middle = At(a.at + cut * width);
    if (std::fabs(middle.Excess(sign).value) <= kRounding * size_) {
      (void)found_(middle.With(sign), kNearby);
      return;
    }
    Isolate(sign, a, middle, halvings + 1);
    Isolate(sign, middle, b, halvings + 1);
  }

  void TakeRoot(int sign, const Node& a, const Node& b) {
    const double width = b.at - a.at;
    const auto excess = [&](double at) { return At(at).Excess(sign); };
    // A root that isn't near enough may lead to its neighbour.
    for (const double tolerance : {1e-3, 1e-9, 1e-15}) {
      const double root = RootBetween(excess, a.at, a.Excess(sign).value, b.at,
                                      b.Excess(sign).value, tolerance * width);
      if (found_(At(root).With(sign), 10 * tolerance * Turn(a, b) + 1e-9)) return;
    }
  }

  const OffsetWristArm& arm_;
  const WristCircle& circle_;
  const Way& way_;
  Found& found_;
  double size_;  // of an excess
  int side_ = 0;
  int cuts_ = 0;
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_OFFSET_WRIST_SEARCH_H_
