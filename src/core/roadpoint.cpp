#include "roadpoint.h"

#include <algorithm>
#include <iostream>
#include <locale>
#include <sstream>

#include "decimals.h"

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
  // Formatted apart, so that the host's settings of std::cout don't change the digits.
  std::ostringstream block;
  block.imbue(std::locale::classic());
  block.precision(9);
  block << "position [m]: x " << position.x << "  y " << position.y << "  z " << position.z
        << "\norientation (quaternion): w " << orientation.w << "  x " << orientation.x << "  y "
        << orientation.y << "  z " << orientation.z << "\njoints [rad]:";
  for (int j = 0; j < 6; ++j) block << "  q" << j + 1 << ' ' << jointpos[j];
  block << "\nik_flag: " << (ik_flag ? "true" : "false") << '\n';
  std::cout << block.str() << std::flush;
}
