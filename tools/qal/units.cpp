#include "units.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cmath>

#include "../../io/messages.h"
#include "../../solver/closed_form/angles.h"

namespace qal::tools {

namespace {

constexpr double kDegreesPerRadian = 180.0 / closed_form::kPi;

}  // namespace

void Units::AddTo(CLI::App& command) {
  command.add_flag("--deg", text_.degrees, "angles in degrees, given and in tables (default: rad)");
  command.add_flag("--mm", text_.millimetres,
                   "lengths in millimetres, given and in tables (default: m)");
}

double Units::Radians(double angle) const {
  return text_.degrees ? angle / kDegreesPerRadian : angle;
}

double Units::Angle(double radians) const {
  return text_.degrees ? radians * kDegreesPerRadian : radians;
}

const char* Units::AngleHint(double radians) const {
  const bool suspect = !text_.degrees && std::fabs(radians) > 2 * closed_form::kPi;
  return suspect ? "; are these degrees? --deg reads them" : "";
}

void Units::NoteAngle(double radians, const std::string& where) const {
  const std::string hint = AngleHint(radians);
  if (!hint.empty())
    io::Note(fmt::format("{}: {:.9g} rad is more than a turn{}", where, radians, hint));
}

void Units::NoteLength(double metres, const std::string& where) const {
  constexpr double kLongM = 10.0;  // beyond any arm of six axes
  if (text_.millimetres || !(std::fabs(metres) > kLongM)) return;
  io::Note(
      fmt::format("{}: {:.9g} m is far; are these millimetres? --mm reads them", where, metres));
}

}  // namespace qal::tools
