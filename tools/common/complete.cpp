#include "complete.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>

#include "option_text.h"
#include "values.h"

namespace qal::tools {

namespace {

// Where the word stands that is to be completed.
struct Place {
  CLI::App* command;
  CLI::Option* open = nullptr;  // the option whose values come
  int values = 0;               // how many of them there are
  size_t arguments = 0;         // how many words are neither options nor their values
  bool options = true;          // none follow behind --
  std::set<const CLI::Option*> given = {};
};

bool LooksLikeOption(const std::string& word) {
  if (word.size() < 2 || word[0] != '-') return false;
  double value = 0.0;
  const char* const begin = word.data();
  return std::from_chars(begin, begin + word.size(), value).ptr == begin;
}

CLI::App* CommandNamed(CLI::App& app, const std::string& name) {
  const auto found =
      app.get_subcommands([&name](CLI::App* command) { return command->check_name(name); });
  return found.empty() ? nullptr : found.front();
}

void Pass(const std::string& word, Place& place) {
  if (place.options && word == "--") {
    place.open = nullptr;
    place.options = false;
  } else if (place.options && LooksLikeOption(word)) {
    const size_t equals = word.find('=');
    place.open = place.command->get_option_no_throw(word.substr(0, equals));
    place.values = 0;
    place.given.insert(place.open);
    if (equals != std::string::npos) place.open = nullptr;
  } else if (place.open != nullptr && place.values < place.open->get_items_expected_max()) {
    ++place.values;
  } else if (CLI::App* command = CommandNamed(*place.command, word)) {
    place = {command};
  } else {
    place.open = nullptr;
    ++place.arguments;
  }
}

// A line for a word that goes on where `begun` ends.
void Offer(const std::string& begun, const std::string& word, const std::string& about,
           std::string& lines) {
  if (word.compare(0, begun.size(), begun) == 0) lines += word + '\t' + about + '\n';
}

// The descriptions that are installed with the tool.
void OfferInstalledArms(const std::string& begun, std::string& lines) {
  namespace fs = std::filesystem;
  std::error_code error;  // none are there, then
  const fs::path tool = fs::read_symlink("/proc/self/exe", error);
  const fs::path folder = (tool.parent_path() / QAL_INSTALLED_ARMS).lexically_normal();
  std::set<std::string> paths;
  for (const auto& entry : fs::directory_iterator(folder, error)) paths.insert(entry.path());
  for (const std::string& path : paths) Offer(begun, path, "installed arm", lines);
}

void OfferValues(CLI::Option& option, const std::string& begun, std::string& lines) {
  const Values values = ValuesOf(option);
  using Kind = Values::Kind;
  if (values.kind == Kind::kFile || values.kind == Kind::kArm) {
    lines += fmt::format("files:\t{}\n", fmt::join(values.each, " "));
    if (values.kind == Kind::kArm) OfferInstalledArms(begun, lines);
    return;
  }
  const size_t comma = values.kind == Kind::kListOf ? begun.rfind(',') : std::string::npos;
  const std::string before = comma == std::string::npos ? "" : begun.substr(0, comma + 1);
  for (const std::string& word : values.each) {
    Offer(begun, before + word, TextOfChoice(option, word), lines);
  }
}

// Of an option that has a long name and a short one, the long one.
void OfferOptions(const Place& place, const std::string& begun, std::string& lines) {
  for (const CLI::Option* option : place.command->get_options()) {
    if (option->get_positional() || place.given.count(option) > 0) continue;
    const std::vector<std::string>& names = option->get_lnames();
    for (const std::string& name : names) Offer(begun, "--" + name, FirstLine(*option), lines);
    if (!names.empty() && begun != "-") continue;
    for (const std::string& name : option->get_snames()) {
      Offer(begun, '-' + name, FirstLine(*option), lines);
    }
  }
}

// The argument that comes next, of those that stand by their place; null: no more are taken.
CLI::Option* NextArgument(const Place& place) {
  size_t begin = 0;
  for (CLI::Option* option :
       place.command->get_options([](const CLI::Option* each) { return each->get_positional(); })) {
    begin += static_cast<size_t>(option->get_items_expected_max());
    if (place.arguments < begin) return option;
  }
  return nullptr;
}

}  // namespace

std::string Completions(CLI::App& app, const std::vector<std::string>& words) {
  Place place = {&app};
  for (size_t i = 0; i + 1 < words.size(); ++i) Pass(words[i], place);
  const std::string& begun = words.back();
  const size_t equals = begun.find('=');
  std::string lines;
  if (place.options && LooksLikeOption(begun) && equals != std::string::npos) {
    CLI::Option* option = place.command->get_option_no_throw(begun.substr(0, equals));
    if (option != nullptr) OfferValues(*option, begun.substr(equals + 1), lines);
    return lines;
  }
  if (place.open != nullptr && place.values < place.open->get_items_expected_min()) {
    OfferValues(*place.open, begun, lines);
    return lines;
  }
  if (place.options && !begun.empty() && begun[0] == '-') {
    OfferOptions(place, begun, lines);
    return lines;
  }
  for (const CLI::App* command : place.command->get_subcommands({})) {
    Offer(begun, command->get_name(), command->get_description(), lines);
  }
  if (CLI::Option* argument = NextArgument(place)) OfferValues(*argument, begun, lines);
  if (lines.empty() && place.options) OfferOptions(place, begun, lines);
  return lines;
}

}  // namespace qal::tools
