#include "report_page.h"

namespace qal::io {

std::string_view ReportPage() {
  return "<!doctype html>\n<meta charset=\"utf-8\">\n<title>qal report</title>\n"
         "<script type=\"application/json\" id=\"report-data\">@QAL_REPORT_DATA@</script>\n";
}

}  // namespace qal::io
