#pragma once

#include <string>

namespace zelk::cli {

/// Writes the SVG image that gnuplot makes of a script, whatever its user has set for other images,
/// to the file of that name, or to standard output if that is `-`.
///
/// Throws: std::system_error when gnuplot is missing or something cannot be written; Refusal, with
/// gnuplot's reason, when it fails. The file is touched only when there is an image.
void draw_by_gnuplot(std::string const& script, std::string const& file);

}  // namespace zelk::cli
