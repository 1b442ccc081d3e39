#pragma once

#include <iosfwd>

#include "zelk/config.h"
#include "zelk/numbers/q_number.h"

/// Numbers on streams of `char`, in the texts of zelk/convert/text.h. A stream's locale decides
/// which characters are blanks in front of a number, and nothing else: digits are never grouped.
namespace zelk {

/// Writes `convert::to_string(q)` as one unit: padded with the fill character to the width, which
/// is then reset, on the side that the adjustment says (`internal` pads between sign and digits).
/// Base, showpos and precision have no influence. Cost: as `convert::to_string`; std::bad_alloc
/// passes through whatever `out.exceptions()` says.
ZELK_EXPORT std::ostream& operator<<(std::ostream& out, QNumber const& q);

/// Reads a number as `convert::parse_rational` understands it, up to the first character that
/// cannot go on with a number: `-1.5e3`, and of `1/2, 3/4` or `1/2-3` the `1/2`. Blanks in front of
/// it are skipped unless `noskipws` is set; the width has no influence and stays.
///
/// A refusal (no number begins here, or it breaks off as in `1/` and `1.5e`, or its denominator is
/// zero or its exponent too large) sets failbit and leaves `q` as it was; what was read of it is
/// gone from the stream. eofbit is set when the end of the stream was met. As for every extraction,
/// other exceptions (of the stream's buffer, or std::bad_alloc) set badbit, and pass through if
/// `in.exceptions()` has that bit.
///
/// Cost: as `convert::parse_rational`.
ZELK_EXPORT std::istream& operator>>(std::istream& in, QNumber& q);

}  // namespace zelk
