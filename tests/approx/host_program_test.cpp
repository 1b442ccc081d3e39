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

TEST(HostProgram, LooksUpByWhatConvertsToTheKey) {
  hsh::HashMap<unsigned, int, AnyHash, std::equal_to<>> unsigned_keys;
  unsigned_keys[-1] = 5;
  EXPECT_EQ(unsigned_keys.find(4294967295U).node->value.second, 5);
  hsh::HashMap<long, int, AnyHash, std::equal_to<>> keys;
  keys[3] = 7;
  auto const find = &decltype(keys)::find;
#pragma GCC diagnostic ignored "-Wfloat-conversion"
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
