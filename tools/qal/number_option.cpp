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

// Whether an argument goes on with the values of a list option.
bool GoesOn(const std::string& argument, bool numbers) {
  if (!numbers) return argument.empty() || argument[0] != '-';
  double value = 0.0;
  const char* const begin = argument.data();
  return std::from_chars(begin, begin + argument.size(), value).ptr != begin;
}

}  // namespace

std::vector<std::string> GatherLists(const std::vector<std::string>& arguments) {
  constexpr size_t kMost = 6;  // values, one a joint
  std::vector<std::string> gathered;
  for (size_t i = 0; i < arguments.size(); ++i) {
    gathered.push_back(arguments[i]);
    const bool numbers = arguments[i].rfind("--max-", 0) == 0;
    const bool lists = numbers || arguments[i] == "--joint-names";
    if (!lists || arguments[i].find('=') != std::string::npos || i + 1 == arguments.size()) {
      continue;
    }
    std::string values = arguments[++i];
    size_t end = i + 1;
    for (std::string more = values; end < arguments.size() && GoesOn(arguments[end - 1], numbers) &&
                                    GoesOn(arguments[end], numbers);) {
      more += ',' + arguments[end++];
      const size_t count = SplitWords({more}).size();
      if (count > kMost) break;
      // Fewer names than joints are a mistake; what follows may be meant as a file.
      if (numbers || count == kMost) values = more, i = end - 1;
      if (count == kMost) break;
    }
    gathered.push_back(values);
  }
  return gathered;
}

}  // namespace qal::tools
