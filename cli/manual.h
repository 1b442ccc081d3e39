#pragma once

#include <string>

namespace CLI {
class App;
}

/// The manual page and the shell completion. Both are made from the options and descriptions that
/// --help shows, and so agree with it.
namespace zelk::cli {

/// In roff, section 1.
std::string man_page(CLI::App const& app);

std::string bash_completion(CLI::App const& app);

}  // namespace zelk::cli
