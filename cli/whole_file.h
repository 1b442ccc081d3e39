#pragma once

#include <string>
#include <string_view>

namespace zelk::cli {

/// Writes a file that gets all of a text, or stays as it was: the text is written beside it and
/// renamed into its place. Symbolic links, permissions and, where that is allowed, the owner are
/// kept. A device, a pipe, the file of standard output, and a file in a folder that takes no new
/// ones are written where they are.
///
/// Throws: std::system_error, which names the file.
void write_whole_file(std::string const& name, std::string_view text);

}  // namespace zelk::cli
