#include "block_forward.h"

#include <algorithm>

namespace qal {

namespace {

using namespace closed_form;

// Seven numbers of each element, as `Pose` has them.
struct PoseBlock {
  BlockNumbers number[7];
};

// `QuaternionOf`, and what `CallForward` asks of a frame.
struct PosesOfFrames {
  // One row of the products of a quaternion's components.
  template <class L>
  struct Row {
    L q[4];
  };

  template <class L>
  QAL_INLINED static Row<L> Quaternions(const Matrix<L>& m) {
    const L squares[4] = {1 + m[0][0] + m[1][1] + m[2][2], 1 + m[0][0] - m[1][1] - m[2][2],
                          1 - m[0][0] + m[1][1] - m[2][2], 1 - m[0][0] - m[1][1] + m[2][2]};
    const L wx = m[2][1] - m[1][2];
    const L wy = m[0][2] - m[2][0];
    const L wz = m[1][0] - m[0][1];
    const L xy = m[0][1] + m[1][0];
    const L xz = m[0][2] + m[2][0];
    const L yz = m[1][2] + m[2][1];
    const Row<L> rows[4] = {{{squares[0], wx, wy, wz}},
                            {{wx, squares[1], xy, xz}},
                            {{wy, xy, squares[2], yz}},
                            {{wz, xz, yz, squares[3]}}};
    Row<L> row = rows[0];
    L largest = squares[0];
    for (int k = 1; k < 4; ++k) {
      const MaskOf<L> larger = largest < squares[k];
      for (int i = 0; i < 4; ++i) row.q[i] = Select<L>(larger, rows[k].q[i], row.q[i]);
      largest = Select<L>(larger, squares[k], largest);
    }
    const L(&q)[4] = row.q;
    const L length = Root<L>(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    return {{q[0] / length, q[1] / length, q[2] / length, q[3] / length}};
  }

  // Clearly near a rotation; what is not clear is for `CallForward`. NaN is not.
  template <class L>
  QAL_INLINED static MaskOf<L> NearRotation(const Matrix<L>& m) {
    const L most = Each<L>(0.5e-3);
    const Vector<L> off = Cross(m[0], m[1]) - m[2];
    return Flag<L>(Abs<L>(Dot(m[0], m[0]) - 1.0) <= most) &
           Flag<L>(Abs<L>(Dot(m[1], m[1]) - 1.0) <= most) &
           Flag<L>(Abs<L>(Dot(m[0], m[1])) <= most) & Flag<L>(Abs(off[0]) <= most) &
           Flag<L>(Abs(off[1]) <= most) & Flag<L>(Abs(off[2]) <= most);
  }

  template <int lanes>
  QAL_INLINED static void Run(const FrameBlock& frames, PoseBlock& poses, BlockFlags& sound) {
    using L = LanesOf<lanes>;
    for (int first = 0; first < kBlock; first += lanes) {
      const FrameOf<L> frame = LoadFrame<L>(frames, first);
      const Vector<L>& p = frame.position;
      const Row<L> q = Quaternions(frame.rotation);
      for (int i = 0; i < 3; ++i) Store(p[i], &poses.number[i][first]);
      for (int i = 0; i < 4; ++i) Store(q.q[i], &poses.number[3 + i][first]);
      StoreFlags<L>(NearRotation(frame.rotation) & IsFinite(p[0]) & IsFinite(p[1]) & IsFinite(p[2]),
                    &sound[first]);
    }
  }
};

}  // namespace

unsigned ForwardOfBlock(const BlockFunctions& solver, const Joints* joints, int count,
                        Pose* poses) {
  JointsBlock given;
  for (int i = 0; i < kBlock; ++i) {
    const Joints& one = joints[std::min(i, count - 1)];
    for (size_t j = 0; j < one.size(); ++j) given.joint[j][i] = one[j];
  }
  FrameBlock frames;
  BlockFlags alone;
  solver.ForwardBlock(given, frames, alone);
  PoseBlock found;
  BlockFlags sound;
  RunInLanes<PosesOfFrames, kBlock>(WidestLanes(), frames, found, sound);
  unsigned answered = 0;
  const BlockNumbers(&n)[7] = found.number;
  for (int i = 0; i < count; ++i) {
    poses[i] = {{n[0][i], n[1][i], n[2][i]}, {n[3][i], n[4][i], n[5][i], n[6][i]}};
    if (sound[i] != 0 && alone[i] == 0) answered |= 1U << i;
  }
  return answered;
}

}  // namespace qal
