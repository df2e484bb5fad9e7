#include "block_inverse.h"

#include <algorithm>
#include <limits>

#include "../../kinematics/solve/pose_encoding.h"
#include "block_turns.h"
#include "solver_calls.h"

namespace qal {

namespace {

using namespace closed_form;

// The numbers of requests.
struct RequestNumbers {
  BlockNumbers pose[7];  // as `Pose` has them
  JointsBlock near;
};

// `EncodePose`.
struct EncodeBlock {
  // @param sound out: the request's numbers are what `Inverse` takes
  template <int lanes>
  QAL_INLINED static void Run(const RequestNumbers& requests, FrameBlock& targets,
                              BlockFlags& sound) {
    using L = LanesOf<lanes>;
    for (int first = 0; first < kBlock; first += lanes) {
      L n[7];
      for (int i = 0; i < 7; ++i) n[i] = Load<L>(&requests.pose[i][first]);
      const L length2 = SquareOfLength(n[3], n[4], n[5], n[6]);
      MaskOf<L> good = IsFinite(length2) &
                       Flag<L>(length2 >= Each<L>(kShortestQuaternion * kShortestQuaternion));
      for (int i = 0; i < 7; ++i) good = good & IsFinite(n[i]);
      for (int j = 0; j < 6; ++j) {
        good = good & IsFinite(Load<L>(&requests.near.joint[j][first]));
      }
      StoreFlags<L>(good, &sound[first]);
      L rotation[9];
      WriteRotation<L>(n[3], n[4], n[5], n[6], 1.0 / Root(length2), rotation);
      for (int i = 0; i < 3; ++i) Store(n[i], &targets.position[i][first]);
      for (int i = 0; i < 9; ++i) Store(rotation[i], &targets.rotation[i][first]);
    }
  }
};

template <class L>
QAL_INLINED void StoreJoints(const L (&joints)[6], Joints* to) {
  double* by_lane[kLaneCount<L>];
  for (int lane = 0; lane < kLaneCount<L>; ++lane) by_lane[lane] = to[lane].data();
  StoreByLane(joints, by_lane);
}

// One way, judged.
template <class L>
struct JudgedWay {
  L joints[6];
  L distance;
  MaskOf<L> range, step;  // what refuses it, if anything
  MaskOf<L> odd;          // for `Inverse` to judge
};

template <class L>
QAL_INLINED JudgedWay<L> JudgeWay(const JointsBlock& way, const L (&near)[6],
                                  const BlockInverse& inverse, int first) {
  JudgedWay<L> judged;
  judged.distance = L{};
  judged.range = MaskOf<L>{};
  judged.step = MaskOf<L>{};
  judged.odd = MaskOf<L>{};
  for (int j = 0; j < 6; ++j) {
    const JointRange& range = inverse.ranges[j];
    const L angle = Load<L>(&way.joint[j][first]);
    const L joint = inverse.within_turn
                        ? NextToRange(angle, range.lower, range.upper)
                        : TakenOnInLanes(angle, near[j], range.lower, range.upper, judged.odd);
    const L move = Abs<L>(joint - near[j]);
    const MaskOf<L> outside =
        Flag<L>(joint < Each<L>(range.lower)) | Flag<L>(joint > Each<L>(range.upper));
    judged.range = judged.range | (outside & ~judged.step);
    judged.step = judged.step | (Flag<L>(move > Each<L>(inverse.step_bound)) & ~judged.range);
    judged.distance += move;
    judged.joints[j] = joint;
  }
  // Written so that NaN is odd.
  judged.odd = judged.odd | ~IsFinite(judged.distance);
  return judged;
}

// What becomes of a request, besides its joints.
struct Outcome {
  BlockFlags admissible;  // there is a solution that is
  BlockFlags solved;      // there are solutions
  BlockFlags step;        // of those refused the nearest is for its step
  BlockFlags odd;
};

// The choice of `Nearest` where all that is needed are the solver's joints.
// @param way   out: which, as a number; -1 where none is admissible
// @return whether that is all there is to say: no request is without an admissible solution
template <class L>
QAL_INLINED bool ChooseQuickly(const WaysBlock& ways, const L (&near)[6],
                               const BlockInverse& inverse, int first, L& way, MaskOf<L>& solved) {
  L nearest = Each<L>(std::numeric_limits<double>::infinity());
  way = Each<L>(-1);
  solved = MaskOf<L>{};
  for (int k = 0; k < 8; ++k) {
    MaskOf<L> admissible = LoadFlags<L>(&ways.reached[k][first]);
    solved = solved | admissible;
    L distance = L{};
    for (int j = 0; j < 6; ++j) {
      const L joint = Load<L>(&ways.way[k].joint[j][first]);
      const L move = Abs<L>(joint - near[j]);
      admissible = admissible & Flag<L>(joint >= Each<L>(inverse.ranges[j].lower)) &
                   Flag<L>(joint <= Each<L>(inverse.ranges[j].upper)) &
                   Flag<L>(move <= Each<L>(inverse.step_bound));
      distance += move;
    }
    // Of equally near ones the first.
    const MaskOf<L> nearer = admissible & Flag<L>(distance < nearest);
    nearest = Select<L>(nearer, distance, nearest);
    way = Select<L>(nearer, Each<L>(k), way);
  }
  return !Any(solved & Flag<L>(way < Each<L>(0)));
}

// The choice of `Nearest`.
struct ChooseNearest {
  template <int lanes>
  QAL_INLINED static void Run(const WaysBlock& ways, const JointsBlock& near,
                              const BlockInverse& inverse, Joints (&nearest)[kBlock],
                              Outcome& outcome) {
    using L = LanesOf<lanes>;
    using M = MaskOf<L>;
    for (int first = 0; first < kBlock; first += lanes) {
      L reference[6];
      for (int j = 0; j < 6; ++j) reference[j] = Load<L>(&near.joint[j][first]);
      L way;
      M solved;
      if (inverse.within_turn && ChooseQuickly(ways, reference, inverse, first, way, solved)) {
        StoreFlags<L>(solved, &outcome.solved[first]);
        StoreFlags<L>(solved, &outcome.admissible[first]);
        StoreFlags<L>(LoadFlags<L>(&ways.alone[first]), &outcome.odd[first]);
        for (int i = 0; i < lanes; ++i) {
          const JointsBlock& chosen = ways.way[std::max(0, static_cast<int>(way[i]))];
          for (size_t j = 0; j < 6; ++j) nearest[first + i][j] = chosen.joint[j][first + i];
        }
      } else {
        ChooseWithCare(ways, reference, inverse, first, nearest, outcome);
      }
    }
  }

  template <class L>
  QAL_INLINED static void ChooseWithCare(const WaysBlock& ways, const L (&reference)[6],
                                         const BlockInverse& inverse, int first,
                                         Joints (&nearest)[kBlock], Outcome& outcome) {
    using M = MaskOf<L>;
    L joints[6] = {};
    L admissible_distance = Each<L>(std::numeric_limits<double>::infinity());
    L refused_distance = admissible_distance;
    M solved = {};
    M admissible = {};
    M step = {};
    M odd = LoadFlags<L>(&ways.alone[first]);
    for (int k = 0; k < 8; ++k) {
      const M reached = LoadFlags<L>(&ways.reached[k][first]);
      const JudgedWay<L> way = JudgeWay(ways.way[k], reference, inverse, first);
      const M refused = way.range | way.step;
      const M nearer = reached & ~refused & Flag<L>(way.distance < admissible_distance);
      admissible_distance = Select<L>(nearer, way.distance, admissible_distance);
      for (int j = 0; j < 6; ++j) joints[j] = Select<L>(nearer, way.joints[j], joints[j]);
      admissible = admissible | nearer;
      const M before = reached & refused & Flag<L>(way.distance < refused_distance);
      refused_distance = Select<L>(before, way.distance, refused_distance);
      step = (before & way.step) | (~before & step);
      solved = solved | reached;
      odd = odd | (reached & way.odd);
    }
    StoreJoints(joints, &nearest[first]);
    StoreFlags<L>(solved, &outcome.solved[first]);
    StoreFlags<L>(admissible, &outcome.admissible[first]);
    StoreFlags<L>(step, &outcome.step[first]);
    StoreFlags<L>(odd, &outcome.odd[first]);
  }
};

// All solutions of `Inverse`.
struct JudgeAll {
  template <int lanes>
  QAL_INLINED static void Run(const WaysBlock& ways, const JointsBlock& near,
                              const BlockInverse& inverse, CandidateBlock& answers) {
    using L = LanesOf<lanes>;
    using M = MaskOf<L>;
    for (int first = 0; first < kBlock; first += lanes) {
      L reference[6];
      for (int j = 0; j < 6; ++j) reference[j] = Load<L>(&near.joint[j][first]);
      M odd = LoadFlags<L>(&ways.alone[first]);
      for (int k = 0; k < 8; ++k) {
        const M reached = LoadFlags<L>(&ways.reached[k][first]);
        const JudgedWay<L> way = JudgeWay(ways.way[k], reference, inverse, first);
        StoreJoints(way.joints, &answers.joints[k][first]);
        Store(way.distance, &answers.distance_rad[k][first]);
        StoreFlags<L>(reached, &answers.reached[k][first]);
        StoreFlags<L>((way.range & kForRange) | (way.step & kForStep), &answers.refused[k][first]);
        odd = odd | (reached & way.odd);
      }
      StoreFlags<L>(odd, &answers.alone[first]);
    }
  }
};

// Encodes requests and solves them.
void SolveRequests(const BlockInverse& inverse, const RequestBlock& requests,
                   RequestNumbers& numbers, WaysBlock& ways, BlockFlags& sound) {
  for (int i = 0; i < kBlock; ++i) {
    const int k = std::min(i, requests.count - 1);
    const auto& [p, q] = requests.poses[k];
    const double pose[7] = {p.x, p.y, p.z, q.w, q.x, q.y, q.z};
    for (int n = 0; n < 7; ++n) numbers.pose[n][i] = pose[n];
    const Joints& near = requests.Near(k);
    for (size_t j = 0; j < near.size(); ++j) numbers.near.joint[j][i] = near[j];
  }
  FrameBlock targets;
  RunInLanes<EncodeBlock, kBlock>(WidestLanes(), numbers, targets, sound);
  inverse.solver.InverseBlock(targets, ways);
}

}  // namespace

BlockInverse::BlockInverse(const Arm& arm, const BlockFunctions& blocks, double step_bound_rad)
    : solver(blocks), step_bound(step_bound_rad) {
  for (size_t j = 0; j < 6; ++j) {
    ranges[j] = {arm.joints()[j].lower_rad.value, arm.joints()[j].upper_rad.value};
    within_turn = within_turn && ranges[j].lower > -kPi && ranges[j].upper < kPi;
  }
}

void NearestOfBlock(const BlockInverse& inverse, const RequestBlock& requests,
                    NearestBlock& answers) {
  RequestNumbers numbers;
  WaysBlock ways;
  BlockFlags sound;
  SolveRequests(inverse, requests, numbers, ways, sound);
  Outcome outcome;
  RunInLanes<ChooseNearest, kBlock>(WidestLanes(), ways, numbers.near, inverse, answers.joints,
                                    outcome);
  for (int i = 0; i < requests.count; ++i) {
    answers.alone[i] = sound[i] == 0 || outcome.odd[i] != 0;
    answers.reasons[i] = outcome.solved[i] == 0       ? Reason::kOutOfReach
                         : outcome.admissible[i] != 0 ? Reason::kNone
                         : outcome.step[i] != 0       ? Reason::kStepBound
                                                      : Reason::kJointRange;
  }
}

void CandidatesOfBlock(const BlockInverse& inverse, const RequestBlock& requests,
                       CandidateBlock& answers) {
  RequestNumbers numbers;
  WaysBlock ways;
  BlockFlags sound;
  SolveRequests(inverse, requests, numbers, ways, sound);
  RunInLanes<JudgeAll, kBlock>(WidestLanes(), ways, numbers.near, inverse, answers);
  for (int i = 0; i < kBlock; ++i) answers.alone[i] |= sound[i] == 0 ? 1 : 0;
}

}  // namespace qal
