#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "FailingAllocation.h"
#include "QeltaStringsPool.h"

namespace {

TEST(StringsPoolTest, NumbersCountUpInOrderOfFirstUse) {
  QeltaStringsPool pool(4);
  const std::string withZero("a\0b", 3);
  const std::vector<std::string> texts = {"b", "",     "a",      "a ",
                                          "A", "\xff", withZero, std::string(100000, 'x')};
  for (int pass = 0; pass < 2; ++pass) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const Qelta_SP_STRING_ID id = pool.AddString(texts[i]);
      EXPECT_EQ(id.value(), static_cast<std::int32_t>(i));
      EXPECT_STREQ(pool.GetString(id), texts[i].c_str());
    }
  }
}

TEST(StringsPoolTest, UnknownNumbersGiveAnEmptyText) {
  QeltaStringsPool pool(0);
  pool.AddString("only");
  for (const std::int32_t id : {-1, 1, 2, std::numeric_limits<std::int32_t>::max(),
                                std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_STREQ(pool.GetString(Qelta_SP_STRING_ID(id)), "") << id;
  }
}

TEST(StringsPoolTest, TextsNeverMove) {
  QeltaStringsPool pool(1);
  std::vector<const char*> addresses;
  for (int i = 0; i < 20000; ++i) {
    addresses.push_back(pool.GetString(pool.AddString("t" + std::to_string(i))));
  }
  for (int i = 0; i < 20000; ++i) {
    const Qelta_SP_STRING_ID id(i);
    ASSERT_EQ(pool.GetString(id), addresses[static_cast<std::size_t>(i)]);
    ASSERT_EQ(addresses[static_cast<std::size_t>(i)], "t" + std::to_string(i));
  }
}

TEST(StringsPoolTest, ThreadsAgreeOnEveryNumber) {
  constexpr std::size_t kTexts = 3000;
  QeltaStringsPool pool(1);
  std::vector<std::vector<std::int32_t>> ids(4, std::vector<std::int32_t>(kTexts));
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < ids.size(); ++t) {
    threads.emplace_back([&pool, &mine = ids[t], seed = t] {
      std::vector<std::size_t> order(kTexts);
      for (std::size_t i = 0; i < kTexts; ++i) order[i] = i;
      std::shuffle(order.begin(), order.end(), std::mt19937(static_cast<unsigned>(seed)));
      for (const std::size_t i : order) {
        const std::string text = "text " + std::to_string(i);
        const Qelta_SP_STRING_ID id = pool.AddString(text);
        mine[i] = id.value();
        if (pool.GetString(id) != text) mine[i] = -1;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& others : ids) EXPECT_EQ(others, ids[0]);
  std::sort(ids[0].begin(), ids[0].end());
  for (std::size_t i = 0; i < kTexts; ++i) {
    ASSERT_EQ(ids[0][i], static_cast<std::int32_t>(i)) << "a number was skipped or given twice";
  }
}

TEST(StringsPoolTest, FailingAllocationLeavesThePoolUsable) {
  QeltaStringsPool pool(0);
  for (int i = 0; i < 500; ++i) {
    const std::string text = "a text that needs memory of its own " + std::to_string(i);
    Qelta_SP_STRING_ID id;
    qelta::test::ForEachFailingAllocation(
        [&] { id = pool.AddString(text); },
        [&] { ASSERT_STREQ(pool.GetString(Qelta_SP_STRING_ID(i)), ""); });
    ASSERT_EQ(id.value(), i);
    ASSERT_STREQ(pool.GetString(id), text.c_str());
  }
}

}  // namespace
