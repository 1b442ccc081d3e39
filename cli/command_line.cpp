#include "cli/command_line.h"

#include <gmp.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/batch.h"
#include "cli/manual.h"
#include "cli/output.h"
#include "cli/plot.h"
#include "cli/progress.h"
#include "cli/query.h"
#include "cli/settings.h"
#include "cli/solver.h"
#include "cli/status.h"
#include "cli/terminal.h"
#include "zelk/approx/progress.h"
#include "zelk/convert/text.h"
#include "zelk/version.h"

namespace zelk::cli {
namespace {

using namespace std::string_view_literals;

constexpr char epilogue[] =
    "Examples:\n"
    "  zelk pi 20 --short         two short fractions with pi between them\n"
    "  zelk exp -7/2 20 --short   and with e^(-7/2) between them\n"
    "  zelk best 3.14159265 100   311/99\n"
    "  zelk simplest 3.14 3.15    22/7\n"
    "  zelk cf 415/93             [4; 2, 6, 7]\n"
    "Numbers are fractions or decimals and always exact: 415/93  -7/2  12  3.25  -1.5e-3\n"
    "Exit status: 0 all answered, 1 some query not answered, 2 wrong usage,\n"
    "3 something cannot be read or written.";

/// The command line as CLI11 knows it. Values are kept as texts until CLI11 has read all words, so
/// that --help is answered whatever else stands in the line.
class CommandLine {
 public:
  CommandLine();

  int run(int argc, char const* const* argv);

 private:
  CLI::App& add_command(std::string const& name, std::string const& description,
                        std::string const& footer);
  void add_query(Function const& function);
  void add_batch();
  void add_plots();
  void read_settings();
  int answer(Function const& function, CLI::App const& command) const;
  std::string describe(CLI::ParseError const& error) const;

  CLI::App app{"Exact rationals: continued fractions, convergents, and guaranteed bounds", "zelk"};
  Settings settings;
  std::string format{format_names[static_cast<int>(settings.style.format)]};
  std::string places;
  std::string max_digits = std::to_string(settings.limits.max_digits);
  std::string max_bits = std::to_string(static_cast<long>(settings.limits.max_bits));
  std::string max_memory;
  std::string max_time;
  std::string max_work;
  BatchOptions batch;
  std::string jobs = "1";
  PlotOptions plot;
  int status = 0;
};

constexpr unsigned most_jobs = 1024;
constexpr char common[] = "Options of all commands";

/// Help on a command ends with the options of all commands. What is required or excluded stands in
/// the descriptions.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(CLI::Option const* option) const override {
    auto const type = option->get_positional() ? "" : option->get_type_name();
    return type.empty() ? "" : ' ' + type;
  }

  std::string make_footer(CLI::App const* app) const override {
    auto footer = CLI::Formatter::make_footer(app);
    auto const* top = app;
    while (top->get_parent() != nullptr) top = top->get_parent();
    if (top == app) return footer;
    auto const is_common = [](CLI::Option const* option) { return option->get_group() == common; };
    return make_group(common, false, top->get_options(is_common)) + '\n' + footer;
  }
};

/// Whether some command has a flag of that name.
bool is_flag(CLI::App const& app, std::string_view name) {
  auto const* const option = app.get_option_no_throw(std::string(name));
  if (option != nullptr && option->get_items_expected_max() == 0) return true;
  return std::ranges::any_of(app.get_subcommands({}),
                             [&](CLI::App const* next) { return is_flag(*next, name); });
}

CLI::Option* add_flag(CLI::App& to, std::string const& name, bool& flag,
                      std::string const& description) {
  return to.add_flag(name, flag, description)->disable_flag_override();
}

/// The text is the default until another one is given.
CLI::Option* add_option(CLI::App& to, std::string const& name, std::string& text,
                        std::string const& type, std::string const& description) {
  bool const has_default = !text.empty();
  return to.add_option(name, text, description + (has_default ? ", by default " + text : ""))
      ->type_name(type);
}

/// What is done where expressions are in question: how many operations, and how precisely.
void describe_work(std::span<char> text, Query const& query) {
  std::size_t operations = 0;
  for (auto const& each : query.expressions)
    operations += each.postfix().size() - each.numbers().size();
  auto const* const plural = operations == 1 ? "" : "s";
  if (query.digits)
    std::snprintf(text.data(), text.size(), "%zu operation%s to %u digits", operations, plural,
                  *query.digits);
  else if (query.terms != UINT_MAX)
    std::snprintf(text.data(), text.size(), "%zu operation%s to %u terms", operations, plural,
                  query.terms);
  else
    std::snprintf(text.data(), text.size(), "%zu operation%s to as many digits as decide",
                  operations, plural);
}

/// CLI11 would take -.5, -pi and -(1 - e) for options. With a blank in front they pass, and the
/// blank counts for nothing in a number or an expression.
bool is_disguised(std::string_view word) {
  if (!word.starts_with(" -") || word.size() < 3 || word == " -h") return false;
  constexpr std::string_view others = "-o0123456789";
  return others.find(word[2]) == std::string_view::npos;
}

CommandLine::CommandLine() {
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("zelk " ZELK_VERSION_STRING ", GMP ") + gmp_version,
                       "Print the versions and exit");
  app.formatter(std::make_shared<HelpFormatter>());
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.footer(epilogue);

  app.option_defaults()->group(common);
  add_option(app, "--format", format, "FORMAT",
             "How numbers are printed: fraction, decimal with bounds rounded\n"
             "outward, or both; coq writes eval's answer as a goal for Coq");
  add_option(app, "--digits-out", places, "N",
             "Decimal places to print, by default DIGITS + " +
                 std::to_string(places_beyond_digits) + ", or " +
                 std::to_string(places_without_digits) + "; alone it\nmeans --format decimal too");
  add_flag(app, "--json", settings.style.json, "Print each answer as a JSON object on one line");
  add_flag(app, "--certificate", settings.style.certificate,
           "Print a certificate of each answer of exp, sin, cos, pi and eval in\n"
           "its place, as JSON Lines; with --json after it");
  add_flag(app, "--statement", settings.style.statement,
           "Print what that certificate would state, in its spelling, for\n"
           "zelk-check-certificate --statement");
  add_option(app, "--max-digits", max_digits, "N", "Refuse queries for more DIGITS");
  add_option(app, "--max-bits", max_bits, "N",
             "Refuse queries that would take more bits of memory, or work\n"
             "through more than a thousand times as many");
  add_option(app, "--max-memory", max_memory, "SIZE",
             "The same limit in bytes; K, M, G or T may follow, as in 4G; not\n"
             "with --max-bits");
  add_option(app, "--max-time", max_time, "SECONDS", "Give up a query that takes longer");
  add_option(app, "--max-work", max_work, "N",
             "Give up a query that takes more than N units of work, of which a\n"
             "product of B bits takes B^1.5: some 10^11 a second, and the same on\n"
             "every machine");
  app.option_defaults()->group("Options");

  for (auto const& function : all_functions()) add_query(function);
  add_batch();
  add_plots();
}

CLI::App& CommandLine::add_command(std::string const& name, std::string const& description,
                                   std::string const& footer) {
  auto* const command = app.add_subcommand(name, description);
  command->footer("Examples:\n" + footer);
  command->fallthrough()->group("Commands");
  return *command;
}

void CommandLine::add_query(Function const& function) {
  auto& command = add_command(function.name, function.summary, function.examples);
  command.callback([this, &function, &command] { status = answer(function, command); });
  // CLI11 takes a dash and a digit for an option only if some option is named by that digit. None
  // is, so negative numbers pass as plain arguments in any place.
  for (auto const& argument : function.arguments) {
    auto* const option = command.add_option(argument.name, argument.summary);
    option->type_name(argument.is_option() ? "N" : "")->required(!argument.is_option());
  }
  for (auto const& flag : function.flags) {
    auto* const option = command.add_flag(flag.name, flag.summary)->disable_flag_override();
    for (auto const& other : function.flags) {
      if (&other == &flag) break;
      if (other.field == flag.field) command.get_option(other.name)->excludes(option);
    }
  }
}

void CommandLine::add_batch() {
  auto& command = add_command(
      "batch", "Answer a query a line, an answer a line",
      "  printf 'exp 1/2 10\\ncf 415/93 --terms 2\\n' | zelk batch\n"
      "  zelk batch --json queries.txt > answers.jsonl\n"
      "A line reads as the command line does without the name zelk and without the options of\n"
      "all commands. Blank lines and what follows a # do not count. A query that is not answered\n"
      "gets a line on standard error, FILE:LINE:COLUMN: REASON, and the rest is still answered.");
  add_option(command, "FILE", batch.file, "", "The queries; - is standard input");
  add_flag(command, "--fail-fast", batch.fail_fast, "Stop at the first query not answered");
  add_flag(command, "--stats", batch.stats,
           "Tell at the end how many queries there were, how many of them\n"
           "repeated, how many refused, and how long it took");
  add_option(command, "--jobs", jobs, "N",
             "How many queries to answer side by side; 0 is one a core");
  command.callback([this] {
    batch.jobs = parse_count(Word{jobs});
    if (batch.jobs > most_jobs)
      throw Refusal(Refusal::Kind::malformed,
                    "--jobs " + jobs + ": at most " + std::to_string(most_jobs));
    status = run_batch(batch, settings) ? 0 : not_answered;
  });
}

void CommandLine::add_plots() {
  auto& command = add_command(
      "plot",
      "Draw bounds of an expression in x, bounds or convergents as an SVG image, with gnuplot",
      "  zelk plot 'exp(-x^2) * cos(3*x)' --from -3 --to 3 --output wave.svg\n"
      "  zelk plot exp --from -1 --to 2 --output exp.svg\n"
      "  zelk plot convergents 3.14159265 --output pi.svg\n"
      "The graph of an expression lies within what is drawn, between the points too.");
  command.require_subcommand(0, 1);
  auto const add_range = [&](CLI::App& kind, std::string& digits) {
    add_option(kind, "--from", plot.from, "X", "The first point");
    add_option(kind, "--to", plot.to, "X", "The last point");
    add_option(kind, "--points", plot.points, "N", "How many points");
    add_option(kind, "--digits", digits, "DIGITS",
               "Decimal digits, which say how close the bounds are");
  };
  auto const add_output = [&](CLI::App& kind) {
    return add_option(kind, "-o,--output", plot.file, "FILE",
                      "Where the image goes, required; - is standard output");
  };
  add_option(command, "EXPRESSION", plot.expression, "", "In x, in quotes for the shell");
  add_output(command);
  add_range(command, plot.expression_digits);
  // Before anything is drawn.
  command.parse_complete_callback([this, &command] {
    if (!command.get_subcommands().empty() && !plot.expression.empty())
      throw CLI::ArgumentMismatch("unexpected argument: " + plot.expression);
  });
  command.callback([this, &command] {
    if (!command.get_subcommands().empty()) return;
    if (plot.expression.empty()) throw CLI::RequiredError("a picture or EXPRESSION");
    if (plot.file.empty()) throw CLI::RequiredError("--output");
    settings.limits.within([&] { plot_expression(plot, settings); });
  });
  auto const add = [&](std::string const& name, std::string const& description,
                       std::string const& example) -> CLI::App& {
    auto* const kind = command.add_subcommand(name, description);
    kind->fallthrough()->group("Pictures");
    kind->footer("Examples:\n  zelk plot " + name + ' ' + example + " --output " + name + ".svg");
    add_output(*kind)->required();
    return *kind;
  };
  for (auto const& function : all_functions()) {
    if (!function.can_be_plotted) continue;
    auto& kind = add(function.name, "The bounds of " + function.name + " over a range of points",
                     "--from -1 --to 2");
    add_range(kind, plot.digits);
    kind.callback([this, &function] {
      settings.limits.within([&] { plot_bounds(function, plot, settings); });
    });
  }
  auto& kind = add("convergents", "The convergents of Q", "3.14159265");
  add_option(kind, "Q", plot.number, "", "A fraction or decimal")->required();
  kind.callback([this] { settings.limits.within([&] { plot_convergents(plot, settings); }); });
}

void CommandLine::read_settings() {
  auto const refuse = [](std::string const& reason) {
    throw Refusal(Refusal::Kind::malformed, reason);
  };
  auto const* const known = std::ranges::find(format_names, format);
  if (known == std::end(format_names))
    refuse(convert::quoted(format) + ": expected fraction, decimal, both or coq");
  settings.style.format = static_cast<Format>(known - format_names);
  if (app.count("--digits-out") != 0) {
    settings.style.places = parse_count(Word{places});
    if (app.count("--format") == 0) settings.style.format = Format::decimal;
  }
  if (settings.style.format == Format::coq && (settings.style.json || settings.style.certificate))
    refuse("--format coq excludes --json and --certificate");
  if (settings.style.statement &&
      (settings.style.format == Format::coq || settings.style.json || settings.style.certificate))
    refuse("--statement excludes --format coq, --json and --certificate");
  settings.limits.max_digits = parse_count(Word{max_digits});
  settings.limits.max_bits = static_cast<double>(parse_whole(Word{max_bits}, LONG_MAX));
  if (app.count("--max-memory") != 0) {
    if (app.count("--max-bits") != 0) refuse("--max-bits excludes --max-memory");
    settings.limits.max_bits = parse_memory(max_memory);
  }
  if (app.count("--max-time") != 0) settings.limits.max_seconds = parse_quantity(max_time);
  if (app.count("--max-work") != 0) settings.limits.max_work = parse_quantity(max_work);
  if (settings.style.places > settings.limits.max_digits)
    refuse("--digits-out " + places + " is more than --max-digits " +
           std::to_string(settings.limits.max_digits));
}

int CommandLine::answer(Function const& function, CLI::App const& command) const {
  Query query{&function};
  std::string line = function.name;  // as a file of queries would have it
  for (auto const& argument : function.arguments) {
    auto const& given = command.get_option(argument.name)->results();
    query.words.emplace_back();
    if (given.empty()) continue;
    if (argument.is_option()) line += ' ' + argument.name;
    std::string_view text = given.front();
    if (is_disguised(text)) text.remove_prefix(1);
    std::string_view const quote = text.find_first_of(" \t") == std::string_view::npos ? "" : "'";
    line.append(" ").append(quote);
    query.words.back() = Word{text, line.size() + 1};
    line.append(text).append(quote);
  }
  for (auto const& flag : function.flags)
    if (command.count(flag.name) != 0) {
      line += ' ' + flag.name;
      query.*flag.field = flag.value;
    }

  try {
    settings.limits.within([&] { parse_words(query); });
    query.places = places_of(query, settings.style);
    auto const demand = settings.limits.check(query);
    na::StepCounter const counter;
    Progress const progress([&](std::span<char> text, long seconds) {
      bool const is_long = line.size() > 30;
      char far[64];
      if (auto const steps = counter.steps(); steps != 0)
        std::snprintf(far, sizeof far, "%lu of about %.0f %s", steps, demand.steps,
                      function.name == "pi" ? "convergents" : "terms");
      else if (!query.expressions.empty())
        describe_work(far, query);
      else
        std::snprintf(far, sizeof far, "about %.0e bits of work", demand.worked_through);
      return std::snprintf(text.data(), text.size(), "%.*s%s: %ld s, %s", is_long ? 27 : 30,
                           line.c_str(), is_long ? "..." : "", seconds, far);
    });
    auto const& style = settings.style;
    auto const [text, note] = settings.limits.within([&] {
      auto const answered =
          Solver(settings.limits)
              .answer_within(settings.limits.max_bits, query, demand.held, proof_of(style));
      return std::pair(to_output(line, query, answered, style, "\n", "\n"),
                       note_on(query, answered.answer));
    });
    print({text, "\n"});
    if (note != nullptr) complain({note});
    return 0;
  } catch (Refusal const& refusal) {
    if (settings.style.json) {
      put("{");
      write_json_error(line, refusal.column, refusal.reason, put);
      put("\n");
    }
    throw;
  }
}

int CommandLine::run(int argc, char const* const* argv) {
  auto const given = [&](std::string_view word) {
    return std::find(argv, argv + argc, word) != argv + argc;
  };
  try {
    // CLI11 would take "++" for the end of a subcommand. No function has an argument like that.
    if (given("++")) throw CLI::ArgumentMismatch("unexpected argument: ++");
    // CLI11 would take `--option= 5` for `--option=5`; an empty value is more likely a mistake.
    for (auto const* const* word = argv + 1; word < argv + argc && *word != "--"sv; ++word)
      if (std::string_view const text = *word; text.starts_with("--")) {
        if (text.ends_with('='))
          throw CLI::ArgumentMismatch(std::string(text) + " lacks its value");
        auto const end = text.find('=');
        if (end != std::string_view::npos && is_flag(app, text.substr(0, end)))
          throw CLI::ArgumentMismatch(std::string(text.substr(0, end)) + " takes no value");
      }
    if (argc == 2 && given("--man-page")) return put(man_page(app)), 0;
    if (argc == 2 && given("--bash-completion")) return put(bash_completion(app)), 0;
    app.parse_complete_callback([this] { read_settings(); });
    std::vector<std::string> words(argv + 1, argv + argc);
    for (std::size_t i = 0; i < words.size(); ++i)
      if (is_disguised(' ' + words[i]) &&
          (i == 0 || (words[i - 1] != "-o" && words[i - 1] != "--output")))
        words[i].insert(0, 1, ' ');
    std::ranges::reverse(words);
    app.parse(words);
    return status;
  } catch (CLI::CallForHelp const&) {
    put(app.help());
  } catch (CLI::CallForVersion const& version) {
    print({version.what(), "\n"});
  } catch (CLI::ParseError const& error) {
    complain({describe(error)});
    return wrong_usage;
  } catch (Refusal const& refusal) {
    complain({refusal.what()});
    return refusal.kind == Refusal::Kind::malformed ? wrong_usage : not_answered;
  }
  return 0;
}

/// An argument nobody asked for is the likely cause of whatever else is wrong: it is named first.
std::string CommandLine::describe(CLI::ParseError const& error) const {
  std::string help = "zelk";
  auto const* at = &app;
  while (!at->get_subcommands().empty()) {
    at = at->get_subcommands().front();
    help += ' ' + at->get_name();
  }
  std::string reason = error.what();
  if (reason == "A subcommand is required") reason = "a command is required";
  for (auto const& extra : app.remaining(true)) {
    if (extra == "--") continue;
    reason = "unexpected argument: " + extra;
    if (!extra.starts_with('-') && at->get_require_subcommand_min() != 0) {
      reason = extra + " is not a command; there are ";
      for (auto const* const known : at->get_subcommands({}))
        reason += (reason.ends_with(' ') ? "" : ", ") + known->get_name();
    }
    break;
  }
  return reason + " (see " + help + " --help)";
}

}  // namespace

int run_command_line(int argc, char const* const* argv) { return CommandLine().run(argc, argv); }

}  // namespace zelk::cli
