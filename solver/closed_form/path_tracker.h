#ifndef QAL_SOLVER_CLOSED_FORM_PATH_TRACKER_H_
#define QAL_SOLVER_CLOSED_FORM_PATH_TRACKER_H_

#include <algorithm>

#include "path_step.h"

namespace qal::closed_form {

/// Six joints, complex ones: sines and cosines of the angles with `zero` added.
struct ComplexJoints {
  SinCos<Complex<double>> joint[6];
};

/// Where the joints of one path have come to.
struct PathEnd {
  ComplexJoints joints;
  bool reached;  ///< they take the pose, or are on the way to infinity
  bool far;      ///< far from the real ones: no errors are to be feared that lead there
};

/// Follows joints along a path of poses, two joint sets side by side, each with steps of its own:
/// predicted by the cubic through the last two points and their derivatives, corrected by Newton
/// steps, the next step chosen by the first of these.
class PathTracker {
 public:
  /// @param care factor of the corrections that are tolerated; the steps shrink with its fourth
  /// root
  PathTracker(const Chain& chain, const PosePath& path, double care)
      : chain_(chain), path_(path), care_(care) {}

  /// @param starts `count` joint sets that take the path's first pose
  /// @param ends as many
  void Track(const ComplexJoints* starts, int count, PathEnd* ends) {
    starts_ = starts;
    ends_ = ends;
    count_ = count;
    for (int lane = 0; lane < 2; ++lane) Load(lane);
    while (progress_[0].index < count_ || progress_[1].index < count_) {
      const PathStep at =
          StepTo(chain_, now_, PoseAt(path_, Lanes{progress_[0].t, progress_[1].t}));
      for (int j = 0; j < 6; ++j) {
        now_[j] = TurnedBy(now_[j], at.step[j]);
        way_[j] = way_[j] + at.step[j];
      }
      for (int lane = 0; lane < 2; ++lane) {
        if (progress_[lane].index < count_) Judge(lane, at);
      }
      if (progress_[0].predict || progress_[1].predict) Predict();
    }
  }

 private:
  // Sums over six joints, real and imaginary parts [rad].
  static constexpr double kMostCorrectionRad = 0.7;
  static constexpr double kWantedCorrectionRad = 0.1;
  static constexpr double kLittleRad = 0.02;      // what is left of it is its square
  static constexpr double kConvergedRad = 1e-13;  // rounding
  static constexpr double kReachedRad = 1e-6;     // where rounding is large: far out, or singular
  static constexpr double kFar2 = 1e4;            // sine^2, at 5.3 rad of imaginary part
  static constexpr double kFirstStep = 0.05;
  static constexpr double kLeastStep = 1e-7;
  static constexpr double kNearEnd = 0.999;
  static constexpr int kMostSteps = 1000;   // per path; 40 is usual
  static constexpr int kMostEndSteps = 40;  // halving, from 1e-3 down to rounding

  // How far one of the two has come.
  struct Progress {
    int index;       // of the joint set; `count_` when none is left
    int steps;       // Newton steps on the way
    int end_steps;   // and at the end
    double t;        // where the joints shall be
    double from;     // where they were last, exactly
    double next;     // the step from there
    double before;   // the step that led there; 0 when there was none
    double size;     // the last correction
    double first;    // the first one of this step
    bool corrected;  // it isn't the first one
    bool predict;    // a step is to be made
  };

  void Load(int lane) {
    Progress& l = progress_[lane];
    l = {};
    l.index = next_ < count_ ? next_++ : count_;
    l.next = kFirstStep;
    if (l.index == count_) return;
    const ComplexJoints& start = starts_[l.index];
    for (int j = 0; j < 6; ++j) {
      Put(now_[j].sine, lane, start.joint[j].sine);
      Put(now_[j].cosine, lane, start.joint[j].cosine);
      // What the path before left may be not finite.
      Put(way_[j], lane, {0, 0});
      Put(rate_[j], lane, {0, 0});
    }
  }

  static void Put(ComplexLanes& to, int lane, const Complex<double>& from) {
    to.re[lane] = from.re;
    to.im[lane] = from.im;
  }
  static void Copy(ComplexLanes& to, int lane, const ComplexLanes& from) {
    to.re[lane] = from.re[lane];
    to.im[lane] = from.im[lane];
  }
  static void Copy(SinCos<ComplexLanes>& to, int lane, const SinCos<ComplexLanes>& from) {
    Copy(to.sine, lane, from.sine);
    Copy(to.cosine, lane, from.cosine);
  }

  // What is to be done after a Newton step. What is not finite takes the branch of what is large.
  void Judge(int lane, const PathStep& at) {
    Progress& l = progress_[lane];
    const double size = at.size[lane];
    const double before = l.size;
    l.size = size;
    if (l.end_steps > 0) {
      const bool done = size < kConvergedRad || (size < kReachedRad && size > 0.9 * before);
      if (done || l.end_steps == kMostEndSteps || !(size < 1e3)) return Finish(lane);
      ++l.end_steps;
      return;
    }
    if (++l.steps > kMostSteps) return Finish(lane);
    if (!l.corrected) l.first = size;
    if (!(size < (l.corrected ? 0.3 * before : care_ * kMostCorrectionRad))) {
      return StepBack(lane);
    }
    l.corrected = true;
    if (size < care_ * kLittleRad) Accept(lane, at);
  }

  // From where the joints were last, a smaller step.
  void StepBack(int lane) {
    Progress& l = progress_[lane];
    const double room = care_ * kWantedCorrectionRad / l.size;
    l.next = (l.t - l.from) * std::min(0.5, std::max(0.25, 0.8 * std::sqrt(std::sqrt(room))));
    l.corrected = false;
    l.predict = true;
    if (!(l.next < kLeastStep)) return;
    if (l.from < kNearEnd) return Finish(lane);
    // Beside a singular end: from here to the end at once.
    l.next = 0;
    l.end_steps = 1;
  }

  void Accept(int lane, const PathStep& at) {
    Progress& l = progress_[lane];
    for (int j = 0; j < 6; ++j) {
      Copy(rate_before_[j], lane, rate_[j]);
      Copy(rate_[j], lane, at.rate[j]);
      Copy(from_[j], lane, now_[j]);
      Copy(way_before_[j], lane, way_[j]);
    }
    l.before = l.t - l.from;
    l.from = l.t;
    l.corrected = false;
    l.predict = l.t < 1;
    if (l.t == 1) {
      l.end_steps = 1;
    } else if (l.before > 0) {
      const double room = care_ * kWantedCorrectionRad / std::max(l.first, kConvergedRad);
      l.next = l.before * std::min(2.0, std::max(0.5, 0.9 * std::sqrt(std::sqrt(room))));
    }
  }

  // The next step of the lanes that are to make one.
  void Predict() {
    for (Progress& l : progress_) {
      if (!l.predict) continue;
      const double rest = 1 - l.from;
      // The last step is no small one.
      if (l.next > 0.5 * rest) l.next = l.next > 0.95 * rest ? rest : 0.5 * rest;
      l.t = l.end_steps > 0 || l.next == rest ? 1 : l.from + l.next;
    }
    const Lanes step = {progress_[0].next, progress_[1].next};
    const Lanes before = {progress_[0].before, progress_[1].before};
    const Mask first = before == 0;
    const Lanes per_before = 1 / (first ? kOne : before);
    const Lanes ratio = first ? kZero : step * per_before;
    for (int j = 0; j < 6; ++j) {
      // Hermite's cubic, by the mean rate of the step before.
      const auto part = [&](Lanes rate, Lanes rate_before, Lanes way_before) {
        const Lanes mean = way_before * per_before;
        const Lanes cubic = (rate + rate_before) - 2 * mean;
        const Lanes square = (rate - mean) + cubic;
        return step * (rate + ratio * (square + ratio * cubic));
      };
      const ComplexLanes way = {part(rate_[j].re, rate_before_[j].re, way_before_[j].re),
                                part(rate_[j].im, rate_before_[j].im, way_before_[j].im)};
      const SinCos<ComplexLanes> there = TurnedBy(from_[j], way);
      for (int lane = 0; lane < 2; ++lane) {
        if (!progress_[lane].predict) continue;
        Copy(way_[j], lane, way);
        Copy(now_[j], lane, there);
      }
    }
    for (Progress& l : progress_) l.predict = false;
  }

  // Writes the end, and takes the next path.
  void Finish(int lane) {
    const Progress& l = progress_[lane];
    PathEnd& end = ends_[l.index];
    end.far = false;
    for (int j = 0; j < 6; ++j) {
      const SinCos<ComplexLanes>& a = now_[j];
      end.joints.joint[j] = {{a.sine.re[lane], a.sine.im[lane]},
                             {a.cosine.re[lane], a.cosine.im[lane]}};
      end.far = end.far || Norm(end.joints.joint[j].sine) > kFar2;
    }
    end.reached = l.end_steps > 0 && (end.far || l.size < kReachedRad);
    Load(lane);
  }

  const Chain& chain_;
  const PosePath path_;
  const double care_;
  const ComplexJoints* starts_ = nullptr;
  PathEnd* ends_ = nullptr;
  int count_ = 0;
  int next_ = 0;
  Progress progress_[2] = {};
  SinCos<ComplexLanes> now_[6] = {};   // the joints
  SinCos<ComplexLanes> from_[6] = {};  // where they were last
  ComplexLanes way_[6] = {};           // from there to where they are [rad]
  ComplexLanes rate_[6] = {};          // the derivatives there
  ComplexLanes way_before_[6] = {};    // both for the step before
  ComplexLanes rate_before_[6] = {};
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_PATH_TRACKER_H_
