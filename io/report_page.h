#ifndef QAL_IO_REPORT_PAGE_H_
#define QAL_IO_REPORT_PAGE_H_

#include <string_view>

namespace qal::io {

/// The report's page without its data, in HTML; empty when the tools were built without it.
std::string_view ReportPage();

}  // namespace qal::io

#endif  // QAL_IO_REPORT_PAGE_H_
