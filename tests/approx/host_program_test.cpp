#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/text_form.h"
#include "zelk/zelk.h"

// What programs write that know the types by their names: every member has to compile.
namespace zelk {
using na::PowerSeriesApproximator;
using na::RationalApproximator;
using ContinuedFraction = RationalApproximator::ContinuedFraction;
using Bounds = std::pair<QNumber, QNumber>;
namespace hsh {
template class HashMap<std::pair<QNumber, unsigned>, QNumber, RationalApproximator::pair_hash_eq,
                       RationalApproximator::pair_hash_eq>;
template class Hashtable<std::pair<QNumber, ContinuedFraction>,
                         GetKey_pair<QNumber, ContinuedFraction>, QNumber, Hasher<QNumber>,
                         std::equal_to<QNumber>>;
template class HashMap<std::pair<QNumber, unsigned>, PowerSeriesApproximator::ApproxData,
                       PowerSeriesApproximator::pair_hash_eq,
                       PowerSeriesApproximator::pair_hash_eq>;
template class HashMap<unsigned, Bounds, hash<unsigned>, std::equal_to<unsigned>>;
template class Hashtable<std::pair<unsigned, Bounds>, GetKey_pair<unsigned, Bounds>, unsigned,
                         hash<unsigned>, std::equal_to<unsigned>>;
}  // namespace hsh

namespace {

static_assert(
    !std::is_same_v<RationalApproximator::pair_hash_eq, PowerSeriesApproximator::pair_hash_eq>);

struct AnyHash {
  template <class T>
  std::uint64_t operator()(T key) const {
    return static_cast<std::uint64_t>(key) * 31;
  }
};
struct LengthHash {
  std::uint64_t operator()(std::string const& key) const { return key.size(); }
};

#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wfloat-conversion"
TEST(HostProgram, LooksUpByWhatConvertsToTheKey) {
  hsh::HashMap<unsigned, int, AnyHash, std::equal_to<>> unsigned_keys;
  unsigned_keys[-1] = 5;
  EXPECT_EQ(unsigned_keys.find(4294967295U).node->value.second, 5);
  hsh::HashMap<long, int, AnyHash, std::equal_to<>> keys;
  keys[3] = 7;
  auto const find = &decltype(keys)::find;
  EXPECT_NE((keys.*find)(3.5), keys.end());
  EXPECT_NE(keys.find(3.5), keys.end());
  hsh::HashMap<std::string, int, LengthHash, std::equal_to<std::string>> names;
  names["abc"] = 1;
  EXPECT_NE(names.find("abc"), names.end());
  hsh::TableView const view(names);
  EXPECT_EQ(view.find("abc").node->value.second, 1);
  EXPECT_EQ(view.find("ab"), view.end());
}

PowerSeriesApproximator made_on(RationalApproximator& ra) { return {ra}; }

TEST(HostProgram, MixesNumbersWithSizes) {
  std::vector<int> const v(3);
  QNumber s(v.size());
  for (std::size_t i = 0; i < v.size(); ++i) s += i;
  EXPECT_TRUE(s == 6 && s == 2 * v.size() && QNumber(v.size(), std::uint64_t{6}) == QNumber(1, 2));

  ContinuedFraction const c = s;
  RationalApproximator::CfCache cf_table;
  cf_table.insert({s, s});
  auto* const node = cf_table.new_Bucket({s, c});
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(test::show(node->value), "6 6 [; 6]");
  node->value.~pair();

  RationalApproximator rational;
  PowerSeriesApproximator series = made_on(rational);
  auto const bounds = series.maclaurin_exp_bounds(1, 0);
  auto const records = series.exp_records();
  auto const known = records.find({QNumber(1), 0U});
  ASSERT_NE(known, records.end());
  EXPECT_EQ(known.node->value.second.bounds, bounds);
  EXPECT_EQ(records.find({QNumber(1), 1U}), records.end());
  // At least one term.
  EXPECT_EQ(rational.approx({7, 2}, 0, 0), 3);
  EXPECT_EQ(rational.approx({7, 2}, 0, 1), QNumber(7, 2));
  EXPECT_EQ(rational.approximations().size(), 2U);
}

}  // namespace
}  // namespace zelk

// A program with relations, functions and an equality of its own, for which the library's make way.
namespace host {
namespace {

using zelk::QNumber;

int calls = 0;
bool operator>(QNumber const& a, QNumber const& b) { return ++calls, b < a; }
bool operator<=(QNumber const& a, QNumber const& b) { return ++calls, !(b < a); }
bool operator>=(QNumber const& a, QNumber const& b) { return ++calls, !(a < b); }
bool operator!=(QNumber const& a, QNumber const& b) { return ++calls, !(a == b); }
void swap(QNumber& a, QNumber& b) { ++calls, zelk::swap(a, b); }

QNumber const ours(-77);
QNumber operator-(QNumber const& /*q*/) { return ours; }
QNumber floor(QNumber const& /*q*/) { return ours; }
QNumber ceil(QNumber const& /*q*/) { return ours; }
QNumber round(QNumber const& /*q*/) { return ours; }
QNumber pow(QNumber const& /*q*/, long /*n*/) { return ours; }
QNumber numerator(QNumber const& /*q*/) { return ours; }
QNumber denominator(QNumber const& /*q*/) { return ours; }

TEST(HostProgram, MayHaveRelationsAndFunctionsOfItsOwn) {
  QNumber a(7, 2), b(3);
  EXPECT_TRUE(a > b && b <= a && a >= 3 && 2 <= b && a != b);
  swap(a, b);
  EXPECT_EQ(calls, 6);
  for (QNumber const& q :
       {-a, floor(a), ceil(a), round(a), pow(a, 2L), numerator(a), denominator(a)})
    EXPECT_EQ(q, ours);
  bool (*const greater)(QNumber const&, QNumber const&) = &zelk::operator>;
  EXPECT_TRUE(greater(b, a) && zelk::floor(b) == 3);
}

/// Looser than the library's, whose hash it goes with: all is in one chain.
struct Looser : zelk::hsh::pair_hash_eq {
  using zelk::hsh::pair_hash_eq::operator();
  bool operator()(Key const& a, Key const& b) const {
    return zelk::floor(a.first / 5) == zelk::floor(b.first / 5);
  }
};

template <class Hash>
std::size_t entries() {
  zelk::hsh::HashMap<Looser::Key, int, Hash, Looser> table;
  for (long n = 0; n < 300; ++n) table[{n, 1}] = 1;
  return table.size();
}

TEST(HostProgram, MayHaveAnEqualityOfItsOwn) {
  EXPECT_EQ(entries<zelk::hsh::pair_hash_eq>(), 60U);
  EXPECT_EQ(entries<Looser>(), 60U);
}

}  // namespace
}  // namespace host
