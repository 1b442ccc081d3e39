#include "cli/manual.h"

#include <CLI/CLI.hpp>
#include <string_view>

namespace zelk::cli {
namespace {

/// As roff takes it literally: an empty line is a paragraph, a line cannot begin with its controls.
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
  for (auto const* const option : app.get_options()) {
    if (option->get_group().empty()) continue;
    std::string const type = option->get_positional() ? "" : option->get_type_name();
    bool const takes_value = option->get_items_expected_max() > 0 && !type.empty();
    page += ".TP\n.B " + escaped(option->get_name(false, true));
    if (takes_value) page += " " + escaped(type);
    page += '\n' + escaped(option->get_description()) + '\n';
  }
}

void describe_commands(CLI::App const& app, std::string const& path, std::string& page) {
  for (auto const* const command : app.get_subcommands({})) {
    std::string const name = path + ' ' + command->get_name();
    page += ".SS " + escaped(name.substr(1)) + '\n' + escaped(command->get_description()) + ".\n";
    describe_options(*command, page);
    if (auto const footer = command->get_footer(); !footer.empty())
      page += ".PP\n" + literal(footer);
    describe_commands(*command, name, page);
  }
}

std::string commands_of(CLI::App const& app) {
  std::string names;
  for (auto const* const command : app.get_subcommands({})) names += command->get_name() + ' ';
  return names;
}

/// The long options, all or those with a value, and then separated otherwise.
std::string options_of(CLI::App const& app, bool with_value_only, char const* separator) {
  std::string names;
  for (auto const* const option : app.get_options())
    if (!option->get_positional() && !option->get_group().empty() &&
        (!with_value_only || option->get_items_expected_max() > 0))
      for (auto const& name : option->get_lnames()) names += "--" + name + separator;
  return names;
}

/// What can come after each command, and in `valued` all options with a value.
void complete(CLI::App const& app, std::string const& path, std::string& cases,
              std::string& valued) {
  valued += options_of(app, true, "|");
  for (auto const* const command : app.get_subcommands({})) {
    std::string const name = path + command->get_name();
    cases += "    " + name + ") words='" + commands_of(*command) +
             options_of(*command, false, " ") + "' ;;\n";
    complete(*command, name + '-', cases, valued);
  }
}

}  // namespace

std::string man_page(CLI::App const& app) {
  std::string page =
      ".TH ZELK 1 \"\" \"zelk " ZELK_VERSION
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
      "If set and not empty, diagnostics on a terminal have no colour.\n";
  return page;
}

std::string bash_completion(CLI::App const& app) {
  std::string cases, valued;
  complete(app, "", cases, valued);
  return "# bash completion for zelk\n"
         "_zelk() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local path='' word skip=false words='" +
         commands_of(app) +
         "'\n"
         "  case $previous in\n"
         "    --format) mapfile -t COMPREPLY < <(compgen -W 'fraction decimal both' -- "
         "\"$current\"); return ;;\n"
         "    -o|--output) compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "
         "\"$current\"); return ;;\n"
         "    " +
         valued +
         "-) return ;;\n"
         "  esac\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
         "    if $skip; then skip=false; continue; fi\n"
         "    case $word in\n"
         "      -o|" +
         valued +
         "-) skip=true ;;\n"
         "      -*|*[0-9]*) ;;\n"
         "      *) if [[ $path == plot ]]; then path=plot-$word; else path=${path:-$word}; fi ;;\n"
         "    esac\n"
         "  done\n"
         "  case $path in\n" +
         cases +
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words " +
         options_of(app, false, " ") +
         "\" -- \"$current\")\n"
         "  if [[ $path == batch ]]; then\n"
         "    compopt -o filenames\n"
         "    mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -f -- \"$current\")\n"
         "  fi\n"
         "}\n"
         "complete -F _zelk zelk\n";
}

}  // namespace zelk::cli
