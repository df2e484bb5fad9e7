#include "number_option.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <sstream>

#include "../../io/error.h"
#include "../../io/numbers.h"

namespace qal::tools {

using namespace io;

void NumberOption::AddTo(CLI::App& command, const std::string& name, const std::string& shape,
                         const std::string& help) {
  name_ = name;
  // More than any option takes: a wrong number of them is answered in Read's words.
  constexpr int kMost = 64;
  command.add_option(name, texts_, help)->type_name(shape)->expected(1, kMost);
}

std::vector<std::string> NumberOption::Split() const { return SplitWords(texts_); }

std::string NumberOption::Where(size_t number) const {
  return size() == 1 ? name_ : fmt::format("{}, value {}", name_, number + 1);
}

std::vector<std::string> NumberOption::SplitExactly(size_t count,
                                                    const std::string& expected) const {
  std::vector<std::string> parts = Split();
  if (parts.size() != count) {
    throw UsageError(fmt::format("{}: {} expected, {} given", name_, expected,
                                 parts.empty() ? "none" : std::to_string(parts.size())));
  }
  return parts;
}

std::vector<double> NumberOption::Read(size_t count, const std::string& expected) const {
  std::vector<double> values;
  for (const std::string& part : SplitExactly(count, expected)) {
    values.push_back(ParseNumber(part, Where(values.size())));
  }
  return values;
}

double NumberOption::ReadWithin(double least, double most) const {
  const double value = Read(1, "one number")[0];
  if (value < least || value > most) {
    throw UsageError(
        fmt::format("{}: {:.9g} is not from {:.9g} to {:.9g}", name_, value, least, most));
  }
  return value;
}

int NumberOption::ReadWhole(int least, int most) const {
  return ParseWhole(SplitExactly(1, "one whole number")[0], name_, least, most);
}

std::vector<std::string> SplitWords(const std::vector<std::string>& texts) {
  std::vector<std::string> parts;
  for (std::string text : texts) {
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream words(text);
    for (std::string word; words >> word;) parts.push_back(word);
  }
  return parts;
}

namespace {

bool IsNumber(const std::string& argument) {
  double value = 0.0;
  const char* const begin = argument.data();
  return std::from_chars(begin, begin + argument.size(), value).ptr != begin;
}

// Where the values end that begin at `first`: numbers, or six names.
size_t EndOfValues(const std::vector<std::string>& arguments, size_t first, bool numbers) {
  constexpr size_t kMost = 6;  // one a joint
  size_t count = SplitWords({arguments[first]}).size();
  size_t end = first + 1;
  for (; end < arguments.size() && count < kMost; ++end) {
    const std::string& next = arguments[end];
    if (numbers ? !IsNumber(arguments[first]) || !IsNumber(next) : next.rfind("--", 0) == 0) break;
    count += SplitWords({next}).size();
  }
  // Fewer names than joints are a mistake, and what follows the first may be meant as a file.
  return numbers || count == kMost ? end : first + 1;
}

}  // namespace

std::vector<std::string> GatherLists(const std::vector<std::string>& arguments) {
  std::vector<std::string> gathered;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    gathered.push_back(argument);
    const bool numbers =
        argument.rfind("--max-", 0) == 0 && argument.find('=') == std::string::npos;
    if ((!numbers && argument != "--joint-names") || i + 1 == arguments.size()) continue;
    const size_t end = EndOfValues(arguments, i + 1, numbers);
    std::string values = arguments[++i];
    while (i + 1 < end) values += ',' + arguments[++i];
    gathered.push_back(values);
  }
  return gathered;
}

}  // namespace qal::tools
