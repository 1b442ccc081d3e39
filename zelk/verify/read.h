#pragma once

#include <stdexcept>
#include <string_view>

#include "zelk/config.h"
#include "zelk/verify/certificate.h"
#include "zelk/verify/verify.h"

namespace zelk::verify {

/// Why a text is no certificate.
struct NoCertificate : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

/// The lines of the first certificate of a text, which are taken away from it: the first, and those
/// that do not begin as a first line does.
[[nodiscard]] ZELK_EXPORT std::string_view next_certificate(std::string_view& text);

/// A certificate from its lines (docs/certificates.md), in the only spelling that it has. The text
/// is not trusted, and conversions of numbers count as work within the limits.
/// Throws: NoCertificate.
ZELK_EXPORT Certificate read_certificate(std::string_view lines, Limits const& limits = {});

}  // namespace zelk::verify
