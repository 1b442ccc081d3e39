#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "zelk/config.h"
#include "zelk/verify/certificate.h"

/// The checker of certificates. It computes with integers alone, and shares no code with what finds
/// values or makes certificates.
namespace zelk::verify {

/// What a certificate may take, in units: a product of numbers with b bits counts b^(3/2), and a
/// division or a greatest common divisor b^2/8. What would take more is refused before the work.
struct Limits {
  double work = 1099511627776;  // 2^40
};

struct [[nodiscard]] Verdict {
  bool is_accepted = false;
  std::size_t claim = 0;  // the first that does not follow, counted from 1
  std::string reason;     // why not

  /// What the last claim is about, in full. Requires: accepted.
  std::string statement;
};

/// What is to be shown, so far as it matters: a certificate alone says what it likes to.
struct Question {
  /// Spelled as in certificates: what `certify::statement_of` says of an expression.
  std::optional<std::string> statement = std::nullopt;

  /// How near the ends are to be to each other: at most 10^-digits apart, or at most 10^-digits
  /// times the number between them that is nearest to 0.
  std::optional<unsigned long> digits = std::nullopt;
  bool is_relative = false;
};

/// Whether each claim follows from those before it, and the last is about what is stated, and what
/// was asked for.
///
/// The certificate may come from anywhere: whatever it holds, nothing is thrown but std::bad_alloc,
/// and work::Stopped where the host asks for it.
ZELK_EXPORT Verdict verify(Certificate const& certificate, Limits const& limits = {},
                           Question const& asked = {});

/// What `verify` and the reading before it would find, if every claim followed from its theorem:
/// whether the work, and the length, are within the limits. For those who make certificates; it
/// costs hardly more than copying one.
ZELK_EXPORT Verdict verify_limits(Certificate const& certificate, Limits const& limits = {});

}  // namespace zelk::verify
