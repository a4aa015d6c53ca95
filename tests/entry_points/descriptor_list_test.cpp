#include "FED_DataDescriptorList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "FailingAllocation.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;
using List = FED_DataDescriptorList;

Descriptor Key(int number) {
  Descriptor key;
  if (number == 0) return key;
  key.SetInteger(Descriptor::ITERATION, number);
  WriteCache(key, {number, number + 1, 5});
  return key;
}

// Count, capacity and the numbers of the keys up to that, 0 for a fresh one, by the layout that
// Fortran programs see.
std::string Describe(const List& list) {
  const auto capacity = ReadAt<std::uint64_t>(list, 8);
  const auto* const data = ReadAt<const Descriptor*>(list, 16);
  EXPECT_EQ(data == nullptr, capacity == 0);
  std::string text =
      std::to_string(ReadAt<std::uint64_t>(list, 0)) + '/' + std::to_string(capacity);
  for (std::size_t i = 0; i < capacity; ++i) {
    const int number = data[i].Has(Descriptor::ITERATION) ? SlotOf(data[i], 0) : 0;
    const Descriptor expected = Key(number);
    EXPECT_EQ(std::memcmp(&data[i], &expected, kBlockIdAt + 4), 0) << number;
    EXPECT_TRUE(CacheOf(data[i]) == CacheOf(expected)) << number;
    text += ' ' + std::to_string(number);
  }
  return text;
}

// Resizes, reserves, deallocates, or gives every descriptor in use a new key.
void Step(List& list, char what, std::size_t n) {
  const Descriptor* const data = list.GetData();
  const std::size_t capacity = list.GetCapacity();
  if (what == 's') list.Resize(n);
  if (what == 'r') list.Reserve(n);
  if (what == 'd') list.Deallocate();
  for (std::size_t i = 0; what == 'k' && i < list.GetCount(); ++i) {
    list[i] = Key(static_cast<int>(10 * n + i + 1));
  }
  EXPECT_TRUE(list.GetCapacity() != capacity || list.GetData() == data) << "moves when it grows";
}

TEST(DescriptorList, KeepsKeysAndRoom) {
  const std::pair<std::string, std::string> rows[] = {
      {"s0r0d0d0s0", "0/0, 0/0, 0/0, 0/0, 0/0"},
      {"s3k1s1s5", "3/3 0 0 0, 3/3 11 12 13, 1/3 11 12 13, 5/5 11 0 0 0 0"},
      {"r4s2k1r3s4", "0/4 0 0 0 0, 2/4 0 0 0 0, 2/4 11 12 0 0, 2/4 11 12 0 0, 4/4 11 12 0 0"},
      {"k1s2k2r5s0s6",
       "0/0, 2/2 0 0, 2/2 21 22, 2/5 21 22 0 0 0, 0/5 21 22 0 0 0, 6/6 0 0 0 0 0 0"},
      {"s2k1d0d0s2k2s1s2",
       "2/2 0 0, 2/2 11 12, 0/0, 0/0, 2/2 0 0, 2/2 21 22, 1/2 21 22, 2/2 21 22"},
      {"s2k1s1r3s2", "2/2 0 0, 2/2 11 12, 1/2 11 12, 1/3 11 0 0, 2/3 11 0 0"},
  };
  for (const auto& [script, expected] : rows) {
    List list;
    std::string states;
    for (std::size_t i = 0; i < script.size(); i += 2) {
      Step(list, script[i], static_cast<std::size_t>(script[i + 1] - '0'));
      states += (i == 0 ? "" : ", ") + Describe(list);
    }
    EXPECT_EQ(states, expected) << script;
  }
  EXPECT_EQ(Describe(List(4)), "0/4 0 0 0 0");
}

TEST(DescriptorList, IsUnchangedWithoutMemory) {
  List list(2);
  Step(list, 's', 2);
  Step(list, 'k', 1);
  const Descriptor* const data = list.GetData();
  const auto check = [&] {
    EXPECT_EQ(Describe(list), "2/2 11 12");
    EXPECT_EQ(list.GetData(), data);
  };
  const std::size_t max = ~std::size_t{0};
  for (const std::size_t size : {max, max / sizeof(Descriptor) + 1}) {
    EXPECT_THROW(list.Resize(size), std::bad_alloc);
    EXPECT_THROW(list.Reserve(size), std::bad_alloc);
    EXPECT_THROW(List{size}, std::bad_alloc);
    check();
  }
  EXPECT_EQ(ForEachFailingAllocation([&] { list.Resize(3); }, check), 1u);
  EXPECT_EQ(list.GetCapacity(), 3u);
}

}  // namespace
}  // namespace qelta::test
