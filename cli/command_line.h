#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "cli/batch.h"
#include "cli/plot.h"
#include "cli/query.h"
#include "cli/settings.h"

namespace zelk::cli {

/// The exit statuses besides 0.
enum Status { not_answered = 1, wrong_usage = 2, no_input_or_output = 3 };

/// The command line as CLI11 knows it. Numbers are kept as texts until the whole line is known to
/// be well formed, so that a subcommand's --help answers in any company.
class CommandLine {
 public:
  CommandLine();

  /// Does what the arguments say; 0, or the status to exit with.
  /// Throws: Refusal, std::system_error, std::bad_alloc.
  int run(int argc, char const* const* argv);

 private:
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
  std::string format, places, max_digits, max_bits;
  std::string number, count, terms;
  bool lower = false;
  bool upper = false;
  bool derivative = false;
  BatchOptions batch;
  PlotOptions plot;
  int status = 0;
};

}  // namespace zelk::cli
