#include "FED_OnfDescriptorSet.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "FED_OnfInfoPool.h"
#include "FailingAllocation.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;
using Set = FED_OnfDescriptorSet;

constexpr int kCount = 10112;

FED_OnfId Onf(int number) { return static_cast<FED_OnfId>(number); }

std::set<int> KnownNumbers() {
  const std::vector<FED_OnfId>& all = FED_OnfInfoPool::GetAllOnfIds();
  return {all.begin(), all.end()};
}

// The keys as texts; a cached position shows as well.
std::vector<std::string> TextsOf(const Set& set) {
  std::vector<std::string> texts;
  for (int onf = 0; onf < kCount; ++onf) {
    const Descriptor& descriptor = set.GetDescriptor(Onf(onf));
    texts.push_back(descriptor.ToString());
    if (BlockIdOf(descriptor) != -1) texts.back() += " cached";
  }
  return texts;
}

// What a fresh set has; for some numbers another key, where '#' stands for the number.
std::vector<std::string> Expected(const std::set<int>& numbers, const std::string& key) {
  std::vector<std::string> texts;
  for (int onf = 0; onf < kCount; ++onf) {
    texts.push_back(numbers.count(onf) == 0 ? "#" : key);
    texts.back().replace(texts.back().find('#'), 1, "ONF=" + std::to_string(onf));
  }
  return texts;
}

TEST(OnfDescriptorSet, StartsWithTheNumbersAlone) {
  Set set;
  EXPECT_EQ(TextsOf(set), Expected({}, ""));
  const Descriptor last = set.GetDescriptor(Onf(kCount - 1)), expected(Onf(kCount - 1));
  for (std::size_t i = 0; i < 14; ++i) EXPECT_EQ(SlotOf(last, i), SlotOf(expected, i));
  EXPECT_LT(*KnownNumbers().rbegin(), kCount) << "the catalogue has outgrown the set";
}

TEST(OnfDescriptorSet, UpdatesWhatIsAddressedKnownAndSpecified) {
  const std::vector<FED_OnfId> some = {Onf(12), Onf(9999), Onf(2), Onf(12)}, one = {Onf(2)};
  const auto number = Descriptor::ITERATION, text = Descriptor::LABEL;
  const auto always = Set::UPDATE_ALWAYS, ifSpecified = Set::UPDATE_IF_SPECIFIED;
  const auto unknown = static_cast<Set::UpdateBehaviour>(2);
  const std::string top = "top", low = "low";
  const std::set<int> all = KnownNumbers(), none;
  using Acts = std::vector<std::function<void(Set&)>>;
  const struct {
    Acts acts;
    std::set<int> changed;
    std::string key;
  } rows[] = {
      {{[&](Set& s) { s.UpdateDescriptors(number, 3, always); }}, all, "ITERATION=3/#"},
      {{[&](Set& s) { s.UpdateDescriptors(text, top, always); }}, all, "#/LABEL=top"},
      {{[&](Set& s) { s.UpdateDescriptors(number, 3, ifSpecified); }}, none, ""},
      {{[&](Set& s) { s.UpdateDescriptors({}, number, 3, always); }}, none, ""},
      {{[&](Set& s) { s.UpdateDescriptors(Descriptor::ONF, 3, unknown); }}, none, ""},
      {{[&](Set& s) { s.UpdateDescriptors(some, text, top, unknown); }}, none, ""},
      {{[&](Set& s) { s.UpdateDescriptors(some, number, 3, always); },
        [&](Set& s) { s.UpdateDescriptors(number, 4, ifSpecified); }},
       {2, 12},
       "ITERATION=4/#"},
      {{[&](Set& s) { s.UpdateDescriptors(some, text, top, always); },
        [&](Set& s) { s.UpdateDescriptors(text, low, ifSpecified); }},
       {2, 12},
       "#/LABEL=low"},
      {{[&](Set& s) { s.UpdateDescriptors(one, number, 3, always); },
        [&](Set& s) { s.UpdateDescriptors(some, number, 4, ifSpecified); }},
       {2},
       "ITERATION=4/#"},
      {{[&](Set& s) { s.UpdateDescriptors(one, text, top, always); },
        [&](Set& s) { s.UpdateDescriptors(some, text, low, ifSpecified); }},
       {2},
       "#/LABEL=low"},
  };
  for (const auto& row : rows) {
    Set set;
    for (const auto& act : row.acts) act(set);
    EXPECT_EQ(TextsOf(set), Expected(row.changed, row.key)) << "row " << &row - rows;
  }
}

TEST(OnfDescriptorSet, ForgetsThePositionsOfWhatItChanges) {
  Set set;
  const Cache cache{3, 4, 5};
  for (const int onf : {2, 5, 9999}) WriteCache(set.GetDescriptor(Onf(onf)), cache);
  set.UpdateDescriptors({Onf(2), Onf(9999)}, Descriptor::STATE, 1, Set::UPDATE_ALWAYS);
  EXPECT_EQ(CacheOf(set.GetDescriptor(Onf(2))), (Cache{-1, -1, 5}));
  EXPECT_EQ(CacheOf(set.GetDescriptor(Onf(5))), cache);
  EXPECT_EQ(CacheOf(set.GetDescriptor(Onf(9999))), cache);
  set.UpdateDescriptors(Descriptor::STATE, 2, Set::UPDATE_IF_SPECIFIED);
  EXPECT_EQ(CacheOf(set.GetDescriptor(Onf(5))), cache);
}

TEST(OnfDescriptorSet, CopiesAreIndependentAndFlat) {
  Set source;
  WriteCache(source.GetDescriptor(Onf(2)), {3, 4, 5});
  source.UpdateDescriptors({Onf(5)}, Descriptor::STATE, 1, Set::UPDATE_ALWAYS);
  Set copy(source), assigned;
  assigned = source;
  const std::vector<std::string> before = TextsOf(source);
  EXPECT_EQ(TextsOf(copy), before);
  EXPECT_EQ(TextsOf(assigned), before);
  EXPECT_EQ(CacheOf(assigned.GetDescriptor(Onf(2))), (Cache{3, 4, 5}));
  const Descriptor* const place = &assigned.GetDescriptor(Onf(2));
  source.UpdateDescriptors(Descriptor::STATE, 9, Set::UPDATE_ALWAYS);
  const Set& self = assigned;
  assigned = self;
  EXPECT_EQ(TextsOf(copy), before);
  EXPECT_EQ(TextsOf(assigned), before);
  EXPECT_EQ(&assigned.GetDescriptor(Onf(2)), place);
}

TEST(OnfDescriptorSet, IsOneAllocation) {
  const auto nothing = [] {};
  EXPECT_EQ(ForEachFailingAllocation([] { const Set set; }, nothing), 1u);
  const Set source;
  EXPECT_EQ(ForEachFailingAllocation([&] { const Set copy(source); }, nothing), 1u);
  Set target;
  EXPECT_EQ(ForEachFailingAllocation([&] { target = source; }, nothing), 0u);
}

}  // namespace
}  // namespace qelta::test
