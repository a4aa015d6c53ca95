#include "MemoryArena.h"

#include <gtest/gtest.h>

#include <string>

namespace qelta::test {
namespace {

constexpr auto kString = MemoryArena::Kind::STRING;

TEST(MemoryArena, ContentsOfAllSizesStayWhereTheyAre) {
  MemoryArena arena;
  std::vector<std::string> texts;
  for (const std::size_t size : {0u, 1u, 255u, 256u, 257u, 65535u, 65536u, 65537u, 200000u}) {
    texts.emplace_back(size, 'x');
  }
  for (std::size_t i = 0; i < 3000; ++i) texts.emplace_back(i * 7919 % 400, static_cast<char>(i));
  std::vector<MemoryArena::Content> kept(texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ASSERT_EQ(arena.Store(kString, texts[i].data(), texts[i].size()), i + 1);
    ASSERT_TRUE(arena.Find(kString, i + 1, kept[i]));
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    MemoryArena::Content content{};
    ASSERT_TRUE(arena.Find(kString, i + 1, content));
    EXPECT_EQ(content.data, kept[i].data);
    EXPECT_EQ(std::string(static_cast<const char*>(content.data), content.bytes), texts[i]);
  }
}

}  // namespace
}  // namespace qelta::test
