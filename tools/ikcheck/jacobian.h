#ifndef QAL_TOOLS_IKCHECK_JACOBIAN_H_
#define QAL_TOOLS_IKCHECK_JACOBIAN_H_

#include <Eigen/Core>
#include <optional>
#include <vector>

#include "session.h"

namespace qal::ikcheck {

/// Tool velocity per joint velocity: rows 1 to 3 linear [parts of the arm's reach], rows 4 to 6
/// angular [rad], both in the base frame.
using Jacobian = Eigen::Matrix<double, 6, 6>;

/// By central differences of ComputeFk; good to 1e-10. NaN where that isn't finite.
Jacobian JacobianAt(Session& session, const Joints& joints);

/// How far the arm is from a singularity, 0: singular. NaN for a Jacobian that isn't finite.
double SmallestSingularValue(const Jacobian& jacobian);
inline double SmallestSingularValue(Session& session, const Joints& joints) {
  return SmallestSingularValue(JacobianAt(session, joints));
}

/// For a singular Jacobian where two of the axes have become one line, such as a wrist's axes 4 and
/// 6: the turn of the one against the other that leaves the tool where it is, as a unit vector.
/// Nothing when there is no such pair, or when the arm is singular in another way as well: the tool
/// then stays along no straight line of joint sets, or along several.
std::optional<Joints> SelfMotion(const Jacobian& jacobian);

/// A joint set that is singular, and the joint that leads away from there.
struct Singularity {
  Joints joints;
  size_t joint;
};

/// Singular joint sets of an arm that nothing is known about: one of the joints 2 to 5 is moved,
/// from `starts` random sets, to where the Jacobian's determinant changes its sign. Multiples of
/// 45 degrees are met exactly, others to about 1e-9 rad.
std::vector<Singularity> FindSingularities(Session& session, size_t starts);

}  // namespace qal::ikcheck

#endif  // QAL_TOOLS_IKCHECK_JACOBIAN_H_
