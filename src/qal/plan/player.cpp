#include "player.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qal {

namespace {

// Times that differ by less of a cycle are one.
constexpr double kRoundingRad = 1e-9;

}  // namespace

Player::Player(std::vector<PlayedBlock> blocks, double duration_s, double cycle_s, double from_s)
    : blocks_(std::move(blocks)), duration_s_(duration_s), cycle_s_(cycle_s) {
  changes_.reserve(blocks_.size());
  for (const PlayedBlock& each : blocks_) changes_.emplace_back(*each.path, *each.law, cycle_s);
  const auto after = std::upper_bound(
      blocks_.begin(), blocks_.end(), from_s,
      [](double time_s, const PlayedBlock& each) { return time_s < each.begin_s; });
  block_ = static_cast<size_t>(after - blocks_.begin());
  if (block_ > 0) {
    const PlayedBlock& before = blocks_[block_ - 1];
    const double clock_s = from_s - before.begin_s;
    if (clock_s < before.law->duration_s()) {
      --block_;
      BeginBlock();
      course_[current_].clock_s = clock_s;
      return;
    }
  }
  rest_s_ = NextBegin() - from_s;
}

void Player::BeginBlock() {
  stands_ = false;
  course_[current_].legs = 0;
  course_[current_].clock_s = 0;
  course_[current_].pace = wanted_;
  leg_ = 0;
  in_leg_s_ = 0;
}

void Player::Rest() {
  const double end_s = blocks_[block_].begin_s + blocks_[block_].law->duration_s();
  ++block_;
  stands_ = true;
  rest_s_ = NextBegin() - end_s;
}

void Player::Stand() {
  if (!stands_) course_[current_].pace = 0;
}

bool Player::done() const {
  return stands_ && block_ == blocks_.size() && rest_s_ <= kRoundingRad * cycle_s_;
}

double Player::planned_s() {
  if (stands_) return NextBegin() - std::max(0.0, rest_s_);
  return blocks_[block_].begin_s + Ahead(0).clock_s;
}

PlayMoment Player::Ahead(double after_s) {
  LegPlayer& player = changes_[block_].player();
  double t = in_leg_s_ + after_s;
  for (size_t i = leg_; i < course().legs; ++i) {
    const Leg& leg = course().leg[i];
    if (t < leg.length_s) return player.At(leg, t);
    t -= leg.length_s;
  }
  return player.At(course().clock_s + t * course().pace, course().pace);
}

void Player::Decide() {
  if (stands_) return;
  Course& here = course_[current_];
  if (here.pace == wanted_) return;
  const PlayMoment now = Ahead(0);
  // At the beginning there is no speed that would have to change.
  if (Constant() && now.clock_s <= 0) {
    here.pace = wanted_;
    in_leg_s_ = 0;
    return;
  }
  if (!changes_[block_].Find(now, wanted_, here, course_[1 - current_])) {
    // Slower than this is rest: within a cycle it takes no part of a limit that could be measured.
    constexpr double kRest = 1e-7;
    if (wanted_ == 0 && Constant() && here.pace < kRest) {
      here.clock_s = now.clock_s;
      here.pace = 0;
      here.legs = 0;
      leg_ = 0;
      in_leg_s_ = 0;
    }
    return;
  }
  current_ = 1 - current_;
  leg_ = 0;
  in_leg_s_ = 0;
}

void Player::Advance() {
  double left_s = cycle_s_;
  while (true) {
    if (stands_) {
      if (wanted_ == 0) return;
      if (left_s < rest_s_ - kRoundingRad * cycle_s_ || block_ == blocks_.size()) {
        rest_s_ -= left_s;
        return;
      }
      left_s = std::max(0.0, left_s - rest_s_);
      BeginBlock();
    }
    for (; leg_ < course().legs; ++leg_) {
      const double length_s = course().leg[leg_].length_s;
      if (in_leg_s_ + left_s < length_s) {
        in_leg_s_ += left_s;
        return;
      }
      left_s -= length_s - in_leg_s_;
      in_leg_s_ = 0;
    }
    const double clock_s = course().clock_s + (in_leg_s_ + left_s) * course().pace;
    const double beyond_s = clock_s - blocks_[block_].law->duration_s();
    if (beyond_s < -kRoundingRad * cycle_s_) {
      in_leg_s_ += left_s;
      return;
    }
    left_s = course().pace > 0 ? std::max(0.0, beyond_s / course().pace) : 0;
    Rest();
  }
}

}  // namespace qal
