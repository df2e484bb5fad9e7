#ifndef QAL_IO_ERROR_TEXT_H_
#define QAL_IO_ERROR_TEXT_H_

#include <qal/model/error.h>

#include <string>

namespace qal::io {

/// The units that a caller reads in.
struct TextUnits {
  bool degrees = false;      ///< angles in degrees, not radians
  bool millimetres = false;  ///< lengths in millimetres, not metres
};

/// "1.5 rad", in at most six digits.
std::string AngleText(double rad, const TextUnits& units = {});

/// A failure of the core in words, without a line end: the reason with its numbers, in at most nine
/// digits, and where there is one the remedy. Joints are counted from 1.
std::string ErrorText(const Error& error, const TextUnits& units = {});

}  // namespace qal::io

#endif  // QAL_IO_ERROR_TEXT_H_
