#ifndef QAL_SOLVE_BLOCK_TURNS_H_
#define QAL_SOLVE_BLOCK_TURNS_H_

#include "../../../solver/closed_form/angles.h"

// Internal: a solver's angles at other turns, several side by side.
namespace qal {

/// The whole number nearest to each that is below 2^51 in size; of two the even one.
template <class L>
QAL_INLINED L NearestWhole(const L& v) {
  constexpr double kRounder = 0x1.8p52;
  return (v + kRounder) - kRounder;
}
template <class L>
QAL_INLINED L FloorOf(const L& v) {
  const L whole = NearestWhole(v);
  return whole - closed_form::Where<L>(whole > v, closed_form::Each<L>(1));
}
template <class L>
QAL_INLINED L CeilOf(const L& v) {
  return -FloorOf<L>(-v);
}
/// As `std::round`: of two the one further from zero.
template <class L>
QAL_INLINED L RoundOf(const L& v) {
  using closed_form::Each;
  using closed_form::Where;
  const L whole = NearestWhole(v);
  const L off = v - whole;  // exact
  const L up = Where<L>(off == Each<L>(0.5), Each<L>(1));
  const L down = Where<L>(off == Each<L>(-0.5), Each<L>(1));
  return whole + Where<L>(v > Each<L>(0), up) - Where<L>(v < Each<L>(0), down);
}

/// `angle`, where it is within the limits or next to them; else the angle a turn away that is.
/// No more than one of the angle's turns may be within.
template <class L>
QAL_INLINED L NextToRange(const L& angle, double lower, double upper) {
  using closed_form::Each;
  using closed_form::Flag;
  using closed_form::Select;
  constexpr double kTurn = 2 * closed_form::kPi;
  const auto over = Flag<L>(angle > Each<L>(upper));
  const auto under = Flag<L>(angle < Each<L>(lower));
  const L above = Select<L>(over, angle, angle + kTurn);
  const L below = Select<L>(over, angle - kTurn, angle);
  const L outside = Select<L>(lower - below < above - upper, below, above);
  return Select<L>(over | under, outside, angle);
}

/// `angle` and whole turns: of those within the limits the one nearest `near`; where none is
/// within, the one nearest the limits.
/// @param odd set where that is too many turns to be counted
template <class L>
QAL_INLINED L TakenOnInLanes(const L& angle, const L& near, double lower_limit, double upper_limit,
                             closed_form::MaskOf<L>& odd) {
  using closed_form::Any;
  using closed_form::Each;
  using closed_form::Flag;
  using closed_form::Select;
  constexpr double kTurn = 2 * closed_form::kPi;
  const L lower = Each<L>(lower_limit);
  const L upper = Each<L>(upper_limit);
  if (!Any(~(Flag<L>(angle + kTurn > upper) & Flag<L>(angle - kTurn < lower)))) {
    return NextToRange(angle, lower_limit, upper_limit);
  }
  const auto turned = [&](const L& turns) __attribute__((always_inline)) {
    // Without turns the solver's angle to the last digit.
    return Select<L>(turns == Each<L>(0), angle, angle + turns * kTurn);
  };
  const L wanted = (near - angle) / kTurn;
  odd = odd | ~Flag<L>(closed_form::Abs(wanted) < Each<L>(0x1p50));
  L turns = RoundOf(wanted);
  // Behind each division one turn more, should its rounding have gone past the limit.
  turns = Select<L>(turned(turns) > upper, FloorOf<L>((upper - angle) / kTurn), turns);
  turns = Select<L>(turned(turns) > upper, turns - 1.0, turns);
  turns = Select<L>(turned(turns) < lower, CeilOf<L>((lower - angle) / kTurn), turns);
  turns = Select<L>(turned(turns) < lower, turns + 1.0, turns);
  const L least = turned(turns);
  const L below = turned(turns - 1.0);
  const L nearer = Select<L>(lower - below < least - upper, below, least);
  return Select<L>(least > upper, nearer, least);
}

}  // namespace qal

#endif  // QAL_SOLVE_BLOCK_TURNS_H_
