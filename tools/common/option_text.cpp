#include "option_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <sstream>

namespace qal::tools {

namespace {

// "ramp: ", "limited, s-curve: " and the like.
bool BeginsWithAChoice(const std::string& line) {
  const size_t colon = line.find(": ");
  if (colon == std::string::npos || line[0] == '-') return false;
  return std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char c) {
                       return std::islower(static_cast<unsigned char>(c)) != 0 || c == '-' ||
                              c == ',' || c == ' ';
                     }) &&
         line.find(' ') >= line.find_first_of(",:");
}

}  // namespace

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> ParagraphsOf(const CLI::Option& option) {
  std::vector<std::string> paragraphs;
  for (const std::string& line : LinesOf(option.get_description())) {
    if (paragraphs.empty() || BeginsWithAChoice(line)) {
      paragraphs.push_back(line);
    } else {
      paragraphs.back() += ' ' + line;
    }
  }
  return paragraphs;
}

std::string FirstLine(const CLI::Option& option) {
  const std::vector<std::string> paragraphs = ParagraphsOf(option);
  return paragraphs.empty() ? "" : paragraphs.front();
}

std::string TextOfChoice(const CLI::Option& option, const std::string& word) {
  const std::string begin = word + ": ";
  for (const std::string& paragraph : ParagraphsOf(option)) {
    if (paragraph.rfind(begin, 0) == 0) return paragraph.substr(begin.size());
  }
  return "";
}

}  // namespace qal::tools
