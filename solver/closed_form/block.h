#ifndef QAL_SOLVER_CLOSED_FORM_BLOCK_H_
#define QAL_SOLVER_CLOSED_FORM_BLOCK_H_

#include <limits>

#include "solve.h"

/// Many targets or joint sets, one in each lane, with the bits of a single one's answer.
namespace qal::closed_form {

/// As many as the widest lanes.
constexpr int kBlock = 8;

/// A number of each element of a block, or a flag: not 0 where it is set. Aligned for any lanes.
template <class T>
struct alignas(kBlock * sizeof(T)) BlockOf {
  T of[kBlock];
  template <class Index>
  QAL_INLINED T& operator[](Index i) {
    return of[i];
  }
  template <class Index>
  QAL_INLINED const T& operator[](Index i) const {
    return of[i];
  }
};
using BlockNumbers = BlockOf<double>;
using BlockFlags = BlockOf<std::int64_t>;

struct FrameBlock {
  BlockNumbers position[3];
  BlockNumbers rotation[9];  ///< by rows
};

struct JointsBlock {
  BlockNumbers joint[6];  ///< [rad]
};

/// The eight ways to reach each of a block's targets, in the order of `Solutions`.
struct WaysBlock {
  JointsBlock way[8];
  BlockFlags reached[8];
  BlockFlags alone;  ///< of a target without solutions: other angles 1 may reach it, which is for
                     ///< `SolveTarget` to find out
};

/// Those that are in a block from `first` on, one in each lane.
template <class L>
QAL_INLINED FrameOf<L> LoadFrame(const FrameBlock& block, int first) {
  FrameOf<L> frame;
  for (int i = 0; i < 3; ++i) {
    frame.position.element[i] = Load<L>(&block.position[i][first]);
    for (int j = 0; j < 3; ++j) {
      frame.rotation.row[i].element[j] = Load<L>(&block.rotation[3 * i + j][first]);
    }
  }
  return frame;
}
template <class L>
QAL_INLINED void StoreFrame(const FrameOf<L>& frame, int first, FrameBlock& block) {
  for (int i = 0; i < 3; ++i) {
    Store(frame.position[i], &block.position[i][first]);
    for (int j = 0; j < 3; ++j) Store(frame.rotation[i][j], &block.rotation[3 * i + j][first]);
  }
}

template <class L>
QAL_INLINED MaskOf<L> IsFinite(const L& v) {
  return Flag<L>(Abs(v) <= Each<L>(std::numeric_limits<double>::max()));
}

/// `IsRotation` of each lane.
template <class L>
QAL_INLINED MaskOf<L> AreRotations(const Matrix<L>& matrix) {
  const L tolerance = Each<L>(kRotationTolerance);
  const Matrix<L> columns = Transposed(matrix);
  const Vector<L>& x = columns[0];
  const Vector<L>& y = columns[1];
  const Vector<L> off = Cross(x, y) - columns[2];
  const auto small = [&](const L& v) __attribute__((always_inline)) {
    return Flag<L>(Abs(v) <= tolerance);
  };
  return small(Dot(x, x) - 1.0) & small(Dot(y, y) - 1.0) & small(Dot(x, y)) & small(off[0]) &
         small(off[1]) & small(off[2]);
}

/// `SolveTarget` of a block.
struct SolveBlock {
  template <int lanes, class Arm>
  QAL_INLINED static void Run(const Arm& arm, const FrameBlock& targets, WaysBlock& ways) {
    using L = LanesOf<lanes>;
    for (int first = 0; first < kBlock; first += lanes) {
      const FrameOf<L> target = LoadFrame<L>(targets, first);
      const Vector<L>& p = target.position;
      const MaskOf<L> sound =
          AreRotations(target.rotation) & IsFinite(p[0]) & IsFinite(p[1]) & IsFinite(p[2]);
      const Approach<L> to = ApproachOf(arm.body, target);
      MaskOf<L> solved = {};
      for (int side = 0; side < 2; ++side) {
        const Shoulder<L> shoulder = ShoulderTo(arm.body, to, Each<L>(1 - 2 * side));
        const auto common = CommonTo(arm, shoulder);
        for (int choice = 0; choice < 2; ++choice) {
          BranchAngles<L> branches[2];
          SolveChoice(arm, shoulder, common, Each<L>(1 - 2 * choice), branches);
          for (int k = 0; k < 2; ++k) {
            const int way = 4 * side + 2 * choice + k;
            L joints[6];
            JointsOf(arm.body, branches[k].angle, joints);
            for (int j = 0; j < 6; ++j) Store(joints[j], &ways.way[way].joint[j][first]);
            const MaskOf<L> reached = branches[k].reached & sound;
            StoreFlags<L>(reached, &ways.reached[way][first]);
            solved = solved | reached;
          }
        }
      }
      MaskOf<L> alone = sound & ~solved;
      if (Any(alone)) {
        alone = alone & IndeterminacyMatters(arm, IndeterminacyOf(arm.body, to), to.rounding);
      }
      StoreFlags<L>(alone, &ways.alone[first]);
    }
  }
};

/// `Forward` of a block.
struct ForwardBlock {
  /// @param alone out: joints too large, which are for `Forward`
  template <int lanes, class Arm>
  QAL_INLINED static void Run(const Arm& arm, const JointsBlock& joints, FrameBlock& frames,
                              BlockFlags& alone) {
    using L = LanesOf<lanes>;
    for (int first = 0; first < kBlock; first += lanes) {
      SinCos<L> sincos[6];
      MaskOf<L> within = Each<L>(0) <= Each<L>(0);
      for (int j = 0; j < 6; ++j) {
        const L angle = arm.body.direction[j] * Load<L>(&joints.joint[j][first]) + arm.body.zero[j];
        within = within & WithinLargest(angle);
        sincos[j] = SinCosWithin(angle);
      }
      StoreFrame(ForwardOf(arm, sincos), first, frames);
      StoreFlags<L>(~within, &alone[first]);
    }
  }
};

}  // namespace qal::closed_form

#endif  // QAL_SOLVER_CLOSED_FORM_BLOCK_H_
