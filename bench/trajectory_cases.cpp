#include "case.h"
#include "plans.h"
#include "quiet.h"

namespace qal::bench {

namespace {

// Settings that give the workload's lines and moves about 500 waypoints each.
constexpr int kRampSpeed = 10;
constexpr int kFixedSpeed = 5;  // 0.2 mm a step
constexpr size_t kFixedWaypoints = 490;
constexpr float kPhaseJerk = 0.0031f;
constexpr size_t kPhaseWaypoints = 501;
constexpr int kJointFixedSpeed = 12;
constexpr int kJointRampSpeed = 24;

// A case that plans every one of `moves`; `plan` returns how many waypoints it made.
template <typename Plan>
Case EachMove(const char* name, const std::vector<Move>& moves, size_t items, Plan plan) {
  return {name, Kind::kOurs, items, [&moves, plan] {
            size_t waypoints = 0;
            for (const Move& move : moves) waypoints += plan(move);
            return waypoints;
          }};
}

size_t Counted(const Move& line) {
  return Count(Ikfunc::CountLineSize(line.start, line.end, kFixedSpeed));
}

size_t LineByCount(const Move& line) {
  std::vector<RoadPoint> array(kFixedWaypoints);
  const bool done =
      Ikfunc::CountLineToBuffer(line.start, line.end, kFixedWaypoints, array.data(), kFixedSpeed);
  return done ? array.size() : 0;
}

size_t FixedStepMove(const Move& move) {
  const int count = Ikfunc::CountCurvelLineSize(move.start, move.end, kJointFixedSpeed);
  std::vector<RoadPoint> array(Count(count));
  const bool done = Ikfunc::CountCurveLineToBuffer(move.start, move.end, count, array.data());
  return done ? array.size() : 0;
}

std::vector<RoadPoint> PlanAll(const std::vector<Move>& moves) {
  const Quiet quiet;
  std::vector<RoadPoint> all;
  std::vector<RoadPoint> road;
  for (const Move& move : moves) {
    (void)Ikfunc::CountRunCurvelLineToBuffer(move.start, move.end, &road, kRunSpeed,
                                             kRunAcceleration);
    all.insert(all.end(), road.begin(), road.end());
  }
  return all;
}

// What a trajectory can't do without: the pose of every waypoint's joints, which being close
// together take less time than random ones.
size_t PosesAlone(const std::vector<RoadPoint>& waypoints) {
  size_t done = 0;
  double joints[6];
  Pos position;
  Ori orientation;
  for (const RoadPoint& waypoint : waypoints) {
    std::copy(waypoint.jointpos, waypoint.jointpos + 6, joints);
    done += Ikfunc::ArmFk(position, orientation, joints) ? 1 : 0;
  }
  return done;
}

Case RampedLines(const std::vector<Move>& lines) {
  return EachMove("line/ramped", lines, lines.size() * kLineWaypoints,
                  [](const Move& line) { return RampedLine(line, kRampSpeed); });
}

void AddLines(const std::vector<Move>& lines, Cases& cases) {
  const size_t fixed = lines.size() * kFixedWaypoints;
  cases.push_back(EachMove("line/count", lines, fixed, Counted));
  cases.push_back(EachMove("line/by count", lines, fixed, LineByCount));
  cases.push_back(EachMove("line/by precision", lines, fixed, [](const Move& line) {
    return PrecisionLine(line, kFixedWaypoints, 1.0);
  }));
  cases.push_back(RampedLines(lines));
  cases.push_back(EachMove("line/S-curve", lines, lines.size() * kPhaseWaypoints,
                           [](const Move& line) { return FirstPhase(line, kPhaseJerk); }));
}

void AddJointMoves(const std::vector<Move>& moves, Cases& cases) {
  size_t fixed = 0;
  size_t ramped = 0;
  size_t cycles = 0;
  for (const Move& move : moves) {
    fixed += Count(Ikfunc::CountCurvelLineSize(move.start, move.end, kJointFixedSpeed));
    ramped += JointRamp(move, kJointRampSpeed);
    cycles += RunCycles(move);
  }
  cases.push_back(EachMove("joint/fixed step", moves, fixed, FixedStepMove));
  cases.push_back(EachMove("joint/ramped", moves, ramped,
                           [](const Move& move) { return JointRamp(move, kJointRampSpeed); }));
  cases.push_back(EachMove("joint/trapezoid", moves, cycles, Trapezoid));
  cases.push_back({"joint/ArmFk alone", Kind::kOurs, cycles,
                   [waypoints = PlanAll(moves)] { return PosesAlone(waypoints); }});
}

}  // namespace

void AddTrajectories(const Workload& work, Cases& cases) {
  AddLines(work.lines, cases);
  AddJointMoves(work.moves, cases);
  Case lines = RampedLines(work.lines);
  lines.name = "threads/ramped line";
  lines.kind = Kind::kThreads;
  cases.push_back(std::move(lines));
}

}  // namespace qal::bench
