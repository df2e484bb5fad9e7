#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "../../io/plot_scale.h"
#include "../../io/plot_svg.h"

namespace qal::io {
namespace {

TEST(Ticks, AreRoundNumbersWithinTheRange) {
  const struct {
    double low, high;
    int most;
    std::vector<std::string> texts;
  } rows[] = {
      {0, 10, 6, {"0", "2", "4", "6", "8", "10"}},
      {-1.1, 1.1, 6, {"\u22121.0", "\u22120.5", "0.0", "0.5", "1.0"}},
      {0.301, 0.349, 6, {"0.31", "0.32", "0.33", "0.34"}},
      {-49000, 1, 3, {"\u221240000", "\u221220000", "0"}},
      {2e9, 4.1e9, 4, {"2e+09", "3e+09", "4e+09"}},
  };
  for (const auto& [low, high, most, texts] : rows) {
    std::vector<std::string> found;
    for (const PlotTick& tick : TicksOf(low, high, most)) found.push_back(tick.text);
    EXPECT_EQ(found, texts);
  }
}

// Of noise on 100 columns of 1000 points: each column's highest and lowest are kept, and no more
// than its ends besides.
TEST(Thinning, KeepsWhatCanBeSeen) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> height(0, 90);
  std::vector<PlotPoint> noise, line;
  std::vector<double> lowest(100, 99), highest(100, -1);
  for (size_t i = 0; i < 100000; ++i) {
    noise.push_back({static_cast<double>(i) / 1000, height(random)});
    line.push_back({noise[i].x, 3 + 2 * noise[i].x});
    lowest[i / 1000] = std::min(lowest[i / 1000], noise[i].y);
    highest[i / 1000] = std::max(highest[i / 1000], noise[i].y);
  }
  EXPECT_EQ(Thinned(line).size(), 2U);
  const std::vector<PlotPoint> thinned = Thinned(noise);
  EXPECT_LE(thinned.size(), 400U);
  for (size_t column = 0; column < 100; ++column) {
    const auto has = [&](double y) {
      return std::any_of(thinned.begin(), thinned.end(), [&](const PlotPoint& point) {
        return point.y == y && std::floor(point.x) == static_cast<double>(column);
      });
    };
    EXPECT_TRUE(has(lowest[column]) && has(highest[column])) << column;
  }
}

// The elements of a picture by a value of an attribute.
std::vector<const tinyxml2::XMLElement*> With(const tinyxml2::XMLDocument& svg,
                                              const std::string& name, const std::string& value) {
  std::vector<const tinyxml2::XMLElement*> found;
  for (const auto* e = svg.RootElement()->FirstChildElement(); e; e = e->NextSiblingElement()) {
    const char* const has = e->Attribute(name.c_str());
    if (has != nullptr && has == value) found.push_back(e);
  }
  return found;
}

// The points of a path's absolute commands.
std::vector<PlotPoint> PointsOf(const tinyxml2::XMLElement& path) {
  std::string text = path.Attribute("d");
  for (char& c : text) c = std::string("MLmhz").find(c) != std::string::npos ? ' ' : c;
  std::istringstream numbers(text);
  std::vector<PlotPoint> points;
  for (PlotPoint point = {}; numbers >> point.x >> point.y;) points.push_back(point);
  return points;
}

// One second apart: joint 4 makes 0.2 rad backwards from 1 to 2 s. Of the picture of 760 px, 62 to
// 746 are the plot's.
TEST(Plots, MarkAViolationAtItsTimeOnItsCurve) {
  Limits limits = LimitsOf(Arm::Reference());
  limits[kJointSpeed].assign(6, {0.15, Origin::kOption});
  const FileTrajectory samples = {{0, {0, 0.3, -0.2, 0, 0.5, 0}},
                                  {1, {0, 0.3, -0.2, 0, 0.5, 0}},
                                  {2, {0, 0.3, -0.2, -0.2, 0.5, 0}},
                                  {3, {0, 0.3, -0.2, -0.2, 0.5, 0}}};
  const Findings findings = FindingsOf({Arm::Reference(), "", ""}, {samples, {}}, limits, false);
  const MotionSeries series = SeriesOf(Arm::Reference(), samples);
  const Plot plot = {"<b> & \xff",
                     {},
                     0,
                     3,
                     series.time_s,
                     PanelsOf(findings, series, {"velocity"}, {true, false}),
                     760};
  const std::string text = PlotSvg(plot);
  EXPECT_EQ(text, PlotSvg(plot));
  tinyxml2::XMLDocument svg;
  ASSERT_EQ(tinyxml2::XML_SUCCESS, svg.Parse(text.c_str()));
  EXPECT_STREQ("<b> & \xef\xbf\xbd", svg.RootElement()->FirstChildElement("title")->GetText());
  const auto marks = With(svg, "class", "violation");
  ASSERT_EQ(marks.size(), 1U);
  const PlotPoint mark = PointsOf(*marks[0])[0];
  EXPECT_NEAR(mark.x, 62 + 684 * 2.0 / 3, 0.01);
  const auto curves = With(svg, "stroke", "#cc79a7");  // joint 4, in the legend and the plot
  ASSERT_EQ(curves.size(), 2U);
  const std::vector<PlotPoint> curve = PointsOf(*curves[1]);
  const auto lowest = std::max_element(curve.begin(), curve.end(),
                                       [](const auto& a, const auto& b) { return a.y < b.y; });
  EXPECT_EQ(lowest->y, mark.y);
  EXPECT_NE(std::string::npos, text.find(">joint 4: 133.3 %<"));
  EXPECT_NE(std::string::npos, text.find(">limit \u00b18.594<"));  // 0.15 rad/s in degrees
  EXPECT_NE(std::string::npos, text.find(">joint speed [deg/s]<"));
}

TEST(Plots, LeaveAGapWhereThereIsNoValue) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const PlotPanel panel = {"a", "m", false, false, {{-1, {1, 2, none, 3, 5, none}}}};
  tinyxml2::XMLDocument svg;
  ASSERT_EQ(0, svg.Parse(PlotSvg({"", {}, 0, 5, {0, 1, 2, 3, 4, 5}, {panel}, 760}).c_str()));
  const auto curves = With(svg, "stroke", "#000");
  ASSERT_EQ(curves.size(), 1U);
  const std::string path = curves[0]->Attribute("d");
  EXPECT_EQ(2, std::count(path.begin(), path.end(), 'M'));
  EXPECT_EQ(4U, PointsOf(*curves[0]).size());
}

}  // namespace
}  // namespace qal::io
