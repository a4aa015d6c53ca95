#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>

#include "FED_IntSetIntvl.h"

namespace {

template <class T>
FED_IntSetIntvl<T> MinimalIntervals(const std::set<long long>& members) {
  // Built in ascending order, one member at a time.
  FED_IntSetIntvl<T> result;
  for (const long long member : members) result.Insert(static_cast<T>(member));
  return result;
}

template <class T>
void ExpectAscendingAndApart(const FED_IntSetIntvl<T>& set) {
  const typename FED_IntSetIntvl<T>::Interval* previous = nullptr;
  for (const auto& interval : set) {
    ASSERT_LE(interval.lo, interval.hi);
    if (previous != nullptr) {
      ASSERT_LT(static_cast<long long>(previous->hi) + 1, static_cast<long long>(interval.lo));
    }
    previous = &interval;
  }
}

template <class T>
class SmallIntervalSetTest : public testing::Test {};

using SmallTypes = testing::Types<signed char, unsigned char>;
TYPED_TEST_SUITE(SmallIntervalSetTest, SmallTypes, );

// The whole domain has 256 values: every member, both extremes included, is compared each time.
TYPED_TEST(SmallIntervalSetTest, BehavesLikeASetOfAllItsMembers) {
  const int least = std::numeric_limits<TypeParam>::min();
  const int greatest = std::numeric_limits<TypeParam>::max();
  std::mt19937 random(11);
  for (int round = 0; round < 400; ++round) {
    FED_IntSetIntvl<TypeParam> set;
    std::set<long long> model;
    for (int step = 0; step < 30; ++step) {
      const int lo = least + static_cast<int>(random() % 256);
      const int hi = std::min(greatest, lo - 2 + static_cast<int>(random() % 16));
      if (random() % 4 == 0) {
        set.Insert(static_cast<TypeParam>(lo));
        model.insert(lo);
      } else {
        set.Insert(static_cast<TypeParam>(lo), static_cast<TypeParam>(std::max(hi, least)));
        for (int v = lo; v <= std::max(hi, least); ++v) model.insert(v);
      }
    }
    ExpectAscendingAndApart(set);
    ASSERT_EQ(set.Size(), model.size());
    for (int v = least; v <= greatest; ++v) {
      ASSERT_EQ(set.Contains(static_cast<TypeParam>(v)), model.count(v) == 1) << v;
    }
    ASSERT_EQ(set, MinimalIntervals<TypeParam>(model));
  }
}

template <class T>
class WideIntervalSetTest : public testing::Test {
 public:
  static constexpr T kLeast = std::numeric_limits<T>::min();
  static constexpr T kGreatest = std::numeric_limits<T>::max();
};

using WideTypes = testing::Types<int, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(WideIntervalSetTest, WideTypes, );

TYPED_TEST(WideIntervalSetTest, HoldsTheExtremes) {
  constexpr TypeParam least = TestFixture::kLeast;
  constexpr TypeParam greatest = TestFixture::kGreatest;
  FED_IntSetIntvl<TypeParam> set;
  set.Insert(greatest);
  set.Insert(least);
  set.Insert(greatest);
  set.Insert(least);
  EXPECT_EQ(set.NumIntervals(), 2u);
  EXPECT_EQ(set.Size(), 2u);
  EXPECT_TRUE(set.Contains(least));
  EXPECT_TRUE(set.Contains(greatest));
  EXPECT_FALSE(set.Contains(least + 1));
  EXPECT_FALSE(set.Contains(greatest - 1));

  set.Insert(greatest - 1);
  set.Insert(least + 1);
  EXPECT_EQ(set.NumIntervals(), 2u);
  EXPECT_EQ(set.Size(), 4u);

  set.Insert(least + 2, greatest - 2);
  FED_IntSetIntvl<TypeParam> everything;
  everything.Insert(least, greatest);
  EXPECT_EQ(set, everything);
  everything.Insert(least);
  everything.Insert(greatest);
  everything.Insert(0);
  EXPECT_EQ(everything.NumIntervals(), 1u);
}

TEST(IntervalSetTest, CountsTheFullRanges) {
  FED_IntSetIntvl<int> ints;
  ints.Insert(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
  EXPECT_EQ(ints.Size(), std::uint64_t{1} << 32);
  FED_IntSetIntvl<std::int64_t> longs;
  longs.Insert(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(longs.Size(), ~std::uint64_t{0});
}

TEST(IntervalSetTest, EmptyAndClear) {
  FED_IntSetIntvl<int> set;
  EXPECT_TRUE(set.Empty());
  EXPECT_EQ(set.Size(), 0u);
  EXPECT_FALSE(set.Contains(0));
  set.Insert(3, 2);
  EXPECT_TRUE(set.Empty());
  set.Insert(0, 5);
  EXPECT_NE(set, FED_IntSetIntvl<int>());
  set.Clear();
  EXPECT_EQ(set, FED_IntSetIntvl<int>());
}

}  // namespace
