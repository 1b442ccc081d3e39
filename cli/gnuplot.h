#pragma once

#include <string>

namespace zelk::cli {

/// The SVG image that gnuplot makes of a script, whatever its user has set for other images.
///
/// Throws: std::system_error when gnuplot is missing or nothing can be written for it; Refusal,
/// with its own reason, when it fails.
std::string drawn_by_gnuplot(std::string const& script);

}  // namespace zelk::cli
