#include "robustness/byte_input.h"
#include "solver/answer.h"

// Queries the reference arm's solver for the pose of joints, singular ones and next to them too,
// for one a little off that, and for any target at all.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes bytes(data, data + size);
  ByteInput in(bytes);
  const auto little = [&] { return std::ldexp(in.Number(), -(in.Take<uint8_t>() % 64)); };
  const int kind = in.Take<uint8_t>() % 4;
  Joints joints;
  for (double& q : joints) {
    const auto where = in.Take<uint8_t>();
    q = where < 128 ? (where % 9 - 4) * kPi / 4 : in.Number();
    if (where % 2 == 1) q += little();
  }
  Pose target = Forward(joints);
  for (size_t k = 0; k < 12; ++k) {
    if (kind == (k < 3 ? 1 : 2)) target[k] += little();
    if (kind == 3) target[k] = in.Number();
  }
  // A matrix may be 1e-8 off a rotation; the answer is then as far off the matrix.
  const bool found = !Solve(target, kind < 2 ? 1e-10 : 1e-7).empty();
  if (kind == 0 && !found && std::all_of(joints.begin(), joints.end(), IsOrdinary)) {
    throw std::logic_error("no way back from a pose of joints");
  }
  return 0;
}
