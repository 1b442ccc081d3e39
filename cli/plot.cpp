#include "cli/plot.h"

#include <sys/wait.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "cli/solver.h"
#include "zelk/convert/decimal.h"
#include "zelk/convert/text.h"

namespace zelk::cli {
namespace {

constexpr unsigned places = 12;  // more than an image shows

std::string show(QNumber const& q) {
  return convert::to_decimal(q, places, convert::Rounding::nearest);
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

std::string quoted(std::string const& text) {
  std::string result = "'";
  for (char const c : text) result += c == '\'' ? "''" : std::string(1, c);
  return result + "'";
}

std::string preamble(std::string const& file) {
  return "set terminal svg size 720,480 background 'white' font 'sans,12'\n"
         "set output " +
         quoted(file) +
         "\n"
         "set grid lc rgb '#dddddd'\n"
         "set border lc rgb '#555555'\n";
}

void run_gnuplot(std::string const& script, std::string const& file) {
  // The file first: gnuplot's own words on one that cannot be written say less.
  if (std::FILE* const output = std::fopen(file.c_str(), "w"))
    std::fclose(output);
  else
    throw std::system_error(errno, std::generic_category(), "cannot write " + file);
  auto* const before = std::signal(SIGPIPE, SIG_IGN);
  std::FILE* const gnuplot = popen("gnuplot", "w");
  int status = -1;
  if (gnuplot != nullptr) {
    std::fwrite(script.data(), 1, script.size(), gnuplot);
    status = pclose(gnuplot);
  }
  std::signal(SIGPIPE, before);
  if (status == 0) return;
  std::remove(file.c_str());
  bool const missing = WIFEXITED(status) && WEXITSTATUS(status) == 127;
  throw std::system_error(missing ? ENOENT : EIO, std::generic_category(),
                          missing ? "plots need gnuplot, which cannot be started" : "gnuplot");
}

Query query_of(Function function, std::string const& number, std::string const& count) {
  QueryText text{function, Word{number}, {}, {}};
  if (!count.empty()) text.count = Word{count};
  return parse_query(text);
}

}  // namespace

void plot_enclosures(Function function, PlotOptions const& options, Settings const& settings) {
  Query query = query_of(function, options.from, options.digits);
  QNumber const from = query.number;
  QNumber const to = query_of(function, options.to, options.digits).number;
  unsigned const points = parse_count(Word{options.points});
  if (points < 2 || points > 100'000)
    throw Refusal(Refusal::Kind::malformed, 1, "",
                  "--points " + options.points + ": from 2 to 100000 points can be drawn");
  if (!(from < to))
    throw Refusal(Refusal::Kind::malformed, 1, "",
                  "the range from " + options.from + " to " + options.to + " is empty");

  std::string script = preamble(options.file) + "$bounds << END\n";
  Solver solver;
  QNumber const step = (to - from) / QNumber(points - 1L);
  for (unsigned i = 0; i < points; ++i) {
    query.number = from + QNumber(i) * step;
    settings.limits.check(query);
    auto const [lower, upper] = std::get<Bounds>(solver.answer(query));
    script += show(query.number) + ' ' + show(lower) + ' ' + show(upper) + '\n';
  }
  std::string const name(signature_of(function).name);
  script +=
      "END\nset key top left\nset xlabel 'x'\n"
      "plot $bounds using 1:2:3 with filledcurves lc rgb '#9ec9e2' title '" +
      name + " x lies in here', '' using 1:2 with lines lc rgb '#1f6f9f' title 'lower bound, " +
      options.digits + " digits', '' using 1:3 with lines lc rgb '#c2571a' title 'upper bound'\n";
  run_gnuplot(script, options.file);
}

void plot_convergents(PlotOptions const& options, Settings const& settings) {
  Query const query = query_of(Function::convergents, options.number, "");
  settings.limits.check(query);
  auto const convergents = std::get<std::vector<Convergent>>(Solver().answer(query));
  std::string script = preamble(options.file) + "$convergents << END\n";
  for (std::size_t i = 0; i < convergents.size(); ++i) {
    auto const& [value, side, distance] = convergents[i];
    std::string const log = distance.is_zero() ? "NaN" : std::to_string(log10(distance));
    script +=
        std::to_string(i + 1) + ' ' + show(value) + ' ' + log + " \"" + std::string(side) + "\"\n";
  }
  std::string const value = show(query.number);
  script +=
      "END\n"
      "set multiplot layout 2,1\n"
      "set key bottom right\n"
      "set ylabel 'convergent'\n"
      "plot " +
      value + " with lines lc rgb '#555555' title " +
      quoted(options.number.size() <= 40 ? options.number : "the number") +
      ", $convergents using ($1 <= 8 ? $1 : NaN):2 with linespoints pt 7 ps 0.6 "
      "lc rgb '#1f6f9f' title 'the first convergents'\n"
      "set key top right\n"
      "set ylabel 'log10 of the distance'\n"
      "set xlabel 'terms'\n"
      "plot $convergents using 1:(strcol(4) eq '<' ? $3 : NaN) with points pt 7 ps 0.6 "
      "lc rgb '#1f6f9f' title 'below', "
      "'' using 1:(strcol(4) eq '>' ? $3 : NaN) with points pt 7 ps 0.6 lc rgb '#c2571a' "
      "title 'above'\n"
      "unset multiplot\n";
  run_gnuplot(script, options.file);
}

}  // namespace zelk::cli
