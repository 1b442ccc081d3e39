#pragma once

#include <string>

namespace zelk::cli {

/// Writes the SVG image that gnuplot makes of a script to a file, as a whole; `-` is standard
/// output. Gnuplot does not read its user's settings. What was in the file stays until the image is
/// complete.
///
/// Throws: std::system_error when gnuplot is missing or something cannot be written; Refusal, with
/// gnuplot's last message, when it fails.
void draw_by_gnuplot(std::string const& script, std::string const& file);

}  // namespace zelk::cli
