#include "cli/manual.h"

#include <CLI/CLI.hpp>
#include <set>
#include <string>
#include <string_view>

#include "zelk/version.h"

namespace zelk::cli {
namespace {

/// A text that roff prints as it is. `\&` prints nothing; at the beginning of a line it keeps roff
/// from taking a dot for a request, and an empty line for the end of a paragraph.
std::string escaped(std::string_view text) {
  std::string result;
  for (char const c : text) {
    if (c == '-' || c == '\\') result += '\\';
    result += c == '\\' ? 'e' : c;
    if (c == '\n') result += "\\&";
  }
  return "\\&" + result;
}

/// A text that keeps its lines.
std::string literal(std::string_view text) { return ".nf\n" + escaped(text) + "\n.fi\n"; }

void describe_options(CLI::App const& app, std::string& page) {
  std::string group = "Options";
  for (auto const* const option : app.get_options()) {
    if (!option->get_positional() && option->get_group() != group) {
      group = option->get_group();
      page += ".SS " + escaped(group) + '\n';
    }
    std::string const type = option->get_positional() ? "" : option->get_type_name();
    bool const takes_value = option->get_items_expected_max() > 0 && !type.empty();
    page += ".TP\n.B " + escaped(option->get_name(false, true));
    if (takes_value) page += " " + escaped(type);
    page += '\n' + escaped(option->get_description()) + '\n';
  }
}

/// How the command is called, as its help says.
std::string usage_of(CLI::App const& command, std::string const& path) {
  std::string const help = command.help(path);
  auto const begin = help.find("Usage: ");
  return help.substr(begin, help.find('\n', begin) - begin);
}

void describe_commands(CLI::App const& app, std::string const& path, std::string& page) {
  for (auto const* const command : app.get_subcommands({})) {
    std::string const name = path + ' ' + command->get_name();
    page += ".SS " + escaped(name.substr(1)) + '\n' + escaped(command->get_description()) + ".\n" +
            literal(usage_of(*command, "zelk" + path));
    describe_options(*command, page);
    if (auto const footer = command->get_footer(); !footer.empty())
      page += ".PP\n" + literal(footer);
    describe_commands(*command, name, page);
  }
}

using Names = std::set<std::string>;

/// The names in one text, each followed by `end`.
std::string joined(Names const& names, char const* end) {
  std::string text;
  for (auto const& name : names) text += name + end;
  return text;
}

/// The options of the command itself.
Names options_of(CLI::App const& command) {
  Names words;
  for (auto const* const option : command.get_options())
    for (auto const& name : option->get_lnames()) words.insert("--" + name);
  return words;
}

/// What can be written after the command: commands of its own, and its options.
Names words_after(CLI::App const& command) {
  Names words = options_of(command);
  for (auto const* const next : command.get_subcommands({})) words.insert(next->get_name());
  return words;
}

/// The options with a value, of the command and of all below it.
void add_options_with_value(CLI::App const& command, Names& names) {
  for (auto const* const option : command.get_options()) {
    if (option->get_items_expected_max() == 0) continue;
    for (auto const& name : option->get_lnames()) names.insert("--" + name);
    for (auto const& name : option->get_snames()) names.insert("-" + name);
  }
  for (auto const* const next : command.get_subcommands({})) add_options_with_value(*next, names);
}

/// The branches of a shell's `case` that set `words` to what can be written after each command.
/// What stands in the place of a command and is none is an argument: options alone follow it.
std::string branches(CLI::App const& command, std::string const& path, Names const& common) {
  std::string text;
  auto const add = [&](std::string const& pattern, Names words) {
    words.insert(common.begin(), common.end());
    text += "    " + pattern + ") words='" + joined(words, " ") + "' ;;\n";
  };
  for (auto const* const next : command.get_subcommands({})) {
    std::string const name = path + next->get_name();
    add(name, words_after(*next));
    text += branches(*next, name + '-', common);
  }
  if (!text.empty() && !path.empty()) add(path + '*', options_of(command));
  return text;
}

}  // namespace

std::string man_page(CLI::App const& app) {
  std::string page =
      ".TH ZELK 1 \"\" \"zelk " ZELK_VERSION_STRING
      "\" \"User Commands\"\n"
      ".SH NAME\nzelk \\- exact rationals: continued fractions, convergents, guaranteed bounds\n"
      ".SH SYNOPSIS\n.B zelk\n[\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...\n"
      ".SH DESCRIPTION\n" +
      escaped(app.get_description()) + ".\n.SH OPTIONS\n";
  describe_options(app, page);
  page += ".SH COMMANDS\n";
  describe_commands(app, "", page);
  page += ".SH NOTES\n" + literal(app.get_footer());
  page +=
      ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\n"
      "If set and not empty, diagnostics on a terminal have no colour.\n"
      ".SH EXIT STATUS\n"
      ".TP\n.B 0\nAll queries were answered.\n"
      ".TP\n.B 1\nSome query was not answered.\n"
      ".TP\n.B 2\nThe command was used wrongly.\n"
      ".TP\n.B 3\nSomething could not be read or written.\n"
      ".SH SEE ALSO\n.BR gnuplot (1),\n.BR bc (1)\n.PP\n"
      "What this page leaves out is told in command.md among the documents of the package.\n";
  return page;
}

std::string bash_completion(CLI::App const& app) {
  Names common;
  for (auto const* const option : app.get_options())
    if (option->get_group() != "Options")  // which are its own alone
      for (auto const& name : option->get_lnames()) common.insert("--" + name);
  Names valued;
  add_options_with_value(app, valued);
  auto patterns = joined(valued, "|");
  patterns.pop_back();

  return R"bash(# bash completion for zelk
_zelk() {
  local current=${COMP_WORDS[COMP_CWORD]} option='' path='' word words i
  # Bash takes --option=value for three words.
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $option ]]; then
      [[ $word == = ]] || option=''
      continue
    fi
    case $word in
      )bash" +
         patterns + R"bash() option=$word ;;
      -*) ;;
      *) if [[ $path == plot ]]; then path=plot-$word; else path=${path:-$word}; fi ;;
    esac
  done
  [[ $current != = ]] || current=''
  case $option in
    '') ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W 'fraction decimal both coq' -- "$current")
      return ;;
    -o|--output)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    *) return ;;
  esac
  case $path in
    '') words=')bash" +
         joined(words_after(app), " ") + "' ;;\n" + branches(app, "", common) + R"bash(  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if [[ $path == batch ]]; then
    compopt -o filenames
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _zelk zelk
)bash";
}

}  // namespace zelk::cli
