#include "cli/command_line.h"

#include <gmp.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <climits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/batch.h"
#include "cli/manual.h"
#include "cli/plot.h"
#include "cli/query.h"
#include "cli/settings.h"
#include "cli/solver.h"
#include "cli/terminal.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

using namespace std::string_view_literals;

constexpr char epilogue[] =
    "Examples:\n"
    "  zelk cf 415/93        [4; 2, 6, 7]\n"
    "  zelk approx 415/93 2  9/2\n"
    "  zelk exp -7/2 20      two fractions with e^(-7/2) between them\n"
    "Numbers are fractions or decimals and always exact: 415/93  -7/2  12  3.25  -1.5e-3\n"
    "Exit status: 0 all answered, 1 some query not answered, 2 wrong usage,\n"
    "3 something cannot be read or written.";

/// The command line as CLI11 knows it. Numbers are kept as texts until the whole line is known to
/// be well formed, so that a subcommand's --help answers in any company.
class CommandLine {
 public:
  CommandLine();

  int run(int argc, char const* const* argv);

 private:
  CLI::App& add_command(std::string const& name, std::string const& description,
                        std::string const& footer);
  CLI::App& add_query(Function function, std::string const& description,
                      std::string const& examples);
  void add_queries();
  void add_batch();
  void add_plots();
  void read_settings();
  int answer(Function function);
  std::string describe(CLI::ParseError const& error) const;

  CLI::App app{"Exact rationals: continued fractions, convergents, and guaranteed bounds", "zelk"};
  Settings settings;
  std::optional<std::string> format, places, max_digits, max_bits;
  std::string number, count;
  std::optional<std::string> terms;
  bool lower = false;
  bool upper = false;
  bool derivative = false;
  BatchOptions batch;
  PlotOptions plot;
  int status = 0;
};

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

CLI::Option* add_flag(CLI::App& to, std::string const& name, bool& flag,
                      std::string const& description) {
  return to.add_flag(name, flag, description)->disable_flag_override();
}

template <class Text>
CLI::Option* add_option(CLI::App& to, std::string const& name, Text& text, std::string const& type,
                        std::string const& description) {
  return to.add_option(name, text, description)->type_name(type);
}

CommandLine::CommandLine() {
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("zelk " ZELK_VERSION ", GMP ") + gmp_version,
                       "Print the versions and exit");
  app.formatter(std::make_shared<HelpFormatter>());
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.footer(epilogue);

  app.option_defaults()->group(common);
  add_option(app, "--format", format, "FORMAT",
             "How numbers are printed: fraction (the default), decimal or both;\n"
             "decimal bounds are rounded outward");
  add_option(app, "--digits-out", places, "N",
             "Decimal places to print, by default DIGITS + 2, or 20; alone it\n"
             "means --format decimal too");
  add_flag(app, "--json", settings.style.json, "Print each answer as a JSON object on one line");
  add_option(app, "--max-digits", max_digits, "N",
             "Refuse queries for more DIGITS, by default 100000");
  add_option(app, "--max-bits", max_bits, "N",
             "Refuse queries that would take more bits of memory, or work\n"
             "through more than a thousand times as many; by default 4000000000");
  app.option_defaults()->group("Options");

  add_queries();
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

CLI::App& CommandLine::add_query(Function function, std::string const& description,
                                 std::string const& examples) {
  auto const& signature = signature_of(function);
  auto& query = add_command(std::string(signature.name), description, examples);
  query.callback([this, function] { status = answer(function); });
  // CLI11 takes a dash and a digit for an option only if some option is named by that digit. None
  // is, so negative numbers pass as plain arguments in any place.
  if (!signature.number.empty())
    add_option(query, std::string(signature.number), number, "", "A fraction or decimal")
        ->required();
  if (!signature.count.empty())
    add_option(query, std::string(signature.count), count, "",
               signature.count == "TERMS" ? "How many terms, at least 1 unless Q is an integer"
                                          : "Decimal digits, which say how close the bounds are")
        ->required();
  if (signature.takes_terms) add_option(query, "--terms", terms, "N", "Only the first N");
  return query;
}

void CommandLine::add_queries() {
  add_query(Function::cf, "The continued fraction of Q",
            "  zelk cf 415/93            [4; 2, 6, 7]\n"
            "  zelk cf 415/93 --terms 2  [4; 2]\n"
            "A negative fraction whose parts fit in 64 bits is split toward zero, -7/2 into\n"
            "[-3; -2]; of one that does not fit all terms but the first are positive.");
  auto& approx =
      add_query(Function::approx, "The convergent of Q after TERMS terms of its continued fraction",
                "  zelk approx 415/93 2          9/2\n"
                "  zelk approx 415/93 2 --lower  58/13");
  add_flag(approx, "--lower", lower,
           "The first one from there on that is at most Q; not with --upper")
      ->excludes(add_flag(approx, "--upper", upper,
                          "The first one from there on that is at least Q; not with --lower"));
  add_query(Function::convergents, "All convergents of Q, each with its side of Q and its distance",
            "  zelk convergents 415/93 --terms 2   4 < 43/93 and 9/2 > 7/186");

  auto& exp = add_query(Function::exp, "Bounds of e^X less than 10^-DIGITS apart, one per line",
                        "  zelk exp 1 20\n  zelk exp -7/2 10 --derivative");
  add_flag(exp, "--derivative", derivative,
           "Companion bounds for the derivative instead, again e^X, of\n"
           "any width; the larger comes first if X < 0");
  auto& sin = add_query(Function::sin, "Bounds of sin X less than 2*10^-DIGITS apart, one per line",
                        "  zelk sin 1/2 20\n  zelk sin -3.25 10 --derivative");
  add_flag(sin, "--derivative", derivative, "Bounds of the derivative cos X instead, of any width");
  auto& cos = add_query(Function::cos, "Bounds of cos X less than 2*10^-DIGITS apart, one per line",
                        "  zelk cos 1/2 20");
  add_flag(cos, "--derivative", derivative, "Bounds of the derivative -sin X instead");
  add_query(Function::pi, "Bounds of pi at most 10^-DIGITS apart, one per line", "  zelk pi 20");
}

void CommandLine::add_batch() {
  auto& command = add_command(
      "batch", "Answer a query a line, an answer a line",
      "  printf 'exp 1/2 10\\ncf 415/93 --terms 2\\n' | zelk batch\n"
      "  zelk batch --json queries.txt > answers.jsonl\n"
      "A line reads as the command line does without the name zelk and without the options of\n"
      "all commands. Blank lines and what follows a # do not count. A query that is not answered\n"
      "gets a line on standard error, FILE:LINE:COLUMN: REASON, and the rest is still answered.");
  add_option(command, "FILE", batch.file, "", "The queries; - or none is standard input");
  add_flag(command, "--fail-fast", batch.fail_fast, "Stop at the first query not answered");
  add_flag(command, "--stats", batch.stats,
           "Tell at the end how many queries there were, how many of them\n"
           "repeated, how many refused, and how long it took");
  command.callback([this] { status = run_batch(batch, settings) ? 0 : not_answered; });
}

void CommandLine::add_plots() {
  auto& command = add_command("plot", "Draw bounds or convergents as an SVG image, with gnuplot",
                              "  zelk plot exp --from -1 --to 2 --output exp.svg\n"
                              "  zelk plot convergents 3.14159265 --output pi.svg");
  command.require_subcommand(1);
  auto const add = [&](std::string const& name, std::string const& description) -> CLI::App& {
    auto* const kind = command.add_subcommand(name, description);
    kind->fallthrough()->group("Pictures");
    add_option(*kind, "-o,--output", plot.file, "FILE",
               "Where the image goes, required; - is standard output")
        ->required();
    return *kind;
  };
  for (Function const function : {Function::exp, Function::sin, Function::cos}) {
    std::string const name(signature_of(function).name);
    auto& kind = add(name, "The bounds of " + name + " over a range of points");
    add_option(kind, "--from", plot.from, "X", "The first point, by default -2");
    add_option(kind, "--to", plot.to, "X", "The last point, by default 2");
    add_option(kind, "--points", plot.points, "N", "How many points, by default 101");
    add_option(kind, "--digits", plot.digits, "DIGITS",
               "Decimal digits, which say how close the bounds are, by default 0");
    kind.callback([this, function] { plot_enclosures(function, plot, settings); });
  }
  auto& kind = add("convergents", "The convergents of Q");
  add_option(kind, "Q", plot.number, "", "A fraction or decimal")->required();
  kind.callback([this] { plot_convergents(plot, settings); });
}

void CommandLine::read_settings() {
  auto const refuse = [](std::string const& reason) {
    throw Refusal(Refusal::Kind::malformed, 1, reason, reason);
  };
  constexpr std::pair<std::string_view, Format> formats[] = {
      {"fraction", Format::fraction}, {"decimal", Format::decimal}, {"both", Format::both}};
  if (format) {
    auto const* const known =
        std::ranges::find(formats, *format, &std::pair<std::string_view, Format>::first);
    if (known == std::end(formats))
      refuse(convert::quoted(*format) + ": expected fraction, decimal or both");
    settings.style.format = known->second;
  }
  if (places) {
    settings.style.places = parse_count(Word{*places});
    if (!format) settings.style.format = Format::decimal;
  }
  if (max_digits) settings.limits.max_digits = parse_count(Word{*max_digits});
  if (max_bits)
    settings.limits.max_bits = static_cast<double>(parse_whole(Word{*max_bits}, LONG_MAX));
  if (settings.style.places > settings.limits.max_digits)
    refuse("--digits-out " + *places + " is more than --max-digits " +
           std::to_string(settings.limits.max_digits));
}

int CommandLine::answer(Function function) {
  QueryText text{function, {}, {}, {}, lower, upper, derivative};
  auto const& signature = signature_of(function);
  std::string line(signature.name);  // as a file of queries would have it
  auto const append = [&line](std::string const& word) {
    line += ' ' + word;
    return Word{word, line.size() - word.size() + 1};
  };
  if (!signature.number.empty()) text.number = append(number);
  if (!signature.count.empty()) text.count = append(count);
  if (terms) {
    line += " --terms";
    text.terms = append(*terms);
  }
  for (auto const& [flag, option] :
       {std::pair(lower, " --lower"), {upper, " --upper"}, {derivative, " --derivative"}})
    if (flag) line += option;

  try {
    Query const query = parse_query(text);
    Answer const answer = Solver(settings.limits).answer(query, places_of(query, settings.style));
    print(settings.style.json ? to_json(line, query, answer, settings.style)
                              : to_text(query, answer, settings.style, "\n", "\n"));
    print("\n");
    return 0;
  } catch (Refusal const& refusal) {
    if (settings.style.json) print(to_json(line, refusal) + '\n');
    throw;
  }
}

int CommandLine::run(int argc, char const* const* argv) {
  auto const given = [&](std::string_view word) {
    return std::find(argv, argv + argc, word) != argv + argc;
  };
  try {
    // CLI11 lets "++" end a subcommand without a word; here it is an argument like any other.
    if (given("++")) throw CLI::ArgumentMismatch("unexpected argument: ++");
    // Nor does it take an empty value behind an equals sign, but the next word.
    for (auto const* const* word = argv + 1; word < argv + argc && *word != "--"sv; ++word)
      if (std::string_view const text = *word; text.starts_with("--") && text.ends_with('='))
        throw CLI::ArgumentMismatch(std::string(text) + " lacks its value");
    if (argc == 2 && given("--man-page")) return print(man_page(app)), 0;
    if (argc == 2 && given("--bash-completion")) return print(bash_completion(app)), 0;
    app.parse_complete_callback([this] { read_settings(); });
    app.parse(argc, argv);
    return status;
  } catch (CLI::CallForHelp const&) {
    print(app.help());
  } catch (CLI::CallForVersion const& version) {
    print(version.what() + std::string("\n"));
  } catch (CLI::ParseError const& error) {
    complain(describe(error));
    return wrong_usage;
  } catch (Refusal const& refusal) {
    complain(refusal.what());
    return refusal.kind == Refusal::Kind::malformed ? wrong_usage : not_answered;
  }
  return 0;
}

/// An argument nobody asked for is the likely cause of whatever else is wrong: it is named first.
std::string CommandLine::describe(CLI::ParseError const& error) const {
  std::string help = "zelk";
  for (auto const* at = &app; !at->get_subcommands().empty();) {
    at = at->get_subcommands().front();
    help += ' ' + at->get_name();
  }
  std::string reason = error.what();
  if (reason == "A subcommand is required") reason = "a command is required";
  for (auto const& extra : app.remaining(true)) {
    if (extra == "--") continue;
    reason = "unexpected argument: " + extra;
    break;
  }
  return reason + " (see " + help + " --help)";
}

}  // namespace

int run_command_line(int argc, char const* const* argv) { return CommandLine().run(argc, argv); }

}  // namespace zelk::cli
