#include "roadpoint.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "decimals.h"
#include "standard_output.h"

RoadPoint::RoadPoint() : jointpos{}, ik_flag(false) {}

// Written out, not defaulted in the header: callers built earlier link to it.
// NOLINTNEXTLINE(modernize-use-equals-default,bugprone-unhandled-self-assignment)
RoadPoint& RoadPoint::operator=(const RoadPoint& other) {
  position = other.position;
  orientation = other.orientation;
  for (int j = 0; j < 6; ++j) jointpos[j] = other.jointpos[j];
  ik_flag = other.ik_flag;
  return *this;
}

bool RoadPoint::operator==(const RoadPoint& other) {
  return position == other.position && orientation == other.orientation &&
         std::equal(jointpos, jointpos + 6, other.jointpos) && ik_flag == other.ik_flag;
}

void RoadPoint::SectionRoadPoint() {
  for (double* coordinate : {&position.x, &position.y, &position.z}) {
    *coordinate = qal::CutSixDecimals(*coordinate);
  }
  for (double* part : {&orientation.w, &orientation.x, &orientation.y, &orientation.z}) {
    *part = qal::CutFourDecimals(*part);
  }
  for (double& joint : jointpos) joint = qal::CutSixDecimals(joint);
}

void RoadPoint::printfPoint() {
  // Each # takes the next number.
  constexpr std::string_view kLayout =
      "position [m]: x #  y #  z #\n"
      "orientation (quaternion): w #  x #  y #  z #\n"
      "joints [rad]:  q1 #  q2 #  q3 #  q4 #  q5 #  q6 #\n"
      "ik_flag: ";
  const auto& [p, q, j, flag] = *this;
  const double numbers[] = {p.x, p.y, p.z, q.w, q.x, q.y, q.z, j[0], j[1], j[2], j[3], j[4], j[5]};
  // Made apart from the stream and written as it is, so that the host's settings of std::cout don't
  // change the digits; without memory of its own, so that it can't run out of it.
  char block[512];  // 13 numbers of 16 characters at the most, and 150 of text
  char* end = block;
  const double* number = numbers;
  for (const char part : kLayout) {
    if (part == '#') {
      end = std::to_chars(end, std::end(block), *number++, std::chars_format::general, 9).ptr;
    } else {
      *end++ = part;
    }
  }
  const std::string_view truth = flag ? "true\n" : "false\n";
  end = std::copy(truth.begin(), truth.end(), end);
  qal::StandardOutput().write(block, end - block).flush();
}
