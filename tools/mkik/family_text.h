#ifndef QAL_TOOLS_MKIK_FAMILY_TEXT_H_
#define QAL_TOOLS_MKIK_FAMILY_TEXT_H_

#include <string>

#include "../../src/qal/model/family.h"

namespace qal::tools {

/// Why an arm has no closed form: for each family the axes that keep it out and by how much, and
/// the angles that were found.
std::string FamilyText(const FamilyReport& report);

}  // namespace qal::tools

#endif  // QAL_TOOLS_MKIK_FAMILY_TEXT_H_
