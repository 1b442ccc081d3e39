#pragma once

#include <string>

#include "cli/functions.h"
#include "cli/settings.h"

namespace zelk::cli {

/// What is drawn, in the words of the command line.
struct PlotOptions {
  std::string file;  // an SVG image; - is standard output
  std::string from = "-2";
  std::string to = "2";
  std::string points = "101";
  std::string digits = "0";
  std::string number;  // whose convergents
  std::string expression;
  std::string expression_digits = "6";
};

/// Draws, by gnuplot, the bounds that a function has over a range of points.
///
/// Requires: the function can be plotted.
/// Throws: Refusal; std::system_error when gnuplot is missing or the file cannot be written.
void plot_bounds(Function const& function, PlotOptions const& options, Settings const& settings);

/// Draws the bounds that an expression in x has over each of the steps between the points: its
/// graph certainly lies within, also between the points. Steps on which it is not defined are left
/// out, and told.
void plot_expression(PlotOptions const& options, Settings const& settings);

/// Draws the convergents of a number, which close in on it from both sides.
void plot_convergents(PlotOptions const& options, Settings const& settings);

}  // namespace zelk::cli
