#include "report_page.h"

namespace qal::io {

std::string_view ReportPage() {
#ifdef QAL_HAS_REPORT_PAGE
  static constexpr char kPage[] =
#include "report_page_text.inc"
      ;
  return {kPage, sizeof kPage - 1};
#else
  return {};
#endif
}

}  // namespace qal::io
