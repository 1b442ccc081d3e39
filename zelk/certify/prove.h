#pragma once

#include <stdexcept>

#include "zelk/approx/power_series_approximator.h"
#include "zelk/config.h"
#include "zelk/numbers/q_number.h"
#include "zelk/real/accuracy.h"
#include "zelk/real/elementary_functions.h"
#include "zelk/real/enclose.h"
#include "zelk/real/expression.h"
#include "zelk/real/interval.h"
#include "zelk/verify/certificate.h"

/// Answers with their proofs: the bounds that the functions without `prove` in their names give,
/// and a certificate whose last claim they are. docs/certificates.md tells what it says, and
/// `zelk::verify::verify` or scripts/check_certificate whether it is right.
///
/// A proof is found without computing anything again: it consists of the ends known anyway and of
/// the numbers of bits with which a checker reaches them. In debug builds that is checked.
///
/// Both checkers accept what is returned here, within their default limits. Throws: what those
/// functions throw; also Unprovable.
namespace zelk::certify {

/// There is an answer, but no certificate that checkers accept: in it stands a power of what is not
/// positive that is millions of bits long, or they refuse so much work.
class ZELK_EXPORT Unprovable : public std::length_error {
 public:
  using std::length_error::length_error;
};

struct [[nodiscard]] Proof {
  real::Enclosure answer;
  verify::Certificate certificate;
};

ZELK_EXPORT Proof prove(real::ElementaryFunctions& functions, real::Expression const& expression,
                        real::Accuracy accuracy, unsigned most_digits = real::default_most_digits);

// The functions over an interval.
using Functions = real::ElementaryFunctions;
ZELK_EXPORT Proof prove_exp(Functions& functions, real::Interval const& x, real::Accuracy accuracy);
ZELK_EXPORT Proof prove_log(Functions& functions, real::Interval const& x, real::Accuracy accuracy);
ZELK_EXPORT Proof prove_root(Functions& functions, real::Interval const& x, unsigned long degree,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_pow(Functions& functions, real::Interval const& x, QNumber const& exponent,
                            real::Accuracy accuracy);
ZELK_EXPORT Proof prove_sin(Functions& functions, real::Interval const& x, real::Accuracy accuracy);
ZELK_EXPORT Proof prove_cos(Functions& functions, real::Interval const& x, real::Accuracy accuracy);
ZELK_EXPORT Proof prove_tan(Functions& functions, real::Interval const& x, real::Accuracy accuracy);
ZELK_EXPORT Proof prove_asin(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_acos(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_atan(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_sinh(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_cosh(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_tanh(Functions& functions, real::Interval const& x,
                             real::Accuracy accuracy);
ZELK_EXPORT Proof prove_pi(Functions& functions, real::Accuracy accuracy);

/// That `bounds` hold e^x, sin x, -sin x or cos x. Requires: they hold those that `series` answers
/// for so many digits, or as many more as `cosine_bounds` takes, or the companions, in order.
/// Throws: std::invalid_argument for bounds without the cosine.
ZELK_EXPORT verify::Certificate certify_exp(na::PowerSeriesApproximator& series, QNumber const& x,
                                            unsigned digits, real::Interval const& bounds);
ZELK_EXPORT verify::Certificate certify_sin(na::PowerSeriesApproximator& series, QNumber const& x,
                                            unsigned digits, real::Interval const& bounds);
ZELK_EXPORT verify::Certificate certify_negative_sin(na::PowerSeriesApproximator& series,
                                                     QNumber const& x, unsigned digits,
                                                     real::Interval const& bounds);
ZELK_EXPORT verify::Certificate certify_cos(na::PowerSeriesApproximator& series, QNumber const& x,
                                            unsigned digits, real::Interval const& bounds);

/// That `bounds` hold pi. Requires: they are those of `machin_pi_bounds`, or of `short_pi_bounds`.
ZELK_EXPORT verify::Certificate certify_pi(real::Interval const& bounds);

}  // namespace zelk::certify
