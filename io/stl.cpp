#include "stl.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "error.h"
#include "numbers.h"

namespace qal::io {

namespace {

constexpr size_t kHeader = 80;
constexpr size_t kTriangle = 50;  // normal, three corners, and two bytes of whatever

uint32_t Whole(std::string_view file, size_t at) {
  uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(file[at + i]);
  return value;
}

double Number(std::string_view file, size_t at) {
  const uint32_t bits = Whole(file, at);
  float value = 0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

void ExpectMost(size_t triangles, size_t most) {
  if (triangles <= most) return;
  throw UsageError(fmt::format("{} triangles or more; up to {} are drawn", triangles, most));
}

std::vector<Vec3> ParseBinary(std::string_view file, size_t most) {
  const size_t count = Whole(file, kHeader);
  const size_t there = (file.size() - kHeader - 4) / kTriangle;
  if (there < count) {
    throw UsageError(
        fmt::format("cut off, or no STL: {} triangles are there, not {}", there, count));
  }
  ExpectMost(count, most);
  std::vector<Vec3> corners;
  corners.reserve(3 * count);
  for (size_t i = 0; i < 3 * count; ++i) {
    const size_t at = kHeader + 4 + i / 3 * kTriangle + 12 + i % 3 * 12;
    const Vec3 corner = {Number(file, at), Number(file, at + 4), Number(file, at + 8)};
    if (!std::isfinite(corner.x + corner.y + corner.z)) {
      throw UsageError(fmt::format("triangle {}: a coordinate is no number", i / 3));
    }
    corners.push_back(corner);
  }
  return corners;
}

// The words of an ASCII file, line by line.
class StlWords {
 public:
  explicit StlWords(std::string_view text) : rest_(text) {}

  /// The next one; empty at the end.
  std::string_view Next() {
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    const size_t begin = std::min(rest_.find_first_not_of(kBlanks), rest_.size());
    for (size_t i = 0; i < begin; ++i) line_ += rest_[i] == '\n' ? 1 : 0;
    const size_t end = std::min(rest_.find_first_of(kBlanks, begin), rest_.size());
    const std::string_view word = rest_.substr(begin, end - begin);
    rest_.remove_prefix(end);
    return word;
  }
  void SkipLine() { rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size())); }
  double NextNumber() { return ParseNumber(Next(), fmt::format("line {}", line_)); }
  size_t line() const { return line_; }

 private:
  std::string_view rest_;
  size_t line_ = 1;
};

// Names of solids stand on the line of `solid` and `endsolid`. A file may have several.
std::vector<Vec3> ParseAscii(std::string_view file, size_t most) {
  StlWords words(file);
  std::vector<Vec3> corners;
  bool open = false;
  for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
    if (word == "solid" || word == "endsolid") {
      open = word == "solid";
      words.SkipLine();
    } else if (word == "vertex") {
      const double x = words.NextNumber();
      const double y = words.NextNumber();
      corners.push_back({x, y, words.NextNumber()});
    } else if (word == "endloop") {
      if (corners.size() % 3 != 0) {
        throw UsageError(fmt::format("line {}: a facet that is no triangle", words.line()));
      }
      ExpectMost(corners.size() / 3, most);
    }
  }
  if (open || corners.size() % 3 != 0) throw UsageError("cut off: no endsolid");
  return corners;
}

}  // namespace

std::vector<Vec3> ParseStl(std::string_view file, size_t most) {
  // A binary file's header may begin like an ASCII file, but its size tells it.
  const bool has_count = file.size() >= kHeader + 4;
  const bool fits = has_count && (file.size() - kHeader - 4) % kTriangle == 0 &&
                    (file.size() - kHeader - 4) / kTriangle == Whole(file, kHeader);
  const size_t begin = std::min(file.find_first_not_of(" \t\r\n"), file.size());
  const bool is_ascii = !fits && file.substr(begin, 5) == "solid";
  if (!is_ascii && !has_count) throw UsageError("no STL file: too short");
  std::vector<Vec3> corners = is_ascii ? ParseAscii(file, most) : ParseBinary(file, most);
  if (corners.empty()) throw UsageError("no triangle in it");
  return corners;
}

}  // namespace qal::io
