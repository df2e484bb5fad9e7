#ifndef QAL_IO_NUMBERS_H_
#define QAL_IO_NUMBERS_H_

#include <string>
#include <string_view>

namespace qal::io {

/// The whole of `text` as a finite decimal number, whatever the locale.
/// @param where what stands before the message, such as "--joints, value 3" or "file.csv, line 7"
/// @throw UsageError "WHERE: 'TEXT' is not a number" (or "not a finite number")
double ParseNumber(std::string_view text, const std::string& where);

/// The whole of `text` as a decimal whole number from `least` to `most`.
/// @throw UsageError "WHERE: 'TEXT' is no whole number from LEAST to MOST"
int ParseWhole(std::string_view text, const std::string& where, int least, int most);

/// The shortest decimal text that reads back to the same double.
std::string FormatNumber(double value);

}  // namespace qal::io

#endif  // QAL_IO_NUMBERS_H_
