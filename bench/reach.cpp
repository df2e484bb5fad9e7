#include "../src/qal/study/reach.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

// What reach studies of the reference arm cost beside their poses' solutions alone, in processor
// time on one thread. Both go through the cells slice by slice, in turns, so that what disturbs the
// machine disturbs them alike.
//
//     qal_bench_reach                  a small study, one of a placement and one with approaches
//     qal_bench_reach STEP DIRECTIONS  a study of the same cubic metre, in other steps [m]

namespace qal {
namespace {

const BatchOptions kOneThread = {1};

template <class Work>
double SecondsOf(Work work) {
  const std::clock_t begin = std::clock();
  work();
  return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

struct Seconds {
  double study = 0;
  double beside = 0;
};

ReachStudy CubicMetre(double step_m, int directions) {
  ReachStudy study;
  study.box_min = {0, -0.5, 0};
  study.box_max = {1, 0.5, 1};
  study.step_m = step_m;
  study.directions = directions;
  return study;
}

// As many poses as a study has directions, which its cells as positions of the base see in the same
// places, but mirrored.
ReachStudy PlacementOf(ReachStudy study) {
  const std::vector<Quat> tried = *OrientationsOf(study);
  for (const Quat& q : tried) study.poses.push_back({{1, 0, 1}, q});
  return study;
}

// Calls work(first, last) with the cells of a study in slices.
template <class Work>
void InSlices(const ReachStudy& study, size_t poses_each, Work work) {
  const size_t cells = GridOf(study)->cells();
  const size_t slice = 1 + poses_each / static_cast<size_t>(study.directions);
  for (size_t first = 0; first < cells; first += slice) work(first, std::min(cells, first + slice));
}

void Study(const Arm& arm, const ReachStudy& study, size_t first, size_t last) {
  if (!Reach(arm, study, first, last, kOneThread)) std::abort();
}

Seconds BesideBatch(const Arm& arm, const ReachStudy& study) {
  const ReachGrid grid = *GridOf(study);
  const std::vector<Quat> tried = *OrientationsOf(study);
  const Joints near = {};
  Seconds sum;
  InSlices(study, 10000, [&](size_t first, size_t last) {
    std::vector<Pose> poses;
    for (size_t i = first; i < last; ++i) {
      for (const Quat& q : tried) poses.push_back({grid.Centre(i), q});
    }
    sum.beside += SecondsOf([&] {
      if (Inverse(arm, poses, {&near, 1}, {}, kOneThread).done < poses.size()) std::abort();
    });
    sum.study += SecondsOf([&] { Study(arm, study, first, last); });
  });
  return sum;
}

Seconds BesideStudy(const Arm& arm, const ReachStudy& other, const ReachStudy& study) {
  Seconds sum;
  InSlices(study, 4000, [&](size_t first, size_t last) {
    sum.beside += SecondsOf([&] { Study(arm, study, first, last); });
    sum.study += SecondsOf([&] { Study(arm, other, first, last); });
  });
  return sum;
}

// The most that a study may take beside the batch.
constexpr double kMostOfBatch = 1.25;

void Say(const char* what, const ReachStudy& study, const Seconds& sum, const char* beside) {
  std::printf("%s of %zu poses: %.2f times %s (%.3g s beside %.3g s)", what,
              GridOf(study)->cells() * static_cast<size_t>(DirectionsOf(study)),
              sum.study / sum.beside, beside, sum.study, sum.beside);
}

}  // namespace
}  // namespace qal

int main(int count, char** arguments) {
  using namespace qal;
  // The batch's memory is kept from slice to slice: new pages would be a good part of its time.
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  const Arm arm = Arm::Reference();
  const double step_m = count == 3 ? std::atof(arguments[1]) : 0.05;
  const ReachStudy study = CubicMetre(step_m, count == 3 ? std::atoi(arguments[2]) : 800);
  if (!GridOf(study) || (count != 1 && count != 3)) {
    std::fprintf(stderr, "usage: qal_bench_reach [STEP DIRECTIONS]\n");
    return 2;
  }
  const Seconds seconds = BesideBatch(arm, study);
  Say("reach study", study, seconds, "the batch of Inverse alone");
  std::printf(", at most %.2f (%s)\n", kMostOfBatch,
              seconds.study <= kMostOfBatch * seconds.beside ? "met" : "NOT MET");
  if (count == 3) return 0;
  const ReachStudy small = CubicMetre(0.1, 40);
  Say("placement", small, BesideStudy(arm, PlacementOf(small), small),
      "the study of as many directions");
  ReachStudy approach = small;
  approach.line_m = 0.1;
  std::printf("\n");
  Say("study with lines of 0.1 m", small, BesideStudy(arm, approach, small),
      "the same study without");
  std::printf("\n");
  return 0;
}
