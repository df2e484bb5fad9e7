#include "command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <optional>

#include "../../io/numbers.h"
#include "number_option.h"

namespace qal::tools {

using namespace io;

namespace {

double FromUnits(double written, Quantity quantity, const Units& units) {
  if (quantity == Quantity::kAngle) return units.Radians(written);
  return quantity == Quantity::kLength ? units.Metres(written) : written;
}

// A text that reads as exactly this number; nothing: these units have none.
std::optional<std::string> TextOf(double number, Quantity quantity, const Units& units) {
  double written = number;
  if (quantity == Quantity::kAngle) written = units.Angle(number);
  if (quantity == Quantity::kLength) written = units.Length(number);
  for (const double near :
       {written, std::nextafter(written, -HUGE_VAL), std::nextafter(written, HUGE_VAL)}) {
    if (FromUnits(near, quantity, units) == number) return FormatNumber(near);
  }
  return std::nullopt;
}

// In single quotes, unless there is nothing in it that a shell takes for something else.
std::string Quoted(const std::string& word) {
  const auto plain = [](unsigned char c) {
    return std::isalnum(c) != 0 ||
           std::string_view("_-./:=,+@%").find(static_cast<char>(c)) != std::string_view::npos;
  };
  if (!word.empty() && std::all_of(word.begin(), word.end(), plain)) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace

CommandLine::CommandLine(std::string command, const CLI::App& given, const Units& units,
                         std::map<std::string, Quantity> numbers,
                         const std::vector<std::string>& left_out)
    : command_(std::move(command)), units_(units), quantities_(std::move(numbers)) {
  if (given.get_parent() != nullptr) {
    entries_ = CommandLine("", *given.get_parent(), units, quantities_, left_out).entries_;
  }
  for (const CLI::Option* option : given.get_options()) {
    const std::string name = option->get_name();
    const bool is_left_out = std::find(left_out.begin(), left_out.end(), name) != left_out.end();
    if (option->count() == 0 || option->get_positional() || is_left_out) continue;
    Entry& entry = At(name);
    entry.texts = option->results();
    if (option->get_expected_max() == 0) entry.texts.clear();  // a flag
    if (quantities_.count(name) != 0) entry.texts = SplitWords(entry.texts);
  }
}

CommandLine::Entry& CommandLine::At(const std::string& option) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.option == option; });
  if (found != entries_.end()) return *found;
  entries_.push_back({option});
  return entries_.back();
}

bool CommandLine::Has(const std::string& option) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& entry) { return entry.option == option; });
}

void CommandLine::Set(const std::string& option, const std::string& text) {
  At(option) = {option, {text}};
}

void CommandLine::SetNumbers(const std::string& option, const std::vector<double>& numbers) {
  At(option) = {option, {}, numbers};
}

void CommandLine::Remove(const std::string& option) {
  entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                [&](const Entry& entry) { return entry.option == option; }),
                 entries_.end());
}

Quantity CommandLine::QuantityOf(const Entry& entry, size_t place) const {
  const auto found = quantities_.find(entry.option);
  if (found == quantities_.end()) return Quantity::kPlain;
  if (found->second != Quantity::kPose) return found->second;
  return place < 3 ? Quantity::kLength : Quantity::kPlain;
}

// Those of the command line that leave every number that is set as it is.
TextUnits CommandLine::UnitsToWrite() const {
  TextUnits written = units_.text();
  for (const Entry& entry : entries_) {
    for (size_t i = 0; i < entry.numbers.size(); ++i) {
      const Quantity quantity = QuantityOf(entry, i);
      if (TextOf(entry.numbers[i], quantity, units_)) continue;
      (quantity == Quantity::kAngle ? written.degrees : written.millimetres) = false;
    }
  }
  return written;
}

std::vector<std::string> CommandLine::Arguments() const {
  const TextUnits written = UnitsToWrite();
  const Units units(written);
  std::vector<std::string> words;
  for (const Entry& entry : entries_) {
    const auto& [option, texts, numbers] = entry;
    if ((option == "--deg" && !written.degrees) || (option == "--mm" && !written.millimetres)) {
      continue;
    }
    words.push_back(option);
    for (size_t i = 0; i < texts.size(); ++i) {
      const Quantity quantity = QuantityOf(entry, i);
      const bool as_given =
          quantity == Quantity::kPlain ||
          (quantity == Quantity::kAngle ? written.degrees == units_.text().degrees
                                        : written.millimetres == units_.text().millimetres);
      words.push_back(
          as_given ? texts[i]
                   : FormatNumber(FromUnits(ParseNumber(texts[i], option), quantity, units_)));
    }
    for (size_t i = 0; i < numbers.size(); ++i) {
      words.push_back(*TextOf(numbers[i], QuantityOf(entry, i), units));
    }
  }
  return words;
}

std::string CommandLine::Text() const {
  std::string text = command_;
  for (const std::string& word : Arguments()) text += ' ' + Quoted(word);
  return text;
}

}  // namespace qal::tools
