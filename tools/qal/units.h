#ifndef QAL_TOOLS_QAL_UNITS_H_
#define QAL_TOOLS_QAL_UNITS_H_

#include <CLI/App.hpp>
#include <string>

#include "../../io/error_text.h"

namespace qal::tools {

/// Units of the numbers on the command line and in tables. Files and JSON keep radians and metres.
class Units {
 public:
  explicit Units(const io::TextUnits& text = {}) : text_(text) {}

  /// Adds --deg and --mm.
  void AddTo(CLI::App& command);

  double Radians(double angle) const;
  double Metres(double length) const { return text_.millimetres ? length / 1000.0 : length; }
  double Angle(double radians) const;
  double Length(double metres) const { return text_.millimetres ? metres * 1000.0 : metres; }
  const char* angle() const { return text_.degrees ? "deg" : "rad"; }
  const char* length() const { return text_.millimetres ? "mm" : "m"; }
  /// For the texts of errors.
  const io::TextUnits& text() const { return text_; }

  /// Says on standard error when a given angle looks like degrees: more than a turn of radians.
  void NoteAngle(double radians, const std::string& where) const;
  /// Says on standard error when a given length looks like millimetres: more than 10 m.
  void NoteLength(double metres, const std::string& where) const;
  /// "" or what to do about an angle that looks like degrees, to stand behind a message.
  const char* AngleHint(double radians) const;

 private:
  io::TextUnits text_;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_UNITS_H_
