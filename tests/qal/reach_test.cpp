#include "qal/study/reach.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "qal/model/chain.h"
#include "qal/model/rotations.h"

namespace qal {
namespace {

const Arm kReachArm = Arm::Reference();

// Around the edge of what the reference arm reaches: cells with all, some and none of the
// directions, 37 of them, so that the chunks of a batch go across cells.
ReachStudy EdgeStudy() {
  ReachStudy study;
  study.box_min = {0.1, -0.2, 0.2};
  study.box_max = {1.3, 0.2, 1.0};
  study.step_m = 0.2;
  study.directions = 37;
  study.spins = 2;
  study.tilt_axis = {0.5, 0, -2};
  study.tilt_cone_rad = 2;
  return study;
}

bool SameCell(const ReachCell& a, const ReachCell& b) {
  const auto same = [](const auto& one, const auto& other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
  };
  return a.directions == b.directions && a.solutions == b.solutions &&
         a.orientation == b.orientation && same(a.joints, b.joints) &&
         same(a.margin_rad, b.margin_rad) &&
         same(a.smallest_singular_value, b.smallest_singular_value);
}

double MarginOf(const Arm& arm, const Joints& joints) {
  double margin = 10;
  for (size_t j = 0; j < 6; ++j) {
    const JointModel& joint = arm.joints()[j];
    margin = std::min(
        margin, std::min(joints[j] - joint.lower_rad.value, joint.upper_rad.value - joints[j]));
  }
  return margin;
}

// The admissible solution with the largest margin, and how many there are.
std::pair<Joints, uint32_t> BestOf(const Arm& arm, const Pose& pose) {
  std::pair<Joints, uint32_t> best = {};
  const auto candidates = Inverse(arm, pose, {});
  if (!candidates) return best;
  for (const Candidate& candidate : *candidates) {
    if (candidate.refusal) continue;
    const double margin = MarginOf(arm, candidate.joints);
    if (best.second++ == 0 || margin > MarginOf(arm, best.first)) best.first = candidate.joints;
  }
  return best;
}

// By single calls, orientation by orientation.
ReachCell ByHand(const ReachStudy& study, const Vec3& centre, const std::vector<Quat>& tried) {
  ReachCell cell;
  std::vector<bool> reached(static_cast<size_t>(study.directions));
  for (size_t i = 0; i < tried.size(); ++i) {
    const auto candidates = Inverse(kReachArm, {centre, tried[i]}, {});
    if (!candidates) continue;
    for (const Candidate& candidate : *candidates) {
      if (candidate.refusal) continue;
      ++cell.solutions;
      reached[i / static_cast<size_t>(study.spins)] = true;
      const double margin = MarginOf(kReachArm, candidate.joints);
      if (cell.orientation >= 0 && !(margin > cell.margin_rad)) continue;
      cell.orientation = static_cast<int32_t>(i);
      cell.margin_rad = margin;
      cell.joints = candidate.joints;
    }
  }
  cell.directions = static_cast<uint32_t>(std::count(reached.begin(), reached.end(), true));
  if (cell.orientation >= 0) {
    cell.smallest_singular_value =
        DistanceToSingularities(kReachArm, cell.joints)->smallest_singular_value;
  }
  return cell;
}

TEST(ReachThreads, GiveTheCellsOfSingleCallsHoweverTheyAreCut) {
  const ReachStudy study = EdgeStudy();
  const ReachGrid grid = *GridOf(study);
  const std::vector<Quat> tried = *OrientationsOf(study);
  const std::vector<ReachCell> whole = *Reach(kReachArm, study, 0, grid.cells());
  size_t partly = 0;
  for (size_t i = 0; i < whole.size(); ++i) {
    ASSERT_TRUE(SameCell(ByHand(study, grid.Centre(i), tried), whole[i])) << "cell " << i;
    if (whole[i].directions > 0 && whole[i].directions < 37) ++partly;
  }
  EXPECT_GE(partly, 5U);
  for (const unsigned threads : {1U, 7U}) {
    std::vector<ReachCell> cells;
    for (const auto& [first, last] : {std::pair<size_t, size_t>{0, 7}, {7, 7}, {7, whole.size()}}) {
      const auto part = *Reach(kReachArm, study, first, last, {threads});
      cells.insert(cells.end(), part.begin(), part.end());
    }
    ASSERT_EQ(whole.size(), cells.size());
    EXPECT_TRUE(std::equal(whole.begin(), whole.end(), cells.begin(), SameCell)) << threads;
  }
}

// Of an arm whose base is turned and away from the origin: poses that were reached with it there,
// moved by about half of what the box has of positions.
ReachStudy PlacementStudy(const Arm& arm) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> joint(-2, 2);
  ReachStudy study;
  study.box_min = {-0.6, -0.6, 0.1};
  study.box_max = {0.6, 0.6, 0.5};
  study.step_m = 0.2;
  while (study.poses.size() < 35) {
    Joints joints;
    for (double& value : joints) value = joint(random);
    study.poses.push_back(*Forward(arm, joints));
  }
  return study;
}

Arm TurnedArm() {
  ArmSettings settings;
  settings.base = FromRollPitchYaw({0.1, -0.2, 0.9});
  settings.base.position = {0.3, -0.1, 0.2};
  return *Arm::FromSolver(kReachArm.solver(), settings);
}

// Pose by pose, for a base at `at`: the worst pose's best solution.
ReachCell PlacedByHand(const Arm& arm, const ReachStudy& study, const Vec3& at) {
  ReachCell cell;
  for (size_t i = 0; i < study.poses.size(); ++i) {
    const auto& [p, orientation] = study.poses[i];
    const Vec3& base = arm.base().position;
    const Pose seen = {{p.x - at.x + base.x, p.y - at.y + base.y, p.z - at.z + base.z},
                       orientation};
    const auto [best, solutions] = BestOf(arm, seen);
    if (solutions == 0) continue;
    ++cell.directions;
    cell.solutions += solutions;
    const double singular = DistanceToSingularities(arm, best)->smallest_singular_value;
    if (!(cell.smallest_singular_value <= singular)) cell.smallest_singular_value = singular;
    const double margin = MarginOf(arm, best);
    if (cell.orientation >= 0 && !(margin < cell.margin_rad)) continue;
    cell.orientation = static_cast<int32_t>(i);
    cell.margin_rad = margin;
    cell.joints = best;
  }
  return cell;
}

TEST(ReachPlacement, TellsTheWorstPoseOfEachPositionOfTheBase) {
  const Arm arm = TurnedArm();
  const ReachStudy study = PlacementStudy(arm);
  const ReachGrid grid = *GridOf(study);
  const std::vector<ReachCell> whole = *Reach(arm, study, 0, grid.cells());
  size_t partly = 0;
  for (size_t i = 0; i < whole.size(); ++i) {
    ASSERT_TRUE(SameCell(PlacedByHand(arm, study, grid.Centre(i)), whole[i])) << "cell " << i;
    if (whole[i].directions > 0 && whole[i].directions < 35) ++partly;
  }
  EXPECT_GE(partly, 20U);
  const size_t middle = whole.size() / 2;
  std::vector<ReachCell> cells = *Reach(arm, study, 0, middle, {7});
  const std::vector<ReachCell> rest = *Reach(arm, study, middle, whole.size(), {1});
  cells.insert(cells.end(), rest.begin(), rest.end());
  EXPECT_TRUE(std::equal(whole.begin(), whole.end(), cells.begin(), SameCell));
}

// All poses are reached where the base was when they were made, up to the rounding of the shift.
TEST(ReachPlacement, ReachesAllPosesWithTheBaseWhereItIs) {
  const Arm arm = TurnedArm();
  ReachStudy study = PlacementStudy(arm);
  study.box_min = study.box_max = arm.base().position;
  EXPECT_EQ(35U, (*Reach(arm, study, 0, 1))[0].directions);
  study.poses[3].orientation = {0, 0, 0, 0};
  EXPECT_EQ(Reason::kNotAnOrientation, Reach(arm, study, 0, 1).error().reason);
}

// A pose p that a base at c is to reach is a cell's at p - c: with an approach as well.
TEST(ReachPlacement, CountsWhatABoxCountsThatTheBaseSees) {
  ReachStudy box = EdgeStudy();
  box.box_min = box.box_max = {0.7, 0.1, 0.4};
  box.spins = 1;
  box.line_m = 0.15;
  ReachStudy placement = box;
  placement.box_min = placement.box_max = {-2, 1, 0.5};
  const std::vector<Quat> tried = *OrientationsOf(box);
  for (const Quat& q : tried) placement.poses.push_back({{-1.3, 1.1, 0.9}, q});
  const ReachCell one = (*Reach(kReachArm, box, 0, 1))[0];
  const ReachCell other = (*Reach(kReachArm, placement, 0, 1))[0];
  EXPECT_EQ(one.directions, other.directions);
  EXPECT_EQ(one.solutions, other.solutions);
  EXPECT_GT(one.margin_rad, other.margin_rad);
  placement.line_m = 0;
  EXPECT_GT((*Reach(kReachArm, placement, 0, 1))[0].solutions, other.solutions);
}

// 0.3 m in steps of 0.1 m are 3 cells, whatever 0.3 / 0.1 is in binary; 0.25 m take 3 as well,
// which stand out by 0.025 m at both ends; nothing along z is one layer at that height.
TEST(ReachGrid, CoversTheBoxAboutItsMiddle) {
  ReachStudy study;
  study.box_min = {1, -0.125, 0.7};
  study.box_max = {1.3, 0.125, 0.7};
  study.step_m = 0.1;
  const ReachGrid grid = *GridOf(study);
  EXPECT_EQ((std::array<size_t, 3>{3, 3, 1}), grid.count);
  const Vec3 last = grid.Centre(8);
  EXPECT_NEAR(1.25, last.x, 1e-12);
  EXPECT_NEAR(0.1, last.y, 1e-12);
  EXPECT_EQ(0.7, last.z);
  EXPECT_NEAR(0.1, Distance(grid.Centre(0), grid.Centre(1)), 1e-12);
  EXPECT_NEAR(-0.1, grid.Centre(1).y, 1e-12);
}

Vec3 ToolAxis(const Quat& q) {
  const Quat z = q * Quat{0, 0, 0, 1} * Conjugate(q);
  return {z.x, z.y, z.z};
}

// A cap anywhere holds its share of the directions.
TEST(ReachDirections, AreEvenWithinTheCone) {
  ReachStudy study;
  study.directions = 1000;
  const std::vector<Quat> sphere = *OrientationsOf(study);
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  for (int i = 0; i < 200; ++i) {
    const Vec3 v = {normal(random), normal(random), normal(random)};
    const double cosine = 0.7;  // a cap of 15 % of the sphere
    const auto within = std::count_if(sphere.begin(), sphere.end(), [&](const Quat& q) {
      const Vec3 d = ToolAxis(q);
      return d.x * v.x + d.y * v.y + d.z * v.z > cosine * std::hypot(v.x, v.y, v.z);
    });
    EXPECT_NEAR(150, static_cast<double>(within), 12) << v.x << ' ' << v.y << ' ' << v.z;
  }
  study.tilt_axis = {3, 0, 0};
  study.tilt_cone_rad = 0.5;
  double least = 1;
  const std::vector<Quat> cone = *OrientationsOf(study);
  for (const Quat& q : cone) least = std::min(least, ToolAxis(q).x);
  EXPECT_GE(least, std::cos(0.5));
  EXPECT_LE(least, std::cos(0.49));
  // A single one is the axis, and its spins turn about it.
  study.directions = 1;
  study.spins = 4;
  const std::vector<Quat> spins = *OrientationsOf(study);
  ASSERT_EQ(4U, spins.size());
  EXPECT_NEAR(1, ToolAxis(spins[3]).x, 1e-15);
  EXPECT_NEAR(1.5707963267948966, AngleBetween(spins[0], spins[1]), 1e-14);
}

TEST(Reach, RefusesWhatIsNoStudy) {
  const struct {
    void (*spoil)(ReachStudy& study);
    const char* name;
    double bound;
  } kCases[] = {
      {[](ReachStudy& s) { s.box_max.y = -1; }, "box_extent_along_y_m", 0},
      {[](ReachStudy& s) { s.step_m = 0; }, "step_m", 9.15e-4},  // (0.768 m^3 / 10^9)^(1/3)
      {[](ReachStudy& s) { s.step_m = std::nan(""); }, "step_m", 9.15e-4},
      {[](ReachStudy& s) { s.directions = 0; }, "number_of_directions", 1},
      {[](ReachStudy& s) { s.spins = 37; }, "number_of_spins", 36},
      {[](ReachStudy& s) { s.line_m = -0.1; }, "line_m", 0},
      {[](ReachStudy& s) {
         s.line_direction = {0, 0, 1e-9};
       },
       "length_of_the_line_direction", 1},
      {[](ReachStudy& s) { s.tilt_cone_rad = 4; }, "tilt_cone_rad", 3.14159265358979},
      {[](ReachStudy& s) {
         s.tilt_axis = {0, 0, 0};
       },
       "length_of_the_tilt_axis", 1}};
  for (const auto& [spoil, name, bound] : kCases) {
    ReachStudy study = EdgeStudy();
    study.box_max = {1.3, 0.44, 1.2};
    spoil(study);
    const auto refused = Reach(kReachArm, study, 0, 1);
    ASSERT_FALSE(refused) << name;
    EXPECT_EQ(Reason::kSetting, refused.error().reason);
    EXPECT_EQ(name, refused.error().detail);
    EXPECT_NEAR(bound, refused.error().bound, 1e-5 + 1e-3 * bound) << name;
    if (refused.error().detail != "step_m") continue;
    study.step_m = refused.error().bound;
    EXPECT_TRUE(GridOf(study)) << "the bound doesn't work";
  }
  ReachStudy study = EdgeStudy();
  study.box_min.x = std::nan("");
  EXPECT_EQ(Reason::kNotFinite, Reach(kReachArm, study, 0, 1).error().reason);
  EXPECT_EQ("end_of_the_cells", Reach(kReachArm, EdgeStudy(), 0, 1000).error().detail);
}

TEST(ReachThreads, StopWhereProgressOrTheSolverDoes) {
  ReachStudy study = EdgeStudy();
  study.directions = 20000;  // for a second or so
  const size_t cells = GridOf(study)->cells();
  size_t most = 0;
  BatchOptions stopping;
  stopping.progress = [&](size_t done) { return (most = done) < 500; };
  EXPECT_EQ(Reason::kInterrupted, Reach(kReachArm, study, 0, cells, stopping).error().reason);
  EXPECT_LT(most, cells * 20000);
  // Cells without an answer must not read as out of reach.
  const Arm ended = kReachArm.Watched([] { return false; });
  EXPECT_EQ(Reason::kInterrupted, Reach(ended, study, 0, cells).error().reason);
}

}  // namespace
}  // namespace qal
