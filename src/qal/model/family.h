#ifndef QAL_MODEL_FAMILY_H_
#define QAL_MODEL_FAMILY_H_

/// @file
/// Which solver an arm's axes allow, and what keeps it from the quicker ones.

#include <array>
#include <vector>

#include "../../core/export.h"
#include "description.h"

namespace qal {

/// What arms that are solved in the same way have in common; see docs/your-arm.md.
enum class Family {
  kThreeParallelAxes,  ///< axes 2, 3 and 4 are parallel
  kSphericalWrist,     ///< axes 2 and 3 are parallel; 4, 5 and 6 meet in one point
  kOffsetWrist,        ///< axes 2 and 3 are parallel; 4 and 5 meet, 6 passes beside that point
  kGeneral,            ///< none of these: any six axes that aren't singular everywhere
};

/// "three parallel axes", "spherical wrist", "offset wrist", "no family"
QAL_API const char* FamilyName(Family family);

/// How far an arm's axes may be turned from those of a family's nearest member: half a degree.
constexpr double kFamilyAngleToleranceRad = 0.5 * 3.14159265358979323846 / 180;
/// How far an arm's axes may be from those of a family's nearest member.
constexpr double kFamilyDistanceToleranceM = 1.5e-3;

/// How far axes are from those of another arm at the most.
struct AxisDeviation {
  double angle_rad = 0;   ///< largest angle between an axis and the other arm's
  double distance_m = 0;  ///< largest distance, where an axis is nearest those before and after it
};

/// In place of an axis: the wrist's centre, where axes 4 and 5 meet.
constexpr int kWristCentre = 0;

/// A condition of a family that an arm doesn't meet, by more than the tolerance.
struct Deviation {
  /// Which condition, and what `amount` is.
  enum class Kind {
    kNotParallel,    ///< `amount`: from parallel [rad]
    kNotRightAngle,  ///< `amount`: from a right angle [rad]
    kNotMeeting,     ///< `amount`: apart [m]
    kTooClose,       ///< `amount`: apart [m]; a link needs 1e-3
  };
  Kind kind;      ///< which condition
  int axis_a;     ///< from 1
  int axis_b;     ///< from 1, or kWristCentre
  double amount;  ///< by how much [rad or m, as `kind` says]
};

/// How an arm compares with a family.
struct FamilyFit {
  Family family;  ///< which one
  /// Empty: the arm is within tolerance of a member. Distances are looked at once the angles are
  /// right: without right angles there is no place where axes meet.
  std::vector<Deviation> deviations;
  AxisDeviation nearest;  ///< from the nearest member, where the arm is within tolerance
};

/// Which families an arm is near, and what keeps it from the others.
struct FamilyReport {
  std::vector<FamilyFit> fits;  ///< all families but the general one, the quickest first
  /// Between axis j and the next [rad], 0 to pi / 2.
  std::array<double, 5> axis_angles_rad;
  std::array<double, 5> axis_distances_m;  ///< between axis j and the next, as lines
  /// There is a way of the tool that no joints make, wherever they are: a pose has no solution or
  /// infinitely many, and the arm can't be solved.
  bool singular_everywhere;

  /// The first family that the arm is within tolerance of; null when there is none.
  QAL_API const FamilyFit* Fitting() const;
};

/// Compares an arm's axes, with all joints at zero, with what the families require.
QAL_API FamilyReport ExamineFamilies(const ArmDescription& arm);

}  // namespace qal

#endif  // QAL_MODEL_FAMILY_H_
