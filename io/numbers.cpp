#include "numbers.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "error.h"

namespace qal::io {

double ParseNumber(std::string_view text, const std::string& where) {
  // from_chars takes a leading minus, but no plus.
  std::string_view digits = text;
  if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool whole = end == digits.data() + digits.size() && !digits.empty();
  if (whole && error == std::errc::result_out_of_range) {
    throw UsageError(fmt::format("{}: '{}' is too large or too small for a number", where, text));
  }
  if (!whole || error != std::errc()) {
    throw UsageError(fmt::format("{}: '{}' is not a number", where, text));
  }
  if (!std::isfinite(value)) {
    throw UsageError(fmt::format("{}: '{}' is not a finite number", where, text));
  }
  return value;
}

int ParseWhole(std::string_view text, const std::string& where, int least, int most) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) {
    throw UsageError(
        fmt::format("{}: '{}' is no whole number from {} to {}", where, text, least, most));
  }
  return value;
}

std::string FormatNumber(double value) { return fmt::format("{}", value); }

}  // namespace qal::io
