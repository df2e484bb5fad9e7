#include <fmt/format.h>
#include <qal/model/chain.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "../../io/error.h"
#include "../../io/error_text.h"
#include "../../io/files.h"
#include "../../io/numbers.h"
#include "../../io/reach_study.h"
#include "../../io/reach_vti.h"
#include "../common/values.h"
#include "commands.h"
#include "number_option.h"
#include "reach_placement.h"
#include "reach_run.h"
#include "reach_study_options.h"
#include "reach_summary.h"
#include "units.h"

namespace qal::tools {

using namespace io;

namespace {

struct ReachArguments {
  ReachStudyOptions study;
  NumberOption tool, threads;
  std::string shard = "1/1";
  std::string out;
  std::string vti;
  std::vector<std::string> files;  // of merge
  bool resume = false;
  bool json = false;
  SharedArm arm;
  Units units;
};

LoadedArm ArmOf(const ReachArguments& a) {
  LoadedArm loaded = a.arm->Load();
  if (!a.tool.given()) return loaded;
  const std::vector<double> frame = a.tool.Read(6, "6 numbers: X Y Z ROLL PITCH YAW");
  Transform tool = FromRollPitchYaw(
      {a.units.Radians(frame[3]), a.units.Radians(frame[4]), a.units.Radians(frame[5])});
  tool.position = {a.units.Metres(frame[0]), a.units.Metres(frame[1]), a.units.Metres(frame[2])};
  const Result<Arm> with_tool = loaded.arm.WithTool(tool);
  if (!with_tool) throw UsageError("--tool: " + ErrorText(with_tool.error(), a.units.text()));
  loaded.arm = *with_tool;
  return loaded;
}

struct CellRange {
  size_t first;
  size_t last;
};

CellRange ShardOf(const std::string& text, size_t cells) {
  constexpr int kMostShards = 1000000;
  const size_t slash = std::min(text.find('/'), text.size());
  const std::string count = slash < text.size() ? text.substr(slash + 1) : "";
  const int shards = ParseWhole(count, "--shard I/N, N", 1, kMostShards);
  const int shard = ParseWhole(text.substr(0, slash), "--shard I/N, I", 1, shards);
  const auto all = static_cast<size_t>(shards);
  const auto end = static_cast<size_t>(shard);
  return {cells * (end - 1) / all, cells * end / all};
}

// Cells, what their file is made from, and its bytes.
void ExpectMemory(size_t cells) {
  constexpr double kBytesOfCell = 400;
  const double machine =
      static_cast<double>(::sysconf(_SC_PHYS_PAGES)) * static_cast<double>(::sysconf(_SC_PAGESIZE));
  const double needed = static_cast<double>(cells) * kBytesOfCell;
  if (needed <= machine) return;
  throw UsageError(fmt::format(
      "{} cells need about {:.1f} GB of memory, the machine has {:.1f}; take a larger --step, or "
      "cut the study with --shard",
      cells, needed / 1e9, machine / 1e9));
}

// What there is besides the HDF5 file.
void WriteOthers(const ReachArguments& a, const ReachFile& file, const PlacementPoses& poses) {
  if (!a.vti.empty()) WriteFile(a.vti, ReachVti(file));
  if (file.study.poses.empty()) {
    WriteStandardOutput(a.json ? ReachSummaryJson(file).dump(2) + '\n'
                               : ReachSummaryTable(file, a.units));
  } else {
    WriteStandardOutput(a.json ? PlacementJson(file, poses) : PlacementTable(file, poses, a.units));
  }
}

void ExpectTwoFiles(const ReachArguments& a) {
  if (a.vti.empty() || !SameFile(a.vti, a.out)) return;
  throw UsageError(fmt::format("--vti and -o are both {}", a.out));
}

void RunStudy(const ReachArguments& a) {
  if (a.out.empty()) throw UsageError("-o is missing: the file to write");
  ExpectTwoFiles(a);
  PlacementPoses poses;
  const ReachStudy study = a.study.Read(a.units, poses);
  const Result<ReachGrid> grid = GridOf(study);
  if (!grid) throw UsageError(ErrorText(grid.error(), a.units.text()));
  const auto [first, last] = ShardOf(a.shard, grid->cells());
  ExpectMemory(last - first);
  if (!a.vti.empty() && last - first < grid->cells()) {
    throw UsageError("--vti is of a whole study; give it to qal reach merge");
  }
  const LoadedArm loaded = ArmOf(a);
  const unsigned threads =
      a.threads.given() ? static_cast<unsigned>(a.threads.ReadWhole(1, 1024)) : 0;
  const ReachFile file = RunReach({loaded.arm, ReachStudyJson(loaded, study).dump(), study, first,
                                   last, a.out, a.resume, threads});
  if (!study.poses.empty()) poses.missed = MissedPoses(loaded.arm, file);
  WriteOthers(a, file, poses);
}

void RunMerge(const ReachArguments& a) {
  ExpectTwoFiles(a);
  std::vector<ReachFile> files;
  for (const std::string& path : a.files) files.push_back(ReadReachFile(path));
  const ReachFile whole = MergeReachFiles(std::move(files), a.files);
  ExpectOwnOutput(a.out, whole.description);
  WriteReachFile(a.out, whole);
  WriteOthers(a, whole, {});
}

void AddMerge(CLI::App& reach) {
  const auto arguments = std::make_shared<ReachArguments>();
  CLI::App* merge = reach.add_subcommand("merge", "Make one file of all shards of a study");
  TakesFile(merge->add_option("FILE", arguments->files, "the shards' files, in any order"), "*.h5")
      ->required();
  TakesFile(merge->add_option("-o,--out", arguments->out,
                              "HDF5 file to write, with the bytes of a study that was not cut"),
            "*.h5")
      ->required();
  TakesFile(merge->add_option("--vti", arguments->vti,
                              "also write the cells as VTK's ImageData, for ParaView"),
            "*.vti");
  merge->add_flag("--json", arguments->json, "JSON instead of the table, always in rad and m");
  arguments->units.AddTo(*merge);
  merge->footer(
      "Exit status: 0 done, 2 when cells are missing, or a file is of another study.\n"
      "Example: qal reach merge reach-1.h5 reach-2.h5 -o reach.h5");
  merge->callback([arguments] { RunMerge(*arguments); });
}

}  // namespace

void AddReach(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<ReachArguments>();
  CLI::App* reach = app.add_subcommand(
      "reach",
      "Reach study: from which directions the tool reaches the cells of a box, or from which\n"
      "positions of its base the arm reaches the poses of a file");
  arguments->study.AddTo(*reach);
  arguments->tool.AddTo(*reach, "--tool", "X Y Z R P Y",
                        "tool frame in the arm's tip frame, in place of the arm's own:\n"
                        "position [m; --mm: mm], roll pitch yaw [rad; --deg: deg]");
  TakesFile(reach->add_option("-o,--out", arguments->out, "HDF5 file to write"), "*.h5");
  TakesFile(reach->add_option("--vti", arguments->vti,
                              "also write the cells as VTK's ImageData, for ParaView"),
            "*.vti");
  reach
      ->add_option("--shard", arguments->shard,
                   "part I of N of the study alone; qal reach merge makes one of all")
      ->type_name("I/N");
  reach->add_flag("--resume", arguments->resume,
                  "go on from OUT.part, what a stopped study has left");
  arguments->threads.AddTo(*reach, "--threads", "N",
                           "threads (default: as many as the processor runs at once)");
  reach->add_flag("--json", arguments->json, "JSON instead of the table, always in rad and m");
  arguments->arm = arm;
  arm->AddTo(*reach);
  arguments->units.AddTo(*reach);
  AddMerge(*reach);
  reach->require_subcommand(0, 0);  // it works without one as well
  reach->footer(
      "docs/reach.md says what a study is and what the file holds. Ctrl-C leaves OUT.part, which\n"
      "--resume goes on from.\n"
      "Exit status: 0 done, 1 when the solver fails, 2 bad usage.\n"
      "Example: qal reach --box 0 -0.5 0 1 0.5 1 --step 0.05 --directions 100 -o reach.h5\n"
      "Example: qal reach --poses poses.csv --box -1 -1 0 1 1 0 --step 0.05 -o place.h5");
  reach->callback([arguments, reach] {
    if (reach->get_subcommands().empty()) RunStudy(*arguments);
  });
}

}  // namespace qal::tools
