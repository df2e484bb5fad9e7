#include "qal/solve/batch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <new>
#include <random>
#include <stdexcept>
#include <thread>

#include "../../src/qal/solve/batch_run.h"

namespace qal {
namespace {

constexpr size_t kCount = 1000;  // no whole number of chunks
constexpr unsigned kThreads[] = {1, 2, 7};
const InverseOptions kBound = {0.5};

// Joints of which every tenth has a NaN.
std::vector<Joints> SomeJoints() {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> angle(-2.9, 2.9);
  std::vector<Joints> all(kCount);
  for (Joints& joints : all) {
    for (double& joint : joints) joint = angle(random);
  }
  for (size_t i = 0; i < kCount; i += 10) all[i][3] = std::nan("");
  return all;
}

// Their poses, of which every seventh is out of reach.
std::vector<Pose> SomePoses(const Arm& arm) {
  std::vector<Joints> joints = SomeJoints();
  std::vector<Pose> poses(kCount);
  (void)Forward(arm, joints, poses);
  for (size_t i = 0; i < kCount; i += 7) poses[i] = {{5, 0, 0}, {1, 0, 0, 0}};
  return poses;
}

template <class T>
bool SameBits(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

const Arm kArm = Arm::Reference();

// Each answer of a batch is that of the single call, or NaN with its reason.
template <class T, class Batch, class Single>
void ExpectSingleAnswers(Batch batch, Single single) {
  for (const unsigned threads : kThreads) {
    std::vector<T> answers(kCount);
    std::vector<Reason> reasons(kCount);
    const BatchCount told = batch(answers, reasons, BatchOptions{threads});
    size_t refused = 0;
    for (size_t i = 0; i < kCount; ++i) {
      const auto expected = single(i);
      ASSERT_EQ(expected ? Reason::kNone : expected.error().reason, reasons[i]) << i;
      double first = 0;
      std::memcpy(&first, &answers[i], sizeof first);
      if (expected) {
        ASSERT_TRUE(SameBits(*expected, answers[i])) << i << " by " << threads;
      } else {
        ASSERT_TRUE(std::isnan(first)) << i;
        ++refused;
      }
    }
    EXPECT_GE(refused, kCount / 10);
    EXPECT_EQ(refused, told.refused);
    EXPECT_EQ(kCount, told.done);
  }
}

TEST(BatchThreads, GiveTheBitsOfSingleCalls) {
  const std::vector<Joints> joints = SomeJoints();
  const std::vector<Pose> poses = SomePoses(kArm);
  const Joints home = {};
  ExpectSingleAnswers<Pose>(
      [&](auto& out, auto& why, auto how) { return Forward(kArm, joints, out, why, how); },
      [&](size_t i) { return Forward(kArm, joints[i]); });
  ExpectSingleAnswers<JacobianMatrix>(
      [&](auto& out, auto& why, auto how) { return Jacobian(kArm, joints, out, why, how); },
      [&](size_t i) { return Jacobian(kArm, joints[i]); });
  ExpectSingleAnswers<Singularities>(
      [&](auto& out, auto& why, auto how) {
        return DistanceToSingularities(kArm, joints, out, why, how);
      },
      [&](size_t i) { return DistanceToSingularities(kArm, joints[i]); });
  const auto nearest = [&](const Pose& pose, const Joints& near) -> Result<Joints> {
    const auto state = Nearest(kArm, pose, near, kBound);
    if (!state) return state.error();
    return state->joints;
  };
  ExpectSingleAnswers<Joints>(
      [&](auto& out, auto& why, auto how) {
        return Nearest(kArm, poses, joints, out, why, kBound, how);
      },
      [&](size_t i) { return nearest(poses[i], joints[i]); });
  ExpectSingleAnswers<Joints>(  // one reference for all
      [&](auto& out, auto& why, auto how) {
        return Nearest(kArm, poses, {&home, 1}, out, why, kBound, how);
      },
      [&](size_t i) { return nearest(poses[i], home); });
}

TEST(BatchThreads, GiveEverySolutionInTheOrderOfThePoses) {
  const std::vector<Joints> near = SomeJoints();
  const std::vector<Pose> poses = SomePoses(kArm);
  for (const unsigned threads : kThreads) {
    const BatchSolutions all = Inverse(kArm, poses, near, kBound, {threads});
    ASSERT_EQ(kCount + 1, all.first.size());
    size_t next = 0;
    for (size_t i = 0; i < kCount; ++i) {
      const auto expected = Inverse(kArm, poses[i], near[i], kBound);
      ASSERT_EQ(expected ? Reason::kNone : expected.error().reason, all.reasons[i]);
      ASSERT_EQ(next, all.first[i]);
      if (!expected) continue;
      for (const Candidate& candidate : *expected) {
        ASSERT_TRUE(SameBits(candidate.joints, all.joints[next]));
        ASSERT_EQ(candidate.distance_rad, all.distances_rad[next]);
        ASSERT_EQ(candidate.refusal ? candidate.refusal->reason : Reason::kNone,
                  all.refusals[next]);
        ++next;
      }
    }
    EXPECT_EQ(next, all.first.back());
    EXPECT_EQ(next, all.joints.size());
    EXPECT_EQ(kCount, all.done);
  }
}

// The caller's thread has the second chunk at the latest: the others wait for it.
TEST(BatchThreads, StopWhenProgressSaysSoOrSomethingThrows) {
  const std::thread::id caller = std::this_thread::get_id();
  for (const unsigned threads : kThreads) {
    std::atomic<size_t> calls{0};
    const auto work = [&](size_t, size_t) {
      while (calls == 0 && std::this_thread::get_id() != caller) std::this_thread::yield();
    };
    const auto stop = [&](size_t done) {
      EXPECT_GE(done, kBatchChunk);
      ++calls;
      return false;
    };
    const size_t done = RunBatch(1000 * kBatchChunk, {threads, stop}, work);
    EXPECT_EQ(1U, calls);
    EXPECT_LT(done, 1000 * kBatchChunk);
    EXPECT_TRUE(threads > 1 || done == kBatchChunk) << done;

    calls = 0;
    const auto refuse = [&](size_t) -> bool {
      ++calls;
      throw std::runtime_error("stopped");
    };
    EXPECT_THROW((void)RunBatch(kCount, {threads, refuse}, work), std::runtime_error);
    // Out of memory in any thread, also another than the caller's.
    EXPECT_THROW((void)RunBatch(kCount, {threads},
                                [](size_t begin, size_t) {
                                  if (begin >= 3 * kBatchChunk) throw std::bad_alloc();
                                }),
                 std::bad_alloc);
  }
}

// Joints with limits that make each of them turn on, or not at all.
Arm WithLimits(double lower_rad, double upper_rad) {
  ArmSettings settings;
  for (JointSettings& joint : settings.joints) {
    joint.lower_rad = lower_rad;
    joint.upper_rad = upper_rad;
  }
  return *Arm::FromSolver(Solver::Reference(), settings);
}

Arm WithoutLimits() {
  ArmDescription description;
  for (auto& joint : description.joints) joint.continuous = true;
  return *Arm::FromSolver(Solver::Reference(), description, {});
}

// A pose and reference joints, one of the two mostly odd.
struct Request {
  Pose pose;
  Joints near;
};

std::vector<Request> OddRequests(const Arm& arm) {
  std::mt19937_64 random(26);
  std::uniform_real_distribution<double> angle(-3.1, 3.1);
  std::vector<Request> requests(3000);
  for (auto& [pose, near] : requests) {
    Joints joints;
    for (double& joint : joints) joint = angle(random);
    const auto kind = random() % 16;
    if (kind < 4) {  // singular ones
      for (double& joint : joints) joint = std::round(joint) * 1.5707963267948966;
    }
    pose = *Forward(arm, joints);
    near = joints;
    double& number = near[random() % 6];
    if (kind == 4) number = std::nan("");
    if (kind == 5) number = 1e300;
    if (kind == 6) number += 1e5;
    if (kind >= 7 && kind < 11) {
      for (double& joint : near) joint = 3 * angle(random);
    }
    if (kind == 11) pose.position.y = HUGE_VAL;
    if (kind == 12) pose.orientation = {0, 0, 1e-7, 0};
    if (kind == 13) pose.position.z += 1.5;
    if (kind == 14) pose.position = {0, 0, pose.position.z};
  }
  return requests;
}

// Also by fewer lanes than the processor has: see the tests of this name that hide some.
TEST(BatchLanes, AnswerOddRequestsAsSingleCallsDo) {
  Transform tool;
  tool.position = {0.01, -0.02, 0.1};
  for (const Arm& arm : {kArm, *kArm.WithTool(tool), WithLimits(-1, 5.2), WithLimits(-7.5, 7),
                         WithLimits(-0.5, 0.1), WithLimits(6, 12), WithoutLimits()}) {
    std::vector<Pose> poses;
    std::vector<Joints> near;
    for (const auto& [pose, joints] : OddRequests(arm)) {
      poses.push_back(pose);
      near.push_back(joints);
    }
    for (const double bound : {HUGE_VAL, 0.4, 0.0, std::nan("")}) {
      std::vector<Joints> nearest(poses.size());
      std::vector<Reason> reasons(poses.size());
      (void)Nearest(arm, poses, near, nearest, reasons, {bound});
      const BatchSolutions all = Inverse(arm, poses, near, {bound});
      for (size_t i = 0; i < poses.size(); ++i) {
        const auto expected = Nearest(arm, poses[i], near[i], {bound});
        ASSERT_EQ(expected ? Reason::kNone : expected.error().reason, reasons[i]) << i;
        ASSERT_TRUE(!expected || SameBits(expected->joints, nearest[i])) << i;
        const auto candidates = Inverse(arm, poses[i], near[i], {bound});
        ASSERT_EQ(candidates ? candidates->size() : 0, all.first[i + 1] - all.first[i]) << i;
        ASSERT_EQ(candidates ? Reason::kNone : candidates.error().reason, all.reasons[i]) << i;
        for (size_t k = all.first[i]; k < all.first[i + 1]; ++k) {
          const Candidate& candidate = (*candidates)[k - all.first[i]];
          ASSERT_TRUE(SameBits(candidate.joints, all.joints[k])) << i;
          ASSERT_TRUE(SameBits(candidate.distance_rad, all.distances_rad[k])) << i;
          ASSERT_EQ(candidate.refusal ? candidate.refusal->reason : Reason::kNone, all.refusals[k]);
        }
      }
    }
  }
}

TEST(Batch, OfNothingIsDone) {
  EXPECT_EQ(0U, Forward(kArm, {}, {}).done);
  EXPECT_EQ(std::vector<size_t>{0}, Inverse(kArm, Span<const Pose>(), {}).first);
}

}  // namespace
}  // namespace qal
