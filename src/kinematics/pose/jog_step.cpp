#include "../ikfunc.h"

RoadPoint Ikfunc::EndMove(const RoadPoint& cur_stat, int coordinate, int move_mode, double step) {
  constexpr int kToolFrame = 1;
  if (move_mode < 0 || move_mode > 5) return cur_stat;
  const bool translation = move_mode < 3;
  // One axis gets the step, the others stay 0.
  const auto on_axis = [step, axis = move_mode % 3](int i) { return i == axis ? step : 0.0; };

  if (coordinate == kToolFrame) {
    return translation ? RelatMove(cur_stat, Pos(on_axis(0), on_axis(1), on_axis(2)))
                       : RelatRot(cur_stat, Roz(on_axis(0), on_axis(1), on_axis(2)));
  }
  RoadPoint tempPoint = cur_stat;
  // Rotations about the base axes are not offered: the pose stays.
  if (move_mode == 0) tempPoint.position.x += step;
  if (move_mode == 1) tempPoint.position.y += step;
  if (move_mode == 2) tempPoint.position.z += step;
  return tempPoint;
}
