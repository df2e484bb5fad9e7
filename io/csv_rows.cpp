#include "csv_rows.h"

#include <fmt/format.h>

#include <algorithm>

#include "error.h"
#include "limits.h"
#include "numbers.h"

namespace qal::io {

namespace {

// Takes the first line off `text`, without its end.
std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::string_view Trim(std::string_view field) {
  const size_t begin = field.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return field.substr(begin, field.find_last_not_of(" \t") + 1 - begin);
}

size_t CountFields(std::string_view line) {
  return 1 + static_cast<size_t>(std::count(line.begin(), line.end(), ','));
}

void SplitFields(std::string_view line, CsvFields& fields) {
  fields.clear();
  for (;;) {
    const size_t comma = line.find(',');
    fields.push_back(Trim(line.substr(0, comma)));
    if (comma == std::string_view::npos) return;
    line.remove_prefix(comma + 1);
  }
}

CsvFields TakeHeader(std::string_view& text) {
  const std::string_view line = TakeLine(text);
  if (CountFields(line) > kMostColumns) {
    throw UsageError(
        fmt::format("{} columns, at most {} are read", CountFields(line), kMostColumns));
  }
  CsvFields header;
  SplitFields(line, header);
  return header;
}

}  // namespace

size_t FindColumn(const CsvFields& header, std::string_view name, const std::string& expected) {
  const auto found = std::find(header.begin(), header.end(), name);
  if (found == header.end()) {
    throw UsageError(fmt::format(
        "no column '{}'; a header with {} was expected, with commas between and no quotes", name,
        expected));
  }
  if (std::count(found, header.end(), name) > 1) {
    throw UsageError(fmt::format("the column '{}' is a duplicate", name));
  }
  return static_cast<size_t>(found - header.begin());
}

void ReadCsvRows(std::string_view text,
                 const std::function<std::vector<size_t>(const CsvFields& header)>& choose,
                 const std::function<void(const std::vector<double>& row, size_t line)>& take) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    text.remove_prefix(kByteOrderMark.size());
  }
  ExpectText(text);
  size_t line = 1;
  try {
    const CsvFields header = TakeHeader(text);
    const std::vector<size_t> places = choose(header);
    if (text.empty()) throw UsageError("no row below the header");
    CsvFields fields;
    std::vector<double> row(places.size());
    while (!text.empty()) {
      ++line;
      const std::string_view row_text = TakeLine(text);
      if (CountFields(row_text) != header.size()) {
        throw UsageError(fmt::format("{} fields were expected, as in the header; the row has {}",
                                     header.size(), CountFields(row_text)));
      }
      SplitFields(row_text, fields);
      for (size_t i = 0; i < places.size(); ++i) {
        row[i] = ParseNumber(fields[places[i]], std::string(header[places[i]]));
      }
      take(row, line);
    }
  } catch (const UsageError& error) {
    throw UsageError(fmt::format("line {}: {}", line, error.what()));
  }
}

}  // namespace qal::io
