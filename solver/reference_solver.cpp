#include "reference_arm.h"

namespace {

using qal::reference_arm::kArm;
constexpr char kGeometryHash[] = "qal-reference-arm-1";

}  // namespace

#include "closed_form/entry_points.inc"
