#ifndef QAL_TOOLS_QAL_COMMAND_LINE_H_
#define QAL_TOOLS_QAL_COMMAND_LINE_H_

#include <CLI/App.hpp>
#include <map>
#include <string>
#include <vector>

#include "units.h"

namespace qal::tools {

/// What an option's numbers are.
enum class Quantity {
  kPlain,
  kAngle,
  kLength,
  kPose  ///< three lengths, then plain numbers
};

/// A command line for a shell, made of one that was given. Numbers that are set read back as
/// exactly these doubles: in the units of the command line where that can be, otherwise the option
/// of the units is left out and every number is in radians or metres.
class CommandLine {
 public:
  /// @param command  what the line begins with: "qal line"
  /// @param given    whose options it takes over, and those of the commands that it belongs to
  /// @param numbers  the options whose numbers have units
  /// @param left_out options that aren't for this command
  CommandLine(std::string command, const CLI::App& given, const Units& units,
              std::map<std::string, Quantity> numbers, const std::vector<std::string>& left_out);

  bool Has(const std::string& option) const;
  /// An option with a text, in place of what was given.
  void Set(const std::string& option, const std::string& text);
  /// The same with numbers in radians and metres.
  void SetNumbers(const std::string& option, const std::vector<double>& numbers);
  void Remove(const std::string& option);

  /// What stands behind the command.
  std::vector<std::string> Arguments() const;
  /// The whole line, quoted where a shell wants it.
  std::string Text() const;

 private:
  struct Entry {
    std::string option;
    std::vector<std::string> texts = {};  ///< as given
    std::vector<double> numbers = {};     ///< in their place: [rad, m]
  };
  Entry& At(const std::string& option);
  Quantity QuantityOf(const Entry& entry, size_t place) const;
  io::TextUnits UnitsToWrite() const;

  std::string command_;
  Units units_;
  std::map<std::string, Quantity> quantities_;
  std::vector<Entry> entries_;
};

}  // namespace qal::tools

#endif  // QAL_TOOLS_QAL_COMMAND_LINE_H_
