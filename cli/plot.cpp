#include "cli/plot.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <span>
#include <stdexcept>

#include "cli/gnuplot.h"
#include "cli/json.h"
#include "cli/progress.h"
#include "cli/solver.h"
#include "cli/terminal.h"
#include "zelk/convert/machine.h"
#include "zelk/convert/text.h"
#include "zelk/real/enclose.h"

namespace zelk::cli {
namespace {

using convert::Rounding;

/// A double for gnuplot, whose axes reach beyond the largest coordinate and must be doubles too.
double coordinate(QNumber const& q, Rounding rounding = Rounding::nearest) {
  double const x = convert::to_double(q, rounding);
  if (std::abs(x) > 1e300)
    throw Refusal(Refusal::Kind::unanswerable, "some numbers are too large to be drawn");
  return x;
}

std::string show(QNumber const& q, Rounding rounding = Rounding::nearest) {
  char text[32];
  return {text, std::to_chars(text, std::end(text), coordinate(q, rounding)).ptr};
}

/// A line of data, of which the graph at x lies between the bounds.
std::string row(std::string const& x, QNumber const& lower, QNumber const& upper) {
  return x + ' ' + show(lower, Rounding::down) + ' ' + show(upper, Rounding::up) + '\n';
}

/// log10 of a positive number of any size, near enough for an image.
double log10(QNumber const& q) {
  auto const of = [](mpz_srcptr n) {
    long exponent;
    double const mantissa = mpz_get_d_2exp(&exponent, n);
    return std::log10(mantissa) + static_cast<double>(exponent) * std::log10(2.0);
  };
  return of(q.numerator()) - of(q.denominator());
}

constexpr char preamble[] =
    "set terminal svg size 720,480 background 'white' font 'sans,12'\n"
    "set grid lc rgb '#dddddd'\n"
    "set border lc rgb '#555555'\n";

/// The points of a picture, from the first to the last.
struct Range {
  QNumber from;
  QNumber step;
  unsigned points;

  QNumber operator[](unsigned i) const { return from + QNumber(i) * step; }
};

Range read_range(PlotOptions const& options) {
  QNumber const from = parse_number(Word{options.from});
  QNumber const to = parse_number(Word{options.to});
  unsigned const points = parse_count(Word{options.points});
  if (points < 2 || points > 100'000)
    throw Refusal(Refusal::Kind::malformed,
                  "--points " + options.points + ": from 2 to 100000 points can be drawn");
  // Gnuplot places points and ticks in the range by doubles, which need some bits to tell them
  // apart. The ends of a narrow range are as large as each other.
  if (!(from < to) || coordinate(to - from) < std::max(1e-9 * std::abs(coordinate(from)), 1e-300))
    throw Refusal(Refusal::Kind::malformed,
                  "the range from " + options.from + " to " + options.to +
                      (from < to ? " is too narrow to be drawn" : " is empty"));
  return {from, (to - from) / QNumber(points - 1L), points};
}

/// A text without quotes as one of gnuplot's, which ends with its line.
std::string quoted_for_gnuplot(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return '\'' + text + '\'';
}

}  // namespace

void plot_bounds(Function const& function, PlotOptions const& options, Settings const& settings) {
  auto const range = read_range(options);
  auto const points = range.points;
  Query query{&function};
  query.digits = parse_count(Word{options.digits});
  Demand all = {0, 0};
  for (unsigned i = 0; i < points; ++i) {
    query.numbers = {range[i]};
    all.worked_through += settings.limits.check(query).worked_through;
  }
  settings.limits.check(all);

  std::string script = std::string(preamble) + "$bounds << END\n";
  Solver solver(settings.limits);
  std::atomic<unsigned> done = 0;
  Progress const progress([&](std::span<char> line, long) {
    return std::snprintf(line.data(), line.size(), "%s: %u of %u points", function.name.c_str(),
                         done.load(), points);
  });
  for (unsigned i = 0; i < points; ++i, ++done) {
    query.numbers = {range[i]};
    auto const [lower, upper] = std::get<Bounds>(solver.answer(query));
    script += row(show(query.numbers[0]), lower, upper);
  }
  script +=
      "END\nset key above maxrows 1\nset xlabel 'x'\n"
      "plot $bounds using 1:2:3 with filledcurves lc rgb '#9ec9e2' title '" +
      function.name + " x to " + options.digits +
      " digits', '' using 1:2 with lines lc rgb '#1f6f9f' title 'lower bound', "
      "'' using 1:3 with lines lc rgb '#c2571a' title 'upper bound'\n";
  draw_by_gnuplot(script, options.file);
}

void plot_expression(PlotOptions const& options, Settings const& settings) {
  auto const range = read_range(options);
  Query query{find_function("eval")};
  auto const expression = parse_expression(Word{options.expression});
  query.digits = parse_count(Word{options.expression_digits});
  query.expressions = {expression};
  auto const steps = range.points - 1;
  Demand all = settings.limits.check(query);
  all.worked_through *= steps;
  settings.limits.check(all);

  std::string script = std::string(preamble) + "$bounds << END\n";
  Approximators approximators(settings.limits.max_bits);
  std::atomic<unsigned> done = 0;
  unsigned drawn = 0;
  {
    Progress const progress([&](std::span<char> line, long) {
      return std::snprintf(line.data(), line.size(), "plot: %u of %u steps", done.load(), steps);
    });
    for (unsigned i = 0; i < steps; ++i, ++done) {
      real::Interval const x(range[i], range[i + 1]);
      try {
        auto const [bounds, is_narrow] =
            real::enclose(approximators.functions, expression.at(x), *query.digits);
        script += row(show(x.lower(), Rounding::down), bounds.lower(), bounds.upper());
        script += row(show(x.upper(), Rounding::up), bounds.lower(), bounds.upper());
        ++drawn;
      } catch (std::domain_error const&) {
        script += '\n';  // a gap
      } catch (std::length_error const& error) {
        throw Refusal(Refusal::Kind::unanswerable, error.what());
      }
    }
  }
  if (drawn == 0)
    throw Refusal(Refusal::Kind::unanswerable,
                  convert::quoted(options.expression) + ": not defined anywhere in the range");
  script +=
      "END\nset xlabel 'x'\nset key above noenhanced\n"
      "plot $bounds using 1:2:3 with filledcurves lc rgb '#9ec9e2' title " +
      quoted_for_gnuplot(options.expression.size() <= 60 ? options.expression : "the expression") +
      ", '' using 1:2 with lines lc rgb '#1f6f9f' notitle, "
      "'' using 1:3 with lines lc rgb '#1f6f9f' notitle\n";
  draw_by_gnuplot(script, options.file);
  if (drawn < steps)
    complain({Decimal(steps - drawn), " of ", Decimal(steps),
              " steps are left out, on which the expression is not defined"});
}

void plot_convergents(PlotOptions const& options, Settings const& settings) {
  Query query{find_function("convergents")};
  query.numbers = {parse_number(Word{options.number})};
  Progress const progress([&](std::span<char> line, long seconds) {
    return std::snprintf(line.data(), line.size(), "convergents: %ld s", seconds);
  });
  auto const convergents = std::get<std::vector<Convergent>>(Solver(settings.limits).answer(query));
  if (convergents.size() == 1)
    throw Refusal(Refusal::Kind::unanswerable,
                  convert::quoted(options.number) + ": an integer has no convergents to draw");
  std::string script = std::string(preamble) + "$convergents << END\n";
  for (std::size_t i = 0; i < convergents.size(); ++i) {
    auto const& [value, side, distance] = convergents[i];
    std::string const log = distance.is_zero() ? "NaN" : std::to_string(log10(distance));
    script +=
        std::to_string(i + 1) + ' ' + show(value) + ' ' + log + " \"" + std::string(side) + "\"\n";
  }
  std::string const value = show(query.numbers[0]);
  script +=
      "END\n"
      "set multiplot layout 2,1\n"
      "set key bottom right\n"
      "set xtics 1\n"
      "set xrange [0.5:" +
      std::to_string(std::min<std::size_t>(convergents.size(), 8)) +
      ".5]\n"
      "set ylabel 'convergent'\n"
      "plot " +
      value + " with lines lc rgb '#555555' title " +
      // A number that was read has digits, a sign, a slash and the like, and no quotes.
      '\'' + (options.number.size() <= 40 ? options.number : "the number") + '\'' +
      ", $convergents using ($1 <= 8 ? $1 : NaN):2 with linespoints pt 7 ps 0.6 "
      "lc rgb '#1f6f9f' title 'the first convergents'\n"
      "set xrange [0.5:" +
      std::to_string(convergents.size()) +
      ".5]\n"
      "set key top right\n"
      "set xtics auto\n"
      "set ylabel 'log10 of the distance'\n"
      "set xlabel 'terms'\n"
      "plot $convergents using 1:(strcol(4) eq '<' ? $3 : NaN) with points pt 7 ps 0.6 "
      "lc rgb '#1f6f9f' title 'below', "
      "'' using 1:(strcol(4) eq '>' ? $3 : NaN) with points pt 7 ps 0.6 lc rgb '#c2571a' "
      "title 'above'\n"
      "unset multiplot\n";
  draw_by_gnuplot(script, options.file);
}

}  // namespace zelk::cli
