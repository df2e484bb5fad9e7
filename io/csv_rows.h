#ifndef QAL_IO_CSV_ROWS_H_
#define QAL_IO_CSV_ROWS_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qal::io {

/// The names in a CSV header, or the fields of a row.
using CsvFields = std::vector<std::string_view>;

/// The column of this name.
/// @param expected what the header should have, for the message
/// @throw UsageError when there is none, or two
size_t FindColumn(const CsvFields& header, std::string_view name, const std::string& expected);

/// Reads CSV: a header line, then rows of as many fields. A byte order mark, CRLF line ends and
/// blanks around fields are taken; quotes are not.
/// @param choose the places of the wanted columns in the header
/// @param take   gets a row's numbers at these places, and its line, counted from 1
/// @throw UsageError "line N: REASON" when the header has more than kMostColumns, a row has another
///        number of fields, a wanted field is no number, there is no row, or `choose` or `take`
///        throws one
void ReadCsvRows(std::string_view text,
                 const std::function<std::vector<size_t>(const CsvFields& header)>& choose,
                 const std::function<void(const std::vector<double>& row, size_t line)>& take);

}  // namespace qal::io

#endif  // QAL_IO_CSV_ROWS_H_
