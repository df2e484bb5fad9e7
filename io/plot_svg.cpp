#include "plot_svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "plot_frame.h"
#include "plot_text.h"
#include "svg.h"

namespace qal::io {

namespace {

constexpr const char* kSolid = "none";

// How the joints are told apart, also without colours. M. Okabe and K. Ito, "Color universal
// design", 2002: colours that the colour-blind tell apart; black is for what is no joint's.
struct Stroke {
  const char* color;
  const char* dashes;
};
constexpr std::array<Stroke, 6> kJointStrokes = {{{"#0072b2", kSolid},
                                                  {"#d55e00", "7 2.5"},
                                                  {"#009e73", "2 2"},
                                                  {"#cc79a7", "9 2.5 2 2.5"},
                                                  {"#e69f00", "4 1.5"},
                                                  {"#56b4e9", "12 2.5 2 2 2 2.5"}}};
constexpr Stroke kOther = {"#000", kSolid};
constexpr const char* kMarkColor = "#b00020";

Stroke StrokeOf(int joint) {
  return joint < 0 ? kOther : kJointStrokes[static_cast<size_t>(joint)];
}

constexpr double kLeft = 62;    // [px] of a panel: room for the numbers
constexpr double kRight = 14;   // [px]
constexpr double kPanel = 132;  // [px] high
constexpr double kGap = 34;     // [px] between panels, for a title
constexpr int kWide = 640;      // [px] where limits fit beside the titles
constexpr double kLine = 16;    // [px] of text

class PlotWriter {
 public:
  explicit PlotWriter(const Plot& plot)
      : plot_(plot),
        right_(plot.width_px - kRight),
        height_(static_cast<int>(Top(plot.panels.size()) - Gap() + 2.5 * kLine)),
        svg_(plot.width_px, height_, plot.title) {}

  std::string Write() {
    constexpr double kTitle = 11.0 / 15;  // of its letters, the size of the others
    svg_.Text({kLeft, 22}, Svg::Shortened(plot_.title, kTitle * (right_ - kLeft)),
              {{"font-size", "15"}, {"font-weight", "bold"}});
    for (size_t i = 0; i < plot_.lines.size(); ++i) {
      svg_.Text({kLeft, 40 + kLine * static_cast<double>(i)},
                Svg::Shortened(plot_.lines[i], right_ - kLeft), {{"fill", "#444"}});
    }
    if (HasJoints()) WriteLegend();
    for (size_t i = 0; i < plot_.panels.size(); ++i) WritePanel(i);
    svg_.Text({(kLeft + right_) / 2, height_ - 6.0}, "time [s]", {{"text-anchor", "middle"}});
    return svg_.Finish();
  }

 private:
  bool HasJoints() const {
    return std::any_of(plot_.panels.begin(), plot_.panels.end(),
                       [](const PlotPanel& panel) { return panel.curves.size() > 1; });
  }

  // The legend's joints in a row.
  int Columns() const {
    constexpr double kEntry = 82;  // [px]
    const double room = (right_ - kLeft) / kEntry;
    return room >= 6 ? 6 : 3;
  }
  double LegendTop() const { return 34 + kLine * static_cast<double>(plot_.lines.size()); }
  double Gap() const { return plot_.width_px < kWide ? kGap + kLine : kGap; }
  double Top(size_t panel) const {
    const int rows = HasJoints() ? (6 + Columns() - 1) / Columns() : 0;
    return LegendTop() + kLine * rows + Gap() + static_cast<double>(panel) * (kPanel + Gap());
  }

  void WriteLegend() {
    for (int joint = 0; joint < 6; ++joint) {
      const int row = joint / Columns();
      const double x = kLeft + (right_ - kLeft) / Columns() * (joint % Columns());
      const double y = LegendTop() + kLine * (row + 0.5);
      const auto& [color, dashes] = StrokeOf(joint);
      svg_.Line({x, y}, {x + 30, y},
                {{"stroke", color}, {"stroke-width", "1.8"}, {"stroke-dasharray", dashes}});
      svg_.Text({x + 36, y + 4}, fmt::format("joint {}", joint + 1));
    }
  }

  void WritePanel(size_t index) {
    const PlotPanel& panel = plot_.panels[index];
    const double top = Top(index);
    const PlotScale times = {plot_.begin_s, plot_.end_s, kLeft, right_};
    const PlotScale values = ScaleOf(panel, top + kPanel, top);
    const bool wide = plot_.width_px >= kWide;
    const std::string limits = LimitsText(panel);
    svg_.Text({kLeft, top - (wide || limits.empty() ? 7 : 7 + kLine)},
              fmt::format("{} [{}]", panel.title, panel.unit), {{"font-weight", "bold"}});
    if (!limits.empty()) {
      svg_.Text({wide ? right_ : kLeft, top - 7}, Svg::Shortened(limits, right_ - kLeft),
                {{"text-anchor", wide ? "end" : "start"}, {"fill", "#444"}});
    }
    WriteGrid(times, values, index + 1 == plot_.panels.size());
    WriteLimits(panel, values);
    for (const PlotCurve& curve : panel.curves) WriteCurve(panel, curve, times, values);
    WriteMarks(panel, times, values);
  }

  void WriteGrid(const PlotScale& times, const PlotScale& values, bool last) {
    constexpr double kPerTick = 80;  // [px]
    const auto most = std::max(2, static_cast<int>((right_ - kLeft) / kPerTick));
    for (const auto& [time, text] : TicksOf(times.low, times.high, most)) {
      const double x = times.At(time);
      svg_.Line({x, values.to}, {x, values.from}, {{"stroke", "#e4e4e4"}});
      if (last) svg_.Text({x, values.from + 15}, text, {{"text-anchor", "middle"}});
    }
    for (const auto& [value, text] : TicksOf(values.low, values.high, 6)) {
      const double y = values.At(value);
      svg_.Line({kLeft, y}, {right_, y}, {{"stroke", value == 0 ? "#aaa" : "#e4e4e4"}});
      svg_.Text({kLeft - 6, y + 4}, text, {{"text-anchor", "end"}});
    }
    svg_.Add("rect", {{"x", Svg::Number(kLeft)},
                      {"y", Svg::Number(values.to)},
                      {"width", Svg::Number(right_ - kLeft)},
                      {"height", Svg::Number(kPanel)},
                      {"fill", "none"},
                      {"stroke", "#666"}});
  }

  void WriteLimits(const PlotPanel& panel, const PlotScale& values) {
    for (const PlotLimit& limit : panel.limits) {
      if (limit.value < values.low || limit.value > values.high) continue;
      const double y = values.At(limit.value);
      svg_.Line({kLeft, y}, {right_, y},
                {{"stroke", "#555"}, {"stroke-dasharray", limit.assumed ? "1 3" : "5 3"}});
    }
  }

  void WriteCurve(const PlotPanel& panel, const PlotCurve& curve, const PlotScale& times,
                  const PlotScale& values) {
    std::vector<std::vector<PlotPoint>> parts(1);
    double before_s = plot_.begin_s;
    for (size_t i = 0; i < curve.values.size(); ++i) {
      const double x = times.At(plot_.time_s[i]);
      const double value = curve.values[i];
      if (std::isfinite(value)) {
        const double y = values.At(value);
        if (panel.of_intervals && i > 0) parts.back().push_back({times.At(before_s), y});
        parts.back().push_back({x, y});
      } else if (!parts.back().empty()) {
        parts.emplace_back();
      }
      before_s = plot_.time_s[i];
    }
    for (std::vector<PlotPoint>& part : parts) part = Thinned(part);
    const auto& [color, dashes] = StrokeOf(curve.joint);
    svg_.Curve(parts, {{"fill", "none"},
                       {"stroke", color},
                       {"stroke-width", "1.4"},
                       {"stroke-linejoin", "round"},
                       {"stroke-linecap", std::string_view(dashes) == kSolid ? "round" : "butt"},
                       {"stroke-dasharray", dashes}});
  }

  // A violation is a circle, a note a diamond.
  void WriteMarks(const PlotPanel& panel, const PlotScale& times, const PlotScale& values) {
    MarkPlaces places(right_, values.to, values.from);
    for (const PlotMark& mark : panel.marks) {
      const PlotPoint at = {times.At(mark.time_s), values.At(mark.value)};
      const char* const shape = mark.violation ? "m-5 0a5 5 0 1 0 10 0a5 5 0 1 0 -10 0"  //
                                               : "m0 -5l5 5l-5 5l-5 -5z";
      svg_.Add("path", {{"d", fmt::format("M{} {}{}", Svg::Number(at.x), Svg::Number(at.y), shape)},
                        {"class", mark.violation ? "violation" : "note"},
                        {"fill", "#fff"},
                        {"stroke", kMarkColor},
                        {"stroke-width", "2"}});
      if (!mark.text.empty()) WriteLabel(places.Place(at, mark.text), mark);
    }
  }

  void WriteLabel(const MarkPlaces::Label& label, const PlotMark& mark) {
    svg_.Add("rect", {{"x", Svg::Number(label.left)},
                      {"y", Svg::Number(label.at.y - 9)},
                      {"width", Svg::Number(label.width)},
                      {"height", "12"},
                      {"fill", "#fff"},
                      {"fill-opacity", "0.85"}});
    svg_.Text(label.at, mark.text,
              {{"text-anchor", label.anchor},
               {"fill", kMarkColor},
               {"font-weight", mark.violation ? "bold" : "normal"}});
  }

  const Plot& plot_;
  double right_;
  int height_;
  Svg svg_;
};

}  // namespace

std::string PlotSvg(const Plot& plot) { return PlotWriter(plot).Write(); }

}  // namespace qal::io
