#ifndef QAL_IO_FAMILY_TEXT_H_
#define QAL_IO_FAMILY_TEXT_H_

#include <qal/model/family.h>

#include <string>

namespace qal::io {

/// Why an arm can't be solved: what its axes are like.
std::string SingularText(const FamilyReport& report);

/// Why there is no nominal arm: for each family the axes that keep it out, and by how much.
std::string NoFamilyText(const FamilyReport& report);

/// "not three parallel axes (axes 3 and 4 are 90 degrees off parallel), not spherical wrist (...)"
std::string FamiliesMissedText(const FamilyReport& report);

/// "0.013 degrees and 0.099 mm"
std::string DeviationText(const AxisDeviation& deviation);

}  // namespace qal::io

#endif  // QAL_IO_FAMILY_TEXT_H_
