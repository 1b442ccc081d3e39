// The `zelk` command: reads its arguments, asks the library and prints the answer.

#include <gmp.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"
#include "zelk/convert/text.h"

#ifndef ZELK_VERSION
#error "the build must define ZELK_VERSION, the version as a string"
#endif

namespace {

using zelk::QNumber;
using zelk::convert::parse_rational;
using zelk::convert::to_string;
using zelk::na::PowerSeriesApproximator;
using zelk::na::RationalApproximator;

// The exit statuses besides 0. Wrong usage travels as std::invalid_argument, every other exception
// means that a well-formed question has no answer here.
constexpr int unanswerable = 1;
constexpr int wrong_usage = 2;

constexpr unsigned largest_count = std::numeric_limits<unsigned>::max();

/// A number of terms or digits. Throws: std::invalid_argument, naming the text and the reason.
unsigned parse_count(std::string const& text) {
  unsigned count = 0;
  auto const* const end = text.data() + text.size();
  auto const [rest, error] = std::from_chars(text.data(), end, count);
  if (error == std::errc{} && rest == end) return count;
  std::string reason = "expected a whole number";
  if (text.starts_with('-')) reason = "a count cannot be negative";
  if (error == std::errc::result_out_of_range && rest == end)
    reason = "a count is at most " + std::to_string(largest_count);
  throw std::invalid_argument('"' + text + "\": " + reason);
}

/// The first `limit` terms in the usual notation, `[4; 2, 6, 7]`. The library gives zero no terms;
/// as everywhere else it is written here as the integer that it is.
std::string show_terms(std::vector<QNumber> const& terms, std::size_t limit) {
  if (terms.empty()) return "[0]";
  std::string text = "[" + to_string(terms.front());
  for (std::size_t i = 1; i < std::min(limit, terms.size()); ++i)
    text += (i == 1 ? "; " : ", ") + to_string(terms[i]);
  return text + "]";
}

std::string show_bounds(PowerSeriesApproximator::Bounds const& bounds) {
  return to_string(bounds.first) + '\n' + to_string(bounds.second);
}

/// The command line as CLI11 knows it, and the library objects that its subcommands ask. Values are
/// kept as texts until the whole line is known to be well formed, so that a subcommand's --help
/// answers in any company.
class Command {
 public:
  Command() {
    app.require_subcommand(1);
    app.set_version_flag("--version", "zelk " ZELK_VERSION, "Print the version and exit");
    app.get_formatter()->label("REQUIRED", "");
    app.footer(
        "Examples:\n"
        "  zelk cf 415/93        [4; 2, 6, 7]\n"
        "  zelk approx 415/93 2  9/2\n"
        "  zelk exp -7/2 20      two fractions with e^(-7/2) between them\n"
        "Numbers are fractions or decimals and always exact: 415/93  -7/2  12  3.25  -1.5e-3\n"
        "Exit status: 0 answered, 1 no answer to a well-formed question, 2 wrong usage.");

    add_cf();
    add_approx();
    add_function("exp", "Bounds of e^X", &PowerSeriesApproximator::maclaurin_exp_bounds,
                 &PowerSeriesApproximator::maclaurin_exp_der_bounds,
                 "The derivatives of the two bounding expressions instead,\n"
                 "which bound e^X as well; the larger comes first if X < 0",
                 "  zelk exp 1 20\n  zelk exp -7/2 10 --derivative");
    add_function("sin", "Bounds of sin X", &PowerSeriesApproximator::maclaurin_sin_bounds,
                 &PowerSeriesApproximator::maclaurin_sin_der_bounds,
                 "Bounds of the derivative cos X instead, of any width",
                 "  zelk sin 1/2 20\n  zelk sin -3.25 10 --derivative");
    add_pi();
  }

  /// What belongs on standard output. Throws: see the exit statuses.
  std::string answer(int argc, char const* const* argv) {
    // CLI11 lets "++" end a subcommand without a word; here it is an argument like any other.
    if (std::find(argv, argv + argc, std::string_view("++")) != argv + argc)
      throw std::invalid_argument("unexpected argument: ++");
    try {
      app.parse(argc, argv);
    } catch (CLI::CallForHelp const&) {
      return app.help();
    } catch (CLI::CallForVersion const& version) {
      return version.what() + std::string("\n");
    } catch (CLI::ParseError const& error) {
      throw std::invalid_argument(describe(error));
    }
    return result + '\n';
  }

 private:
  CLI::App& add(std::string const& name, std::string const& description,
                std::string const& examples, std::function<std::string()> const& ask) {
    auto* const subcommand = app.add_subcommand(name, description);
    subcommand->footer("Examples:\n" + examples);
    subcommand->callback([this, ask] { result = ask(); });
    return *subcommand;
  }

  // CLI11 takes a dash and a digit for an option only if some option is named by that digit. None
  // is, so negative numbers pass as plain arguments in any place.
  void add_number(CLI::App& subcommand, std::string const& name) {
    subcommand.add_option(name, number, "A fraction or decimal")->required()->type_name("");
  }
  void add_count(CLI::App& subcommand, std::string const& name, std::string const& description) {
    subcommand.add_option(name, count, description)->required()->type_name("");
  }
  static CLI::Option* add_flag(CLI::App& subcommand, std::string const& name, bool& flag,
                               std::string const& description) {
    return subcommand.add_flag(name, flag, description)->disable_flag_override();
  }

  void add_cf() {
    auto& cf =
        add("cf", "The continued fraction of Q",
            "  zelk cf 415/93            [4; 2, 6, 7]\n"
            "  zelk cf 415/93 --terms 2  [4; 2]\n"
            "A negative fraction whose parts fit in 64 bits is split toward zero, -7/2 into\n"
            "[-3; -2]; of one that does not fit all terms but the first are positive.",
            [this] {
              auto const q = parse_rational(number);
              auto const limit = terms.empty() ? largest_count : parse_count(terms.back());
              if (limit == 0)
                throw std::invalid_argument("--terms " + terms.back() +
                                            ": at least one term must be asked for");
              return show_terms(rational.get_cf(q, limit).terms, limit);
            });
    add_number(cf, "Q");
    cf.add_option("--terms", terms, "Print only the first N terms")->expected(1)->type_name("N");
  }

  void add_approx() {
    auto& approx =
        add("approx", "The convergent of Q after TERMS terms of its continued fraction",
            "  zelk approx 415/93 2          9/2\n  zelk approx 415/93 2 --lower  58/13", [this] {
              auto const q = parse_rational(number);
              auto const length = parse_count(count);
              if (length == 0 && !q.is_integer())
                throw std::domain_error("approx " + number + ' ' + count +
                                        ": no terms leave no convergent");
              return to_string(rational.approx(q, length, upper - lower));
            });
    add_number(approx, "Q");
    add_count(approx, "TERMS", "How many terms, at least 1 unless Q is an integer");
    add_flag(approx, "--lower", lower, "The first one from there on that is at most Q")
        ->excludes(
            add_flag(approx, "--upper", upper, "The first one from there on that is at least Q"));
  }

  using Enclosure = PowerSeriesApproximator::Bounds (PowerSeriesApproximator::*)(QNumber const&,
                                                                                 unsigned);

  void add_function(std::string const& name, std::string const& description, Enclosure value,
                    Enclosure slope, std::string const& about_slope, std::string const& examples) {
    auto& function = add(name, description + ", one per line", examples, [this, value, slope] {
      auto const x = parse_rational(number);
      return show_bounds((series.*(derivative ? slope : value))(x, parse_count(count)));
    });
    add_number(function, "X");
    add_digits(function);
    add_flag(function, "--derivative", derivative, about_slope);
  }

  void add_pi() {
    auto& pi = add("pi", "Bounds of pi, one per line", "  zelk pi 20",
                   [this] { return show_bounds(series.machin_pi_bounds(parse_count(count))); });
    add_digits(pi);
  }

  void add_digits(CLI::App& subcommand) {
    add_count(subcommand, "DIGITS", "Decimal digits: the tolerance is 10^-DIGITS");
  }

  /// An argument nobody asked for is the likely cause of whatever else is wrong: it is named first.
  std::string describe(CLI::ParseError const& error) const {
    std::string help = "zelk";
    for (auto const* const subcommand : app.get_subcommands()) help += ' ' + subcommand->get_name();
    std::string reason = error.what();
    for (auto const& extra : app.remaining(true)) {
      if (extra == "--") continue;
      reason = "unexpected argument: " + extra;
      break;
    }
    return reason + " (see " + help + " --help)";
  }

  RationalApproximator rational;
  PowerSeriesApproximator series{rational};

  CLI::App app{"Exact rationals: continued fractions, convergents, and guaranteed bounds", "zelk"};
  std::string number;
  std::string count;
  std::vector<std::string> terms;  // none or one
  bool lower = false;
  bool upper = false;
  bool derivative = false;
  std::string result;
};

int complain(char const* reason, int status) {
  std::fprintf(stderr, "zelk: %s\n", reason);
  return status;
}

void print(std::string const& text) {
  errno = 0;
  bool const written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (std::fflush(stdout) != 0 || !written)
    throw std::system_error(errno, std::generic_category(), "cannot write to standard output");
}

// GMP cannot pass a failed allocation on to its caller: the command has to end where it happens.
void* or_exit(void* block) {
  if (block == nullptr) std::_Exit(complain("not enough memory", unanswerable));
  return block;
}
void* allocate(std::size_t size) { return or_exit(std::malloc(size)); }
void* reallocate(void* block, std::size_t, std::size_t size) {
  return or_exit(std::realloc(block, size));
}

}  // namespace

int main(int argc, char** argv) {
  mp_set_memory_functions(allocate, reallocate, nullptr);
  try {
    print(Command().answer(argc, argv));
    return 0;
  } catch (std::invalid_argument const& error) {
    return complain(error.what(), wrong_usage);
  } catch (std::bad_alloc const&) {
    return complain("not enough memory", unanswerable);
  } catch (std::exception const& error) {
    return complain(error.what(), unanswerable);
  }
}
