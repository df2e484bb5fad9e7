#include <array>
#include <stdexcept>

#include "kinematics/ikfast.h"
#include "robustness/byte_input.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
using Numbers = std::array<double, 12>;  // position, then rotation

void Require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

// What holds for every answer of the reference arm's solver. Returns whether it has found any.
bool CheckAnswer(const Numbers& target, double tolerance) {
  ikfast::IkSolutionList<double> list;
  const bool found = ikfast::ComputeIk(target.data(), target.data() + 3, nullptr, list);
  Require(found == (list.GetNumSolutions() > 0) && list.GetNumSolutions() <= 8, "odd count");
  for (size_t i = 0; i < list.GetNumSolutions(); ++i) {
    Require(list.GetSolution(i).GetDOF() == 6, "not six joints");
    double joints[6];
    list.GetSolution(i).GetSolution(joints, nullptr);
    for (const double q : joints) Require(q > -kPi && q <= kPi, "a joint out of (-pi, pi]");
    Numbers pose;
    ikfast::ComputeFk(joints, pose.data(), pose.data() + 3);
    for (size_t k = 0; k < 12; ++k) {
      Require(std::fabs(pose[k] - target[k]) <= tolerance, "another pose");
    }
  }
  return found;
}

}  // namespace

// Asks the reference arm's solver for the pose of joints, singular ones and next to them too, for
// one a little off that, and for any target at all.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes bytes(data, data + size);
  ByteInput in(bytes);
  const auto little = [&] { return std::ldexp(in.Number(), -(in.Take<uint8_t>() % 64)); };
  const int kind = in.Take<uint8_t>() % 4;
  double joints[6];
  for (double& q : joints) {
    const auto where = in.Take<uint8_t>();
    q = where < 128 ? (where % 9 - 4) * kPi / 4 : in.Number();
    if (where % 2 == 1) q += little();
  }
  Numbers target;
  ikfast::ComputeFk(joints, target.data(), target.data() + 3);
  for (size_t k = 0; k < 12; ++k) {
    if (kind == (k < 3 ? 1 : 2)) target[k] += little();
    if (kind == 3) target[k] = in.Number();
  }
  // A matrix may be 1e-8 off a rotation; the answer is then as far off the matrix.
  const bool found = CheckAnswer(target, kind < 2 ? 1e-10 : 1e-7);
  const bool reachable = std::all_of(joints, joints + 6, IsOrdinary) && kind == 0;
  Require(found || !reachable, "no way back from a pose of joints");
  return 0;
}
