#include "manual.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "option_text.h"
#include "roff.h"

namespace qal::tools {

namespace {

// A command, by the words that call it.
struct Command {
  CLI::App* app;
  std::vector<std::string> words;       // "qal", "explain", "line"
  std::vector<std::string> below = {};  // names of the pages of its commands
  const Command* above = nullptr;

  std::string Page() const { return fmt::format("{}", fmt::join(words, "-")); }
  std::string Call() const { return fmt::format("{}", fmt::join(words, " ")); }
};

// A help's lines by what they are about: "Exit status", "Environment", "Example"; the rest is "".
using Parts = std::map<std::string, std::vector<std::string>>;

Parts PartsOf(const std::string& footer) {
  Parts parts;
  std::string part;
  for (const std::string& line : LinesOf(footer)) {
    std::string text = line;
    for (const char* heading : {"Exit status", "Environment", "Example"}) {
      const std::string begin = std::string(heading) + ": ";
      if (line.rfind(begin, 0) != 0) continue;
      part = heading;
      text = line.substr(begin.size());
    }
    parts[part].push_back(text);
  }
  return parts;
}

// "--frame {base,tool}", "-o, --out FILE".
std::string OptionHead(const CLI::Option& option) {
  std::string head;
  const auto add = [&head](const std::string& name) {
    head += (head.empty() ? "" : ", ") + Bold(name);
  };
  for (const std::string& name : option.get_snames()) add('-' + name);
  for (const std::string& name : option.get_lnames()) add("--" + name);
  if (option.get_positional()) head = Italic(option.get_name(true));
  const std::string shape = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
  return shape.empty() ? head : head + ' ' + Italic(shape);
}

std::string OptionEntry(const CLI::Option& option) {
  std::string entry = ".TP\n" + OptionHead(option) + '\n';
  bool first = true;
  for (const std::string& paragraph : ParagraphsOf(option)) {
    entry += (first ? "" : ".br\n") + Roff(paragraph) + '\n';
    first = false;
  }
  if (!option.get_default_str().empty()) {
    entry += fmt::format("(default: {})\n", Roff(option.get_default_str()));
  }
  return entry;
}

std::vector<CLI::Option*> OptionsOf(CLI::App& app, bool positional) {
  return app.get_options(
      [positional](const CLI::Option* each) { return each->get_positional() == positional; });
}

std::string Synopsis(const Command& command) {
  std::string line = Bold(command.Call());
  if (!command.below.empty()) return line + " [" + Italic("OPTION") + "]... " + Italic("COMMAND");
  for (const CLI::Option* option : OptionsOf(*command.app, false)) {
    if (option->get_required()) line += ' ' + OptionHead(*option);
  }
  line += " [" + Italic("OPTION") + "]...";
  for (const CLI::Option* argument : OptionsOf(*command.app, true)) {
    const std::string name = Italic(argument->get_name(true));
    const char* const more = argument->get_items_expected_max() > 1 ? "..." : "";
    line += argument->get_required() ? ' ' + name + more : " [" + name + ']' + more;
  }
  return line;
}

std::string Options(const Command& command) {
  std::string text;
  const std::vector<CLI::Option*> arguments = OptionsOf(*command.app, true);
  if (!arguments.empty()) text += Section("ARGUMENTS");
  for (const CLI::Option* argument : arguments) text += OptionEntry(*argument);
  text += Section("OPTIONS");
  for (const CLI::Option* option : OptionsOf(*command.app, false)) text += OptionEntry(*option);
  return text;
}

std::string Commands(const Command& command) {
  if (command.below.empty()) return "";
  std::string text = Section("COMMANDS");
  for (const CLI::App* each : command.app->get_subcommands({})) {
    text += ".TP\n" + Bold(each->get_name());
    for (const std::string& alias : each->get_aliases()) text += ", " + Bold(alias);
    text += '\n' + Roff(each->get_description()) + '\n';
  }
  return text;
}

// Of a command that works with an arm.
std::string Environment(const Command& command, const Parts& parts) {
  const bool arm = command.app->get_option_no_throw("--arm") != nullptr;
  const auto others = parts.find("Environment");
  std::string text;
  if (arm || others != parts.end()) text += Section("ENVIRONMENT");
  if (arm)
    text += ".TP\n" + Bold("QAL_ARM") +
            "\nThe file of the arm, where \\fB\\-\\-arm\\fR doesn't name one.\n";
  if (others != parts.end()) text += ".PP\n" + Prose(others->second);
  if (!arm) return text;
  return text + Section("FILES") + ".TP\n" + Italic("share/QAL_kinematics/arms/") +
         "\nDescriptions of arms, in the folder that the tools are installed to.\n";
}

std::string ExitStatus(const Command& command, const Parts& parts) {
  // What a command doesn't say itself is as the tool says.
  for (const Command* from = &command; from != nullptr; from = from->above) {
    const Parts own = from == &command ? parts : PartsOf(from->app->get_footer());
    const auto found = own.find("Exit status");
    if (found != own.end()) return Section("EXIT STATUS") + Prose(found->second);
  }
  return "";
}

std::string SeeAlso(const Command& command) {
  std::vector<std::string> pages = command.below;
  for (const Command* above = command.above; above != nullptr; above = above->above) {
    pages.push_back(above->Page());
  }
  for (const char* tool : {"qal", "mkik", "ikcheck"}) {
    if (tool != command.words.front()) pages.emplace_back(tool);
  }
  std::string text = Section("SEE ALSO");
  for (const std::string& page : pages) {
    text += Bold(page) + "(1)" + (page == pages.back() ? "\n" : ",\n");
  }
  return text;
}

// Without its full stop.
std::string FirstSentence(const std::string& text) {
  const size_t end = text.find(". ");
  return text.substr(0, end == std::string::npos ? text.size() - 1 : end);
}

std::string PageOf(const Command& command) {
  const Parts parts = PartsOf(command.app->get_footer());
  std::string about = fmt::format("{}", fmt::join(LinesOf(command.app->get_description()), " "));
  if (about.back() != '.') about += '.';
  std::string text = fmt::format(".TH \"{}\" 1 \"\" \"QAL_kinematics {}\" \"QAL_kinematics\"\n",
                                 Roff(command.Page()), QAL_VERSION);
  // Nothing is hyphenated: it would part the names of options.
  text += ".nh\n.ad l\n" + Section("NAME") + Roff(command.Page()) + " \\- " +
          Roff(FirstSentence(about)) + '\n';
  text +=
      Section("SYNOPSIS") + Synopsis(command) + '\n' + Section("DESCRIPTION") + Roff(about) + '\n';
  const auto notes = parts.find("");
  if (notes != parts.end()) text += ".PP\n" + Prose(notes->second);
  text += Commands(command) + Options(command) + ExitStatus(command, parts) +
          Environment(command, parts);
  const auto examples = parts.find("Example");
  if (examples != parts.end()) text += Section("EXAMPLES") + AsItStands(examples->second);
  return text + SeeAlso(command);
}

}  // namespace

std::vector<ManualPage> Manual(CLI::App& app) {
  std::vector<ManualPage> pages;
  // The commands of commands come behind these, so that the one above stays where it is.
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<Command>(Command{&app, {app.get_name()}}));
  for (size_t i = 0; i < commands.size(); ++i) {
    Command& command = *commands[i];
    for (CLI::App* each : command.app->get_subcommands([](CLI::App*) { return true; })) {
      Command below = {each, command.words};
      below.words.push_back(each->get_name());
      below.above = &command;
      command.below.push_back(below.Page());
      commands.push_back(std::make_unique<Command>(std::move(below)));
    }
    pages.push_back({command.Page(), PageOf(command)});
  }
  return pages;
}

}  // namespace qal::tools
