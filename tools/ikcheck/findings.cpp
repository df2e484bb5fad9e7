#include "findings.h"

#include <fmt/format.h>

namespace qal::ikcheck {

namespace {

constexpr bool kFault = true;
constexpr bool kNote = false;

// In the order of the enumeration.
constexpr FindingKind kKinds[] = {
    {"missing-functions", "exports ikfast::ComputeIk and ikfast::ComputeFk in double precision",
     kFault},
    {"plain-c-names",
     "ComputeIk and ComputeFk in namespace ikfast, not plain C names, which don't link", kFault},
    {"single-precision", "GetIkRealSize is 8: built for double", kFault},
    {"not-six-joints", "six joints", kFault},
    {"free-parameters", "no free parameters: none are passed", kFault},
    {"not-full-pose", "solves full poses: type 0x67000001", kFault},
    {"solution-layout",
     "a solution is handed over as six entries of 24 bytes: the interface's versions 60 to early "
     "0x1000004b",
     kFault},
    {"crash", "every call returns", kFault},
    {"exit", "does not end the process", kFault},
    {"hang", "every call comes to an end", kFault},
    {"exception", "throws nothing at finite poses and joints", kFault},
    {"prints", "writes nothing to standard output and standard error", kFault},
    {"writes-outside",
     "ComputeFk writes eetrans[3] and eerot[9] alone, and nothing is written to what is const",
     kFault},
    {"heap-damage", "writes only to memory that it has allocated, and frees that once", kFault},
    {"leaks-memory", "the same calls again and again take no more memory", kFault},
    {"floating-point-mode",
     "leaves rounding, denormal numbers and floating-point traps as they are; link it without "
     "-ffast-math, which changes them when it is loaded",
     kFault},
    {"changes-process",
     "leaves working directory, locale, signals and standard files as they are, and starts no "
     "processes that go on",
     kFault},
    {"forward-not-pose", "ComputeFk gives finite positions and rotation matrices", kFault},
    {"forward-stuck",
     "each joint moves the tool in its own way: most joint sets have a Jacobian of full rank",
     kFault},
    {"wrong-solution",
     "ComputeFk takes each solution back to its pose, within 1e-6 m and per matrix element, beside "
     "singularities 1e-4",
     kFault},
    {"non-finite-solution", "solutions are finite", kFault},
    {"free-joint",
     "no joint of a solution is free; in a singular branch only where it is right when read as 0",
     kFault},
    {"joint-out-of-range", "joints lie in (-pi, pi] rad", kFault},
    {"unsolved", "every pose that the arm reaches away from singularities is solved", kFault},
    {"missed-joints",
     "the joints that a pose was made from are among its solutions, away from singularities",
     kFault},
    {"appends-on-failure", "adds nothing to the list when it returns false", kFault},
    {"true-without-solution", "returns true only with a solution", kFault},
    {"accepts-non-finite", "refuses poses that are not finite", kFault},
    {"unrepeatable", "the same call gives the same answer to the last bit", kFault,
     Finding::kFloatingPoint},
    {"thread-unsafe", "calls from two threads give the answers of one, to the last bit", kFault,
     Finding::kUnrepeatable},
    {"other-arm", "ComputeFk gives the poses of the arm described", kFault},

    {"missing-queries", "answers GetNumJoints, GetIkRealSize and the other queries", kNote},
    {"length-unit", "lengths in metres: a reach of 0.05 to 20 m", kNote},
    {"loose-solution",
     "away from singularities solutions are good to 1e-9 m and per matrix element", kNote,
     Finding::kWrongSolution},
    {"loose-singular", "beside singularities solutions are good to 1e-6 m and per matrix element",
     kNote, Finding::kWrongSolution},
    {"free-singular",
     "no joint is free, not even in a singular branch; read as 0, as the library does, it is right "
     "here",
     kNote, Finding::kFreeJoint},
    {"throws-non-finite",
     "refuses what is not finite without an exception, which the library passes on: check poses "
     "for NaN and infinity before the call, or compile a generated solver with "
     "'-DIKFAST_ASSERT(b)='",
     kNote, Finding::kException},
    {"unsolved-singular", "singular poses and those near them are solved", kNote,
     Finding::kUnsolved},
    {"missed-singular",
     "at and near singularities, too, a pose's joints are found again as well as they are "
     "determined",
     kNote, Finding::kMissedJoints},
    {"duplicate-solution", "no solution is a duplicate of another", kNote},
    {"minus-pi", "a half turn is pi, not -pi or past pi by a rounding", kNote},
    {"accepts-non-rotation", "refuses matrices that are no rotations", kNote},
    {"clears-list", "leaves the entries that the list has beforehand", kNote},
    {"needs-empty-list", "gives the same answer when the list has entries beforehand", kNote,
     Finding::kUnrepeatable},
};
static_assert(sizeof(kKinds) / sizeof(kKinds[0]) == kFindingCount);

}  // namespace

const FindingKind& KindOf(Finding finding) { return kKinds[static_cast<size_t>(finding)]; }

std::string FindingsHelp() {
  std::string help = fmt::format(
      "Numbers of a case have 9 digits here; --json has all of them.\n\n"
      "A joint set is away from singularities, and its pose regular, when the smallest singular\n"
      "value of its numeric Jacobian is {:g} or more, with lengths as parts of the reach; so is a\n"
      "solution. What comes of a finding is no finding of its own.\n\n"
      "The largest error is that of all solutions, wrong ones, too, in m or per matrix element.\n\n"
      "Findings, with what is expected:\n",
      kRegularValue);
  for (const FindingKind& kind : kKinds) {
    help += fmt::format("  {} {}: {}\n", kind.fault ? "fault" : "note ", kind.name, kind.expected);
  }
  return help;
}

}  // namespace qal::ikcheck
