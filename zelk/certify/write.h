#pragma once

#include <string>

#include "zelk/config.h"
#include "zelk/verify/certificate.h"

namespace zelk::certify {

/// A certificate as JSON Lines (docs/certificates.md): the first says what it states, then a claim
/// a line. Each line ends with a line end.
[[nodiscard]] ZELK_EXPORT std::string to_json_lines(verify::Certificate const& certificate);

}  // namespace zelk::certify
