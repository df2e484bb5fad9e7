#ifndef QAL_TOOLS_IKCHECK_FINDINGS_H_
#define QAL_TOOLS_IKCHECK_FINDINGS_H_

#include <cstddef>
#include <string>

namespace qal::ikcheck {

/// Everything that a solver can be found to do. Order of the report.
enum class Finding {
  // Faults: what QAL_kinematics requires of a solver is not given, or it would move the arm
  // wrongly.
  kMissingFunctions,
  kPlainNames,
  kSinglePrecision,
  kNotSixJoints,
  kFreeParameters,
  kNotFullPose,
  kSolutionLayout,
  kCrash,
  kExit,
  kHang,
  kException,
  kPrints,
  kWritesOutside,
  kHeap,
  kLeaks,
  kFloatingPoint,
  kProcess,
  kForwardNotPose,
  kForwardStuck,
  kWrongSolution,
  kNonFiniteSolution,
  kFreeJoint,
  kOutOfRange,
  kUnsolved,
  kMissedJoints,
  kAppendsOnFailure,
  kTrueWithoutSolution,
  kAcceptsNonFinite,
  kUnrepeatable,
  kThreads,
  kOtherArm,
  // Notes: good to know; QAL_kinematics lives with it.
  kMissingQueries,
  kLengthUnit,
  kLooseSolution,
  kLooseSingular,
  kFreeSingular,
  kThrowsNonFinite,
  kUnsolvedSingular,
  kMissedSingular,
  kDuplicates,
  kMinusPi,
  kAcceptsNonRotation,
  kClearsList,
  kNeedsEmptyList,
  kCount
};

constexpr size_t kFindingCount = static_cast<size_t>(Finding::kCount);

struct FindingKind {
  const char* name;
  const char* expected;
  bool fault;
  Finding cause = Finding::kCount;  ///< where that is found, this comes of it and is left out
};

/// What a solver by others that can't be linked is to be compiled with.
constexpr char kRecipe[] =
    "compile its source again with -DIKFAST_NAMESPACE=ikfast -DIKFAST_NO_MAIN -UIKFAST_CLIBRARY "
    "'-DIKFAST_ASSERT(b)='; docs/your-arm.md, \"A generated solver by others\", has the whole "
    "recipe";

const FindingKind& KindOf(Finding finding);

/// All findings with what is expected, for the help text.
std::string FindingsHelp();

// What the findings mean by "reaches", "regular" and so on. Errors of a pose are in m and per
// matrix element.

/// A solution that is further off its pose than this is wrong: far above rounding, which is 1e-15;
/// far below what an arm can repeat.
constexpr double kWrongError = 1e-6;
/// The same from here on beside singularities, where generated solvers take a joint for singular
/// that isn't quite.
constexpr double kWrongSingularError = 1e-4;
/// What a solver in double precision stays below at regular poses.
constexpr double kLooseError = 1e-9;
/// A joint set is regular when the smallest singular value of its Jacobian (positions as parts of
/// the reach) is at least this: errors of the pose come back a thousand times larger at the most.
constexpr double kRegularValue = 1e-3;
/// Below it the joints are lost in the pose's own rounding: nothing says which ones to find again.
constexpr double kSingularValue = 1e-8;
/// Two solutions that differ less than this [rad] in every joint are the same. Roundings of one
/// solution differ less, any two solutions of a regular pose more.
constexpr double kSameRad = 1e-8;
/// A joint may pass pi by this much [rad]: rounding, and no joint range ends so near to it.
constexpr double kPastPiRad = 1e-9;

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_FINDINGS_H_
