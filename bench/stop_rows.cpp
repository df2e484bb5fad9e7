#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "../src/qal/plan/played_run.h"
#include "rows_main.h"
#include "seeded_programs.h"

// Writes the rows that stop_optimum.py reads: stop_rows COUNT [FILE...], stops of programs of the
// reference arm and of those of the files in turn, from seeded moments, within a section of limits.

namespace qal::bench {
namespace {

using Json = nlohmann::json;

// A stop by how it goes on between two samples.
struct PlayedStop {
  PathMoment begin = {};
  double duration_s = 0;
  double end = 0;
  std::vector<double> accelerations = {};  // at even parts of it
};

PlayedStop Played(Player& player, const PlayedRun& run, double cycle_s) {
  constexpr int kLooks = 64;
  PlayedStop stop;
  stop.begin = player.Ahead(0).path;
  std::vector<double> at;
  bool moves = true;
  player.SetPace(0);
  const size_t block = player.block();
  while (moves && !player.stands() && player.block() == block) {
    player.Decide();
    for (int i = 0; i < kLooks && moves; ++i) {
      const PlayMoment moment = player.Ahead(cycle_s * i / kLooks);
      moves = moment.pace > 0 && moment.clock_s < run.law.duration_s();
      at.push_back(moment.path.acceleration);
      stop.end = std::min(moment.path.s, run.path.end());
    }
    player.Advance();
  }
  stop.duration_s = static_cast<double>(at.size() - 1) * cycle_s / kLooks;
  constexpr size_t kParts = 100;
  for (size_t i = 0; i < kParts; ++i) {
    stop.accelerations.push_back(at[(at.size() - 1) * i / kParts]);
  }
  stop.accelerations.push_back(0);
  return stop;
}

Json RatesOf(const PlayedRun& run, const PathSection& section, const std::vector<double>& places) {
  Json rates;
  const auto limit = [](Json& rate, double velocity, double acceleration, double jerk) {
    rate["velocity"] = velocity;
    rate["acceleration"] = acceleration;
    rate["jerk"] = jerk;
  };
  const auto add = [](Json& rate, const auto& d1, const auto& d2, const auto& d3) {
    rate["d1"].push_back(d1);
    rate["d2"].push_back(d2);
    rate["d3"].push_back(d3);
  };
  const auto numbers = [](const Vector3& v) { return Json{v[0], v[1], v[2]}; };
  for (const double s : places) {
    const PathPoint q = run.path.joints.At(s);
    for (size_t j = 0; j < 6; ++j) add(rates[j], q.first[j], q.second[j], q.third[j]);
    if (section.tool == nullptr) continue;
    const ToolRates tool = section.ToolAt(s);
    add(rates[6], numbers(tool.velocity), numbers(tool.acceleration), numbers(tool.jerk));
    add(rates[7], numbers(tool.turn), numbers(tool.turn_acceleration), numbers(tool.turn_jerk));
  }
  for (size_t j = 0; j < 6; ++j) {
    limit(rates[j], section.joint_velocity[j], section.joint_acceleration[j],
          section.joint_jerk[j]);
  }
  if (section.tool == nullptr) return rates;
  const ToolLimits& tool = section.tool_limits;
  limit(rates[6], tool.speed, tool.acceleration, tool.jerk);
  limit(rates[7], tool.turn_speed, tool.turn_acceleration, tool.turn_jerk);
  return rates;
}

// A row, if the stop is in one section.
bool WriteRow(const ProgramMotion& motion, double from_s, const std::string& name) {
  const std::vector<PlayedRun> runs = RunsOf(motion);
  Player player = PlayerOf(runs, motion, from_s);
  if (player.stands()) return false;
  const PlayedRun& run = runs[player.block()];
  const PlayedStop stop = Played(player, run, CycleOf(motion));
  const double way = stop.end - stop.begin.s;
  constexpr double kLeastM = 1e-7;
  if (!(way > kLeastM)) return false;
  // The shortest stop may go a little farther.
  constexpr double kFarther = 0.3;
  const double end = std::min(run.path.end(), stop.end + kFarther * way);
  const size_t section = run.path.SectionAt(stop.begin.s);
  if (run.path.SectionAt(end) != section) return false;
  std::vector<double> places;
  constexpr int kPlaces = 600;
  for (int i = 0; i <= kPlaces; ++i) {
    places.push_back(stop.begin.s + (end - stop.begin.s) * i / kPlaces);
  }
  const Json row = {{"name", name},
                    {"stop_s", stop.duration_s},
                    {"start",
                     {{"s", stop.begin.s},
                      {"speed", stop.begin.speed},
                      {"acceleration", stop.begin.acceleration}}},
                    {"acceleration", stop.accelerations},
                    {"s", places},
                    {"rates", RatesOf(run, run.path.sections[section], places)}};
  std::printf("%s\n", row.dump().c_str());
  return true;
}

int WriteRows(int count, const std::vector<Arm>& arms) {
  constexpr int kOfProgram = 3;
  constexpr double kLongestS = 60;
  unsigned seed = 20261125;
  for (int written = 0; written < count; ++seed) {
    const Arm& arm = arms[seed % arms.size()];
    const auto motion = PlanProgram(arm, SeededPrograms(arm, seed).Next().program);
    if (!motion || !(motion->duration_s() > 0 && motion->duration_s() < kLongestS)) continue;
    Random random(seed);
    for (int i = 0; i < kOfProgram && written < count; ++i) {
      const double from_s = random(0, motion->duration_s());
      const std::string name =
          arm.name() + " seed " + std::to_string(seed) + " at " + std::to_string(from_s) + " s";
      written += WriteRow(*motion, from_s, name) ? 1 : 0;
    }
  }
  return 0;
}

}  // namespace
}  // namespace qal::bench

int main(int argc, char** argv) { return qal::bench::RowsMain(argc, argv, qal::bench::WriteRows); }
