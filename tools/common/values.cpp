#include "values.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>
#include <utility>

namespace qal::tools {

namespace {

constexpr std::pair<const char*, Values::Kind> kKinds[] = {{"one of", Values::Kind::kOneOf},
                                                           {"list of", Values::Kind::kListOf},
                                                           {"file", Values::Kind::kFile},
                                                           {"arm", Values::Kind::kArm}};

// A validator's name says it: "KIND: WORD WORD".
std::string NameOf(Values::Kind kind, const std::string& words) {
  for (const auto& [name, known] : kKinds) {
    if (known == kind) return fmt::format("{}: {}", name, words);
  }
  return "";
}

// One that takes everything.
CLI::Option* Mark(CLI::Option* option, Values::Kind kind, const std::string& words) {
  const auto any = [](const std::string&) { return std::string(); };
  return option->check(CLI::Validator(any, "", NameOf(kind, words)));
}

}  // namespace

CLI::Option* TakesOneOf(CLI::Option* option, const std::vector<std::string>& words) {
  const std::string name = NameOf(Values::Kind::kOneOf, fmt::format("{}", fmt::join(words, " ")));
  // The words are the option's shape in the help, in place of the parser's TEXT:{...}.
  option->type_name(fmt::format("{{{}}}", fmt::join(words, ",")));
  return option->check(CLI::IsMember(words).description("").name(name));
}

CLI::Option* TakesListOf(CLI::Option* option, const std::vector<std::string>& words) {
  return Mark(option, Values::Kind::kListOf, fmt::format("{}", fmt::join(words, " ")));
}

CLI::Option* TakesFile(CLI::Option* option, const std::string& patterns) {
  option->type_name(option->get_positional() ? "" : "FILE");
  return Mark(option, Values::Kind::kFile, patterns);
}

CLI::Option* TakesArm(CLI::Option* option) {
  option->type_name(option->get_positional() ? "" : "FILE");
  return Mark(option, Values::Kind::kArm, kArmFiles);
}

Values ValuesOf(CLI::Option& option) {
  for (int i = 0;; ++i) {
    std::string name;
    try {
      name = option.get_validator(i)->get_name();
    } catch (const CLI::OptionNotFound&) {  // how the parser says that there are no more
      return {};
    }
    for (const auto& [kind_name, kind] : kKinds) {
      const std::string begin = std::string(kind_name) + ": ";
      if (name.rfind(begin, 0) != 0) continue;
      Values values = {kind, {}};
      std::istringstream words(name.substr(begin.size()));
      for (std::string word; words >> word;) values.each.push_back(word);
      return values;
    }
  }
}

}  // namespace qal::tools
