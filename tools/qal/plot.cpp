#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "../../io/error.h"
#include "../../io/files.h"
#include "../../io/plot_svg.h"
#include "../../io/report_motion.h"
#include "../../io/suggestion.h"
#include "../common/progress.h"
#include "../common/values.h"
#include "commands.h"
#include "limit_options.h"
#include "report_option.h"
#include "trajectory_input.h"
#include "units.h"

namespace qal::tools {

using namespace io;

namespace {

constexpr int kDefaultWidth = 760;

struct PlotArguments {
  TrajectoryInput in;
  SharedArm arm;
  LimitOptions limits;
  Units units;
  std::string out = "-";
  std::vector<std::string> only;
  int width_px = kDefaultWidth;
};

std::vector<std::string> PanelsOf(const PlotArguments& a) {
  const std::vector<std::string> names = SplitWords(a.only);
  for (const std::string& name : names) {
    if (std::find(kPanelNames.begin(), kPanelNames.end(), name) != kPanelNames.end()) continue;
    throw UsageError(
        fmt::format("--only: no plot is called '{}'; {}", name, SuggestionText(name, kPanelNames)));
  }
  return names.empty() ? kPanelNames : names;
}

void RunPlot(const PlotArguments& a) {
  const std::vector<std::string> names = PanelsOf(a);
  if (a.out != "-") ExpectOtherFile(a.out, {a.in.path()});
  const LoadedArm loaded = a.arm->Load();
  const Findings findings =
      FindingsOf(loaded, a.in.Read(loaded.arm), a.limits.Read(loaded.arm), a.limits.strict());
  const std::string title = FileTitle(a.in.name());
  ExpectOrder(title, findings.trajectory);
  const FileTrajectory& samples = findings.trajectory.samples;
  std::string svg;
  {
    const LateProgress progress;
    const MotionSeries series = SeriesOf(loaded.arm, samples, [&](size_t done) {
      progress.Show(fmt::format("qal plot: {} of {} samples", done, samples.size()));
    });
    // One sample alone still needs an axis.
    const double begin_s = samples.front().time_s;
    const double end_s = std::max(samples.back().time_s, begin_s + 1e-3);
    svg = PlotSvg({title,
                   {ArmHeading(loaded), VerdictHeadline(findings)},
                   begin_s,
                   end_s,
                   series.time_s,
                   io::PanelsOf(findings, series, names, a.units.text()),
                   a.width_px});
  }
  if (a.out == "-") return WriteStandardOutput(svg);
  WriteFile(a.out, svg);
}

}  // namespace

void AddPlot(CLI::App& app, const SharedArm& arm) {
  const auto arguments = std::make_shared<PlotArguments>();
  CLI::App* plot =
      app.add_subcommand("plot", "A trajectory file's curves as a picture, for papers and issues");
  arguments->in.AddTo(*plot, "FILE");
  TakesFile(
      plot->add_option("-o,--out", arguments->out,
                       "SVG file to write, whole or not at all; -: standard output (the default)"),
      "*.svg");
  TakesListOf(plot->add_option("--only", arguments->only,
                               fmt::format("these plots alone, in this order, of\n{}",
                                           fmt::join(kPanelNames, ", "))),
              kPanelNames)
      ->type_name("A,B,..")
      ->expected(1)
      ->allow_extra_args(false);
  plot->add_option("--width", arguments->width_px,
                   fmt::format("width of the picture [px], {} to {}", kNarrowestPlot, kWidestPlot))
      ->type_name("N")
      ->check(CLI::Range(kNarrowestPlot, kWidestPlot).description(""))
      ->capture_default_str();
  arguments->arm = arm;
  arm->AddTo(*plot);
  arguments->units.AddTo(*plot);
  arguments->limits.AddTo(*plot);
  plot->footer(
      "The curves are those of the report, and what is marked is the verdict of qal verify, by "
      "the\n"
      "same options: a circle where a limit is exceeded, a diamond where it is one that is but\n"
      "assumed. docs/plot.md says what each plot shows. Limits are given in the units in "
      "brackets,\n"
      "--deg and --mm are for the picture.\n"
      "Exit status: 0 when the picture is written, whatever the verdict.\n"
      "Example: qal plot planned.csv -o planned.svg --deg --only angle,velocity,tool");
  plot->callback([arguments] { RunPlot(*arguments); });
}

}  // namespace qal::tools
