#ifndef QAL_CORE_POINT_TEXT_H_
#define QAL_CORE_POINT_TEXT_H_

#include <algorithm>
#include <charconv>
#include <string_view>

#include "roadpoint.h"

namespace qal {

/// A waypoint's block of four lines, as `RoadPoint::printfPoint` writes it. Made apart from any
/// stream, so that nobody's settings change the digits, and without memory of its own, so that it
/// can't run out of it.
class PointText {
 public:
  explicit PointText(const RoadPoint& point) {
    // Each # takes the next number.
    constexpr std::string_view kLayout =
        "position [m]: x #  y #  z #\n"
        "orientation (quaternion): w #  x #  y #  z #\n"
        "joints [rad]:  q1 #  q2 #  q3 #  q4 #  q5 #  q6 #\n"
        "ik_flag: ";
    const auto& [p, q, j, flag] = point;
    const double numbers[] = {p.x,  p.y,  p.z,  q.w,  q.x,  q.y, q.z,
                              j[0], j[1], j[2], j[3], j[4], j[5]};
    const double* number = numbers;
    for (const char part : kLayout) {
      if (part == '#') {
        end_ =
            std::to_chars(end_, block_ + sizeof(block_), *number++, std::chars_format::general, 9)
                .ptr;
      } else {
        *end_++ = part;
      }
    }
    const std::string_view truth = flag ? "true\n" : "false\n";
    end_ = std::copy(truth.begin(), truth.end(), end_);
  }
  PointText(const PointText&) = delete;
  PointText& operator=(const PointText&) = delete;

  std::string_view view() const { return {block_, static_cast<size_t>(end_ - block_)}; }

 private:
  char block_[512];  // 13 numbers of 16 characters at the most, and 150 of text
  char* end_ = block_;
};

}  // namespace qal

#endif  // QAL_CORE_POINT_TEXT_H_
