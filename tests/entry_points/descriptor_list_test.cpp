#include "FED_DataDescriptorList.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "FailingAllocation.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;
using List = FED_DataDescriptorList;

// What a list has to hold: key numbers, 0 for a fresh descriptor, up to the capacity.
class ListModel {
 public:
  void Deallocate() { *this = ListModel(); }
  void Reserve(std::size_t n) {
    if (n <= m_Keys.size()) return;
    m_Keys.resize(m_Count);
    m_Keys.resize(n);
  }
  void Resize(std::size_t n) {
    if (n > m_Count) Reserve(n);
    m_Count = n;
  }
  void Set(std::size_t i, int key) { m_Keys[i] = key; }
  std::size_t GetCount() const { return m_Count; }

  // By the layout that Fortran programs see.
  void ExpectSame(const List& list) const {
    ASSERT_EQ(ReadAt<std::uint64_t>(list, 0), m_Count);
    ASSERT_EQ(ReadAt<std::uint64_t>(list, 8), m_Keys.size());
    const auto* const data = ReadAt<const Descriptor*>(list, 16);
    ASSERT_EQ(data == nullptr, m_Keys.empty());
    for (std::size_t i = 0; i < m_Keys.size(); ++i) {
      const Descriptor expected = Key(m_Keys[i]);
      for (std::size_t field = 0; field < 14; ++field) {
        EXPECT_EQ(SlotOf(data[i], field), SlotOf(expected, field)) << i;
      }
      EXPECT_EQ(ReadAt<std::uint32_t>(data[i], kMaskAt), ReadAt<std::uint32_t>(expected, kMaskAt));
      EXPECT_EQ(CacheOf(data[i]), CacheOf(expected)) << i;
    }
  }

  static Descriptor Key(int number) {
    Descriptor key;
    if (number == 0) return key;
    key.SetInteger(Descriptor::ITERATION, number);
    WriteCache(key, {number, number + 1, 5});
    return key;
  }

 private:
  std::size_t m_Count = 0;
  std::vector<int> m_Keys;
};

// One step on list and model alike; 'm' gives every descriptor in use a new key.
void Step(List& list, ListModel& model, char what, std::size_t n) {
  const auto both = [&](auto operation) { operation(list), operation(model); };
  if (what == 's') both([n](auto& any) { any.Resize(n); });
  if (what == 'r') both([n](auto& any) { any.Reserve(n); });
  if (what == 'd') both([](auto& any) { any.Deallocate(); });
  for (std::size_t i = 0; what == 'm' && i < model.GetCount(); ++i) {
    const int key = static_cast<int>(100 * n + i + 1);
    list[i] = ListModel::Key(key);
    model.Set(i, key);
  }
  model.ExpectSame(list);
}

TEST(DescriptorList, DoesWhatTheModelDoes) {
  for (const std::string script : {"s0r0d0d0s0", "s3m1s1s3", "s3m1s1s5", "s3m1s4m2s5", "r4s2m1r3s4",
                                   "s2m1r9s5s0s9", "s3m1d0d0s2m2s0s2", "s2m1s1r2s2r3"}) {
    SCOPED_TRACE(script);
    List list;
    ListModel model;
    for (std::size_t i = 0; i < script.size(); i += 2) {
      Step(list, model, script[i], static_cast<std::size_t>(script[i + 1] - '0'));
    }
  }
  ListModel roomy;
  roomy.Reserve(4);
  roomy.ExpectSame(List(4));
}

TEST(DescriptorList, MovesOnlyWhenItGrows) {
  List list(4);
  const Descriptor* const data = list.GetData();
  for (const std::size_t size : {2u, 0u, 4u, 3u}) {
    list.Resize(size);
    EXPECT_EQ(list.GetData(), data);
  }
}

TEST(DescriptorList, IsUnchangedWithoutMemory) {
  List list;
  ListModel model;
  Step(list, model, 's', 2);
  Step(list, model, 'm', 1);
  const Descriptor* const data = list.GetData();
  const auto check = [&] {
    model.ExpectSame(list);
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
