#include "roadpoint.h"

#include <algorithm>

#include "decimals.h"
#include "point_text.h"
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
  const qal::PointText text(*this);
  const std::string_view block = text.view();
  qal::StandardOutput().write(block.data(), static_cast<std::streamsize>(block.size())).flush();
}
