#include "cli/manual.h"

#include <sstream>
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

/// The commands and long options that can come next.
std::string words_of(CLI::App const& app) {
  std::string words;
  for (auto const* const command : app.get_subcommands({})) words += command->get_name() + ' ';
  for (auto const* const option : app.get_options())
    if (!option->get_positional() && !option->get_group().empty())
      for (auto const& name : option->get_lnames()) words += "--" + name + ' ';
  return words;
}

void complete(CLI::App const& app, std::string const& path, std::string& cases) {
  for (auto const* const command : app.get_subcommands({})) {
    std::string const name = path + command->get_name();
    cases += "    " + name + ") words+=' " + words_of(*command) + "' ;;\n";
    complete(*command, name + '-', cases);
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
  std::string cases;
  complete(app, "", cases);
  return "# bash completion for zelk\n"
         "_zelk() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local path='' word words='" +
         words_of(app) +
         "'\n"
         "  case $previous in\n"
         "    --format) COMPREPLY=($(compgen -W 'fraction decimal both' -- \"$current\")); return "
         ";;\n"
         "    -o|--output) COMPREPLY=($(compgen -f -- \"$current\")); return ;;\n"
         "  esac\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
         "    case $word in\n"
         "      -*|*[0-9]*) ;;\n"
         "      plot) path=plot ;;\n"
         "      *) [[ $path == plot ]] && path=plot-$word || path=${path:-$word} ;;\n"
         "    esac\n"
         "  done\n"
         "  case $path in\n" +
         cases +
         "  esac\n"
         "  [[ $path != batch ]] || mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
         "  mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -W \"$words\" -- "
         "\"$current\")\n"
         "}\n"
         "complete -F _zelk zelk\n";
}

}  // namespace zelk::cli
