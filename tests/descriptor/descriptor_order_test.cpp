#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "FED_DataDescriptor.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using Descriptor = FED_DataDescriptor;

constexpr int kMin = -2147483647 - 1;

// Few masks and values, so that ties are common, with leftovers in unset slots.
std::vector<Descriptor> MakeMany(std::size_t count) {
  const int values[] = {kMin, -1, 0, 1, 2147483647};
  std::mt19937 random(11);
  std::vector<Descriptor> many(count);
  for (Descriptor& descriptor : many) {
    const std::size_t mask = random() % 3 == 0 ? random() % (1u << 14) : random() % 8 | 0x2080u;
    for (std::size_t i = 0; i < 14; ++i) {
      descriptor.SetInteger(Descriptor::CastIndex(i), values[random() % 3 == 0 ? random() % 5 : 2]);
      if ((mask >> i & 1) == 0) descriptor.Unset(Descriptor::CastIndex(i));
    }
    const int position = static_cast<int>(random() % 9);
    WriteCache(descriptor, {position, position, random()});
  }
  return many;
}

using ModelKey = std::pair<std::uint32_t, std::vector<int>>;

ModelKey ModelOf(const Descriptor& descriptor) {
  ModelKey key(ReadAt<std::uint32_t>(descriptor, kMaskAt), {});
  for (std::size_t i = 0; i < 14; ++i) {
    if ((key.first >> i & 1) != 0) key.second.push_back(SlotOf(descriptor, i));
  }
  return key;
}

TEST(DescriptorOrder, AgreesWithTheModelAndCountsItsCalls) {
  const std::vector<Descriptor> many = MakeMany(300);
  using D = const Descriptor&;
  const struct {
    bool (*compare)(D, D);
    bool (*model)(const ModelKey&, const ModelKey&);
    std::uint64_t callsBelow, calls;
  } rows[] = {
      {[](D a, D b) { return a < b; }, [](auto& x, auto& y) { return x < y; }, 1, 1},
      {[](D a, D b) { return a == b; }, [](auto& x, auto& y) { return x == y; }, 1, 2},
      {[](D a, D b) { return a != b; }, [](auto& x, auto& y) { return x != y; }, 1, 2},
      {[](D a, D b) { return a.EqualTo(b); }, [](auto& x, auto& y) { return x == y; }, 0, 0},
  };
  std::vector<ModelKey> models;
  for (D a : many) models.push_back(ModelOf(a));
  for (std::size_t i = 0; i < many.size(); ++i) {
    for (std::size_t k = 0; k < many.size(); ++k) {
      const ModelKey &x = models[i], &y = models[k];
      for (const auto& row : rows) {
        const std::uint64_t before = Descriptor::s_ComparisonCounter;
        ASSERT_EQ(row.compare(many[i], many[k]), row.model(x, y));
        ASSERT_EQ(Descriptor::s_ComparisonCounter - before, x < y ? row.callsBelow : row.calls);
      }
    }
  }
}

TEST(DescriptorOrder, MasksCompareAsUnsignedNumbers) {
  Descriptor high;
  WriteAt(high, kMaskAt, 0x80000000u);
  EXPECT_TRUE(Descriptor(5, ONF_DISPLACEMENT) < high);
}

TEST(DescriptorHash, MixesAllSlots) {
  EXPECT_EQ(Descriptor().Hash(), kMin);
  EXPECT_EQ(Descriptor(1, ONF_NODE_COORDINATES).Hash(), 17);
  // How far the mix shifts each slot; the microphone's, for one, comes to 8192.
  const unsigned shifts[14] = {0, 3, 1, 2, 4, 5, 6, 7, 11, 12, 13, 8, 9, 10};
  for (const Descriptor& descriptor : MakeMany(1000)) {
    std::uint32_t hash = 0;
    for (std::size_t i = 0; i < 14; ++i) {
      hash ^= static_cast<std::uint32_t>(SlotOf(descriptor, i)) << shifts[i];
    }
    ASSERT_EQ(descriptor.Hash(), static_cast<int>(hash));
  }
}

}  // namespace
