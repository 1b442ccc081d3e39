#pragma once

#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/random_number.h"
#include "zelk/approx/power_series_approximator.h"
#include "zelk/approx/rational_approximator.h"

/// Numbers, records and tables as text with nothing left out, so that a comparison of strings tells
/// values, forms, entries and their order. A number in big form ends in `B`.
namespace zelk::test {

inline QNumber in_big_form(QNumber const& q) { return to_number(to_rational(q), true); }

inline QNumber number(std::string const& text) {
  return to_number(mpq_class(text.substr(0, text.find('B'))), text.ends_with('B'));
}

/// Numbers from a text with blanks between them.
inline std::vector<QNumber> numbers(std::string const& texts) {
  std::istringstream stream(texts);
  std::vector<QNumber> all;
  for (std::string text; stream >> text;) all.push_back(number(text));
  return all;
}

/// Points for the series: their sums turn big at once, midway, only in a closing quotient, or
/// never; they lie on either side of where a word or a limb ends, beside multiples of pi, and where
/// the sine has not the sign of the point.
inline std::vector<QNumber> points() {
  return numbers(
      "0 1 2 3 4 5 7 10 100 1/2 1/3 2/3 19/10 22/7 44/7 63/20 99/70 355/113 103993/33102 123/97 "
      "1/1000 1/1024 1023/512 65537/65536 1000003/1000033 1/4294967295 1/4294967296 "
      "4294967297/4294967296 3037000500/3037000499 1/3037000499 1/9223372036854775807 "
      "9223372036854775807/9223372036854775806 9223372036854775807/2305843009213693951 "
      "1/9223372036854775808 9223372036854775808/9223372036854775807 "
      "18446744073709551617/18446744073709551616 "
      "1/340282366920938463463374607431768211456 157079632679489661923132/50000000000000000000000");
}

inline std::string show(bool b) { return b ? "true" : "false"; }
inline std::string show(unsigned n) { return std::to_string(n); }
inline std::string show(std::string const& text) { return text; }
inline std::string show(QNumber const& q) {
  return to_rational(q).get_str() + (q.is_big() ? "B" : "");
}

inline std::string show(na::RationalApproximator::ContinuedFraction const& c) {
  std::string text = show(c.number) + " [";
  for (QNumber const& term : c.terms) text += show(term) + " ";
  return text + "; " + show(c.remainder) + "]";
}

inline std::string show(na::PowerSeriesApproximator::ApproxData const& data);

template <class A, class B>
std::string show(std::pair<A, B> const& p) {
  return show(p.first) + " " + show(p.second);
}

inline std::string show(na::PowerSeriesApproximator::ApproxData const& data) {
  return show(data.bounds) + " " + show(data.der_bounds) + " " + std::to_string(data.degree);
}

/// What a table holds, wherever it stands.
template <class Table>
std::set<std::string> entries(Table const& table) {
  std::set<std::string> all;
  for (std::size_t i = 0; i < table.bucket_count(); ++i)
    for (auto const* node = table.chain(i); node; node = node->next) all.insert(show(node->value));
  return all;
}

}  // namespace zelk::test
