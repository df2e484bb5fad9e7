#include "roff.h"

namespace qal::tools {

namespace {

// What stands for a character that means something, or that is set as a typographic one.
std::string Character(char c) {
  switch (c) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    case '`':
      return "\\(ga";
    case '\'':
      return "\\(aq";
    default:
      return {c};
  }
}

}  // namespace

std::string Roff(const std::string& text) {
  // A dot at the beginning of a line would be a request.
  std::string roff = text.rfind('.', 0) == 0 ? "\\&" : "";
  for (const char c : text) roff += Character(c);
  return roff;
}

std::string Bold(const std::string& text) { return "\\fB" + Roff(text) + "\\fR"; }

std::string Italic(const std::string& text) { return "\\fI" + Roff(text) + "\\fR"; }

std::string Section(const std::string& name) { return ".SH " + name + '\n'; }

std::string AsItStands(const std::vector<std::string>& lines) {
  std::string roff = ".EX\n";
  for (const std::string& line : lines) roff += Roff(line) + '\n';
  return roff + ".EE\n";
}

std::string Prose(const std::vector<std::string>& lines) {
  std::string roff;
  const char* between = "";
  for (const std::string& line : lines) {
    const size_t begin = line.find_first_not_of(' ');
    if (begin == std::string::npos) {
      between = ".PP\n";
      continue;
    }
    roff += (begin > 0 ? ".br\n" : between) + Roff(line.substr(begin)) + '\n';
    between = "";
  }
  return roff;
}

}  // namespace qal::tools
