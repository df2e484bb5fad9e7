#include "../ikfunc.h"
#include "solver_query.h"

void Ikfunc::CountEerotEetrans(RoadPoint& tempPoint, double* eerot, double* eetrans) {
  qal::EncodePose(tempPoint, eerot, eetrans);
}
