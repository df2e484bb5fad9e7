#include "reference_arm.h"

namespace {

using qal::reference_arm::kArm;
using qal::reference_arm::kGeometryHash;

}  // namespace

#include "closed_form/entry_points.inc"
