#include "path_looks.h"

#include <algorithm>

namespace qal {

PlaceLimits PathLooks::LimitsAt(double s, const Margin& use) {
  piece_ = path_.joints.PieceAt(s, piece_);
  section_ = path_.SectionAt(s, section_);
  --left_;
  return {path_.joints.At(s, piece_), path_.sections[section_], use};
}

PlaceLimits PathLooks::LimitsFrom(double before, double s, const Margin& use) {
  const size_t section = path_.SectionAt(before, section_);
  PlaceLimits limits = LimitsAt(s, use);
  if (section < section_) {
    limits.MeetEarlier(path_.sections[section], path_.sections[section + 1].begin, use);
  }
  return limits;
}

double PathLooks::After(const PathMoment& moment) {
  piece_ = path_.joints.PieceAt(moment.s, piece_);
  const size_t next = std::min(piece_ + 1, path_.joints.size() - 1);
  const double shortest = std::min(path_.joints.length(piece_), path_.joints.length(next));
  constexpr double kOfPiece = 0.05;
  constexpr double kLeastOfCycle = 0.03;
  const double speed = moment.speed + std::max(0.0, moment.acceleration) * cycle_s_;
  const double look_s = std::max(kOfPiece * shortest / speed, kLeastOfCycle * cycle_s_);
  // Other limits begin with a section, just beyond its beginning.
  section_ = path_.SectionAt(moment.s, section_);
  if (section_ + 1 == path_.sections.size()) return look_s;
  constexpr double kBeyond = 0.02;
  const double next_s = (path_.sections[section_ + 1].begin - moment.s) / speed;
  return std::min(look_s, next_s + kBeyond * cycle_s_);
}

}  // namespace qal
