#include "svg.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "messages.h"

namespace qal::io {

namespace {

// Names come from files. XML takes no control characters, and nothing but UTF-8.
std::string Clean(const std::string& text) {
  using nlohmann::json;
  const std::string valid = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return OneLine(json::parse(valid).get<std::string>());
}

}  // namespace

Svg::Svg(int width, int height, const std::string& title) {
  Open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
               {"width", std::to_string(width)},
               {"height", std::to_string(height)},
               {"viewBox", fmt::format("0 0 {} {}", width, height)},
               {"role", "img"},
               {"font-family", "Helvetica, Arial, 'Liberation Sans', sans-serif"},
               {"font-size", "11"}});
  Open("title", {});
  printer_.PushText(Clean(title).c_str());
  Close();
  Add("rect", {{"width", "100%"}, {"height", "100%"}, {"fill", "#fff"}});
}

void Svg::Push(const Attributes& attributes) {
  for (const auto& [name, value] : attributes) printer_.PushAttribute(name, value.c_str());
}

void Svg::Open(const char* element, const Attributes& attributes) {
  printer_.OpenElement(element);
  Push(attributes);
}

void Svg::Add(const char* element, const Attributes& attributes) {
  Open(element, attributes);
  Close();
}

void Svg::Line(const PlotPoint& from, const PlotPoint& to, const Attributes& attributes) {
  printer_.OpenElement("path");
  printer_.PushAttribute(
      "d", fmt::format("M{} {}L{} {}", Number(from.x), Number(from.y), Number(to.x), Number(to.y))
               .c_str());
  Push(attributes);
  Close();
}

void Svg::Text(const PlotPoint& at, const std::string& text, const Attributes& attributes) {
  Open("text", {{"x", Number(at.x)}, {"y", Number(at.y)}});
  Push(attributes);
  printer_.PushText(Clean(text).c_str());
  Close();
}

void Svg::Curve(const std::vector<std::vector<PlotPoint>>& parts, const Attributes& attributes) {
  std::string path;
  for (const std::vector<PlotPoint>& part : parts) {
    const char* command = "M";
    for (const PlotPoint& point : part) {
      path += fmt::format("{}{} {}", command, Number(point.x), Number(point.y));
      command = "L";
    }
    if (part.size() == 1) path += "h0";  // a dot, by its round ends
  }
  if (path.empty()) return;
  printer_.OpenElement("path");
  printer_.PushAttribute("d", path.c_str());
  Push(attributes);
  Close();
}

std::string Svg::Shortened(const std::string& text, double width_px) {
  constexpr double kCharacter = 5.8;  // [px], about
  const auto most = static_cast<size_t>(width_px / kCharacter);
  if (text.size() <= most || most < 3) return text;
  size_t begin = most / 2;
  size_t end = text.size() - (most - begin - 1);
  const auto within = [&text](size_t i) { return (text[i] & 0xC0) == 0x80; };  // of a character
  while (begin > 0 && within(begin)) --begin;
  while (end < text.size() && within(end)) ++end;
  return text.substr(0, begin) + "\u2026" + text.substr(end);
}

std::string Svg::Finish() {
  Close();
  return printer_.CStr();
}

std::string Svg::Number(double px) {
  const double rounded = std::round(px * 100) / 100;
  return fmt::format("{:g}", rounded == 0 ? 0.0 : rounded);
}

}  // namespace qal::io
