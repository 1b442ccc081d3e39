#pragma once

#include <string>

namespace CLI {
class App;
}

/// Papers of the command, made of what --help says: they cannot tell anything else.
namespace zelk::cli {

/// In roff, section 1.
std::string man_page(CLI::App const& app);

std::string bash_completion(CLI::App const& app);

}  // namespace zelk::cli
