#include "operations.h"

#include <new>
#include <stdexcept>
#include <type_traits>

#include "kinematics/ikfunc.h"
#include "stand_ins.h"

namespace {

constexpr unsigned kStart = 1, kEnd = 2, kJoints = 4, kRoad = 8, kArray = 16;
// Written on failure too.
constexpr unsigned kFailing = 32;

void Require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

template <typename T>
bool SameBytes(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

bool SamePose(const RoadPoint& a, const RoadPoint& b) {
  return SameBytes(a.position, b.position) && SameBytes(a.orientation, b.orientation);
}

bool SameBits(const std::vector<RoadPoint>& a, const std::vector<RoadPoint>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const RoadPoint& p, const RoadPoint& q) { return ::SameBits(p, q); });
}

unsigned Changed(const Frame& a, const Frame& b) {
  return (SameBits(a.s, b.s) ? 0 : kStart) | (SameBits(a.e, b.e) ? 0 : kEnd) |
         (SameBytes(a.joints, b.joints) ? 0 : kJoints) | (SameBits(a.road, b.road) ? 0 : kRoad) |
         (SameBits(a.array, b.array) ? 0 : kArray);
}

// New joints are in the arm's range, and a solution that the solver gave, where it is ours.
void CheckJoints(const Frame& before, const Frame& after) {
  if (SameBits(before.s, after.s)) return;
  Require(after.s.ik_flag, "solved, but not flagged");
  bool given = byte_solver.reference_arm;
  for (const auto& q : byte_solver.given) given |= !std::memcmp(&q, after.s.jointpos, sizeof(q));
  Require(given, "joints that the solver hasn't given");
  for (const double q : after.s.jointpos) Require(!(std::fabs(q) > 2.967059678), "out of range");
}

void CheckSolved(const Frame& before, const Frame& after) {
  if (*after.result > 0) {
    CheckJoints(before, after);
    Require(SamePose(before.s, after.s), "the pose has changed");
  } else if (!SameBits(before.s, after.s)) {  // the shifted target
    const double zeros[6] = {};
    Require(SameBytes(after.s.jointpos, zeros) && !after.s.ik_flag, "joints of a failed solve");
  }
}

void CheckBounded(const Frame& before, const Frame& after) {
  CheckSolved(before, after);
  const double* reference = before.aliased ? before.s.jointpos : before.joints;
  for (int j = 0; j < 6 && *after.result > 0; ++j) {
    Require(!(std::fabs(after.s.jointpos[j] - reference[j]) > before.number), "beyond the bound");
  }
}

// A vector that has been written ends with the end point.
void CheckArrival(const Frame& before, const Frame& after) {
  if (*after.result == 0 || SameBits(before.road, after.road)) return;
  Require(!after.road.empty() && SameBits(after.road.back(), after.e), "not at the end point");
}

// An array has `whole` elements written, the end point last.
void CheckFilled(const Frame& /*before*/, const Frame& after) {
  const auto end = static_cast<size_t>(std::max(after.whole, 0));
  for (size_t i = end; i < after.array.size(); ++i) {
    Require(SameBits(after.array[i], Canary()), "written past the end");
  }
  if (*after.result > 0) Require(SamePose(after.array[end - 1], after.e), "not at the end point");
}

RoadPoint DrawPoint(ByteInput& in) {
  RoadPoint point;
  point.position = Pos{in.Number(), in.Number(), in.Number()};
  const auto kind = in.Take<uint8_t>();
  for (int j = 0; j < (kind % 8 < 4 ? 3 : 6); ++j) point.jointpos[j] = in.Number();
  point.ik_flag = kind % 2 == 1;
  point.orientation = Ori(1, 0, 0, 0);
  if (kind >= 200) point.orientation = Ori{in.Number(), in.Number(), in.Number(), in.Number()};
  if (kind % 4 >= 2) (void)Ikfunc::ArmFk(point);
  return point;
}

void Draw(ByteInput& in, Frame& frame) {
  const auto kind = in.Take<uint8_t>();
  byte_solver.reference_arm = kind % 4 == 3;
  frame.aliased = kind % 8 >= 4;
  frame.whole = in.Whole();
  frame.limit = in.Whole();
  if (frame.limit > 2 && frame.limit < 401) frame.limit *= 50;
  frame.number = in.Number();
  if (frame.whole % 4 != 0) frame.number = std::fabs(frame.number);
  for (double& joint : frame.joints) joint = in.Number();
  frame.s = DrawPoint(in);
  frame.e = kind < 64 ? DrawPoint(in) : frame.s;
  if (kind < 64) return;
  // A short way: a few centimetres or millimetres on an axis, and in rad in a joint.
  const auto little = [&] { return (kind < 100 ? 0.02 : 0.002) * in.Number(); };
  frame.e.position = frame.s.position + Pos{little(), little(), little()};
  for (double& joint : frame.e.jointpos) joint += little();
  if (kind >= 200) std::copy(frame.e.jointpos, frame.e.jointpos + 6, frame.joints);
}

// The kind of result is no part of the exported names: here it is one of the operation's.
template <typename Call>
Operation Row(const char* group, unsigned writes, void (*check)(const Frame&, const Frame&),
              const char* text, Call call) {
  constexpr bool kBool = std::is_same_v<decltype(call(std::declval<Frame&>())), bool>;
  return {group, writes, check, (kBool ? "bool " : "int ") + std::string(text), call};
}

void Check(const Operation& operation, const Frame& before, const Frame& after) {
  unsigned allowed = operation.writes & ~kByLibm;
  if (!after.result) {
    allowed &= kRoad | kArray;
  } else if (*after.result <= 0 && (allowed & kFailing) == 0) {
    allowed = 0;
  }
  Require((Changed(before, after) & ~allowed) == 0, "written what it should have left");
  if (!after.result) return;
  if (operation.check != nullptr) operation.check(before, after);
}

}  // namespace

bool SameBits(const RoadPoint& a, const RoadPoint& b) {
  return std::memcmp(&a, &b, 13 * sizeof(double)) == 0 && a.ik_flag == b.ik_flag;
}

bool SameFrames(const Frame& a, const Frame& b) {
  return Changed(a, b) == 0 && a.result == b.result && a.fault == b.fault;
}

RoadPoint Canary() {
  RoadPoint canary;
  canary.position.x = 12345.0;
  return canary;
}

// The rest is a call, which is also its name; one without a value ends in "1".
#define QAL_ROW(group, writes, check, ...) \
  Row(group, writes, check, #__VA_ARGS__, [](Frame& f) { return __VA_ARGS__; })

const std::vector<Operation>& Operations() {
  using I = Ikfunc;
  constexpr auto kAny = nullptr;
  static const std::vector<Operation> operations = {
      QAL_ROW("pose", kJoints | kByLibm, kAny, I::QuaternionToEulerAngle(f.s.orientation, f.joints),
              1),
      QAL_ROW("pose", kStart | kByLibm, kAny, I::EulerAngleToQuaternion(f.s.orientation, f.joints),
              1),
      QAL_ROW("pose", kJoints | kByLibm, kAny, I::QuaternionToEulerDis(f.s, f.e, f.joints), 1),
      QAL_ROW("pose", kStart | kByLibm, kAny, I::QuaternionAddEuler(f.s, f.joints), 1),
      QAL_ROW("pose", kJoints, kAny, f.joints[0] = I::SectionNum(f.number), 1),
      QAL_ROW("pose", 0, kAny, I::PositionCompare(f.s, f.e, f.Limit(0), f.Limit(1))),
      QAL_ROW("pose", 0, kAny, I::JointCompare(f.s, f.e, f.Limit(0))),
      QAL_ROW("pose", kStart, kAny, f.s.SectionRoadPoint(), 1),
      QAL_ROW("pose", 0, kAny, f.s.printfPoint(), 1),
      QAL_ROW("pose", 0, kAny, f.s == f.e),

      QAL_ROW("solve", kEnd, kAny, I::ArmFk(f.e.position, f.e.orientation, f.Reference())),
      QAL_ROW("solve", kStart, kAny, I::ArmFk(f.s)),
      QAL_ROW("solve", kStart | kFailing, CheckSolved, I::ArmIk(f.s, f.Reference())),
      QAL_ROW("solve", 0, kAny, I::ArmIk(f.s)),
      QAL_ROW("solve", 0, kAny, I::ChekcArmPointok(f.s)),
      QAL_ROW("solve", kStart, CheckJoints, I::ArmCheckAndCountSimilarIk(f.s)),
      QAL_ROW("solve", kStart, CheckBounded, I::ArmJointIk(f.s, f.Reference(), f.number)),
      QAL_ROW("solve", kStart | kByLibm, CheckSolved,
              I::ArmJointIk(f.aliased ? f.s : f.e, f.s, f.number)),
      QAL_ROW("solve", kStart, CheckBounded,
              I::ArmLineMoveIk(f.s, f.e.position, f.Reference(), f.number)),
      QAL_ROW("solve", kStart | kByLibm, CheckJoints,
              I::ArmIk(f.s, f.whole % 3, f.limit % 8, f.number, f.s)),
      QAL_ROW("solve", kEnd | kByLibm, kAny,
              I::ArmIk(f.s, f.whole % 3, f.limit % 8, f.number, f.e)),

      QAL_ROW("lines", 0, kAny, I::CountLineSize(f.s, f.e, f.whole)),
      QAL_ROW("lines", kArray | kFailing, CheckFilled,
              I::CountLineToBuffer(f.s, f.e, f.whole, f.array.data(), f.limit)),
      QAL_ROW("lines", kArray, CheckFilled,
              f.whole = I::CountLineToBuffer(f.s, f.e, f.number, f.array.data())),
      QAL_ROW("lines", kRoad | kFailing, CheckArrival,
              I::CountLineToBuffer(f.s, f.e, &f.road, f.whole)),
      QAL_ROW(
          "lines", kRoad | kFailing | kByLibm, kAny,
          I::CountSRunCurvelLineToBuffer(f.s, f.e, &f.road, 1, f.Limit(0), f.Limit(1), f.limit)),

      QAL_ROW("joints", 0, kAny, I::CountCurvelLineSize(f.s, f.e, f.whole)),
      QAL_ROW("joints", kArray, CheckFilled,
              I::CountCurveLineToBuffer(f.s, f.e, f.whole, f.array.data())),
      QAL_ROW("joints", kRoad, CheckArrival,
              I::CountCurvelLineToBuffer(f.s, f.e, &f.road, f.whole)),
      QAL_ROW("joints", 0, kAny, I::CountRunCurvelLineSize(f.s, f.e, f.whole, f.limit)),
      QAL_ROW("joints", kRoad, CheckArrival,
              I::CountRunCurvelLineToBuffer(f.s, f.e, &f.road, f.whole, f.limit)),
  };
  return operations;
}

Frame Perform(const Operation& operation, const Bytes& bytes, int most_queries, long fail_at) {
  ByteInput in(bytes);
  Frame frame{};
  frame.road.assign(2, Canary());
  // Room for all that the solver's patience allows, and something behind it.
  const size_t room = static_cast<size_t>(most_queries) + 2;
  if (operation.writes & kArray) frame.array.assign(room, Canary());
  byte_solver = {&in, most_queries, false, {}};
  try {
    Draw(in, frame);
  } catch (const SolverFault&) {
  }  // zeros for the rest
  const Frame before = frame;
  byte_solver.queries_left = most_queries;
  allocations.fail_at = fail_at == 0 ? 0 : allocations.made + fail_at;
  try {
    frame.result = operation.call(frame);
  } catch (const SolverFault&) {
  } catch (const std::bad_alloc&) {
  }
  frame.starved = fail_at != 0 && allocations.fail_at == 0;
  allocations.fail_at = 0;
  try {
    Check(operation, before, frame);
  } catch (const std::logic_error& fault) {
    frame.fault = operation.name + ": " + fault.what();
  }
  byte_solver = {};  // nothing stays allocated
  return frame;
}
