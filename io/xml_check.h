#ifndef QAL_IO_XML_CHECK_H_
#define QAL_IO_XML_CHECK_H_

#include <string_view>

namespace qal::io {

/// Looks through an XML text before the parser does, which compares each attribute of an element
/// with all before, and keeps whatever there is. What isn't well-formed is left to the parser.
/// @throw UsageError "line N: REASON" for a NUL byte, or beyond the limits of limits.h
void CheckXml(std::string_view text);

}  // namespace qal::io

#endif  // QAL_IO_XML_CHECK_H_
