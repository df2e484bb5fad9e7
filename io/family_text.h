#ifndef QAL_IO_FAMILY_TEXT_H_
#define QAL_IO_FAMILY_TEXT_H_

#include <qal/model/family.h>

#include <string>

namespace qal::io {

/// Why an arm has no closed form: for each family the axes that keep it out and by how much, and
/// the angles that were found.
std::string FamilyText(const FamilyReport& report);

/// "0.013 degrees and 0.099 mm"
std::string DeviationText(const AxisDeviation& deviation);

}  // namespace qal::io

#endif  // QAL_IO_FAMILY_TEXT_H_
