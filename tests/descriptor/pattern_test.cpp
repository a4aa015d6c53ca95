#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "FED_DataDescriptorPattern.h"
#include "FED_OnfInfoPool.h"
#include "FailingAllocation.h"
#include "FailureMatcher.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using testing::HasSubstr;
using Descriptor = FED_DataDescriptor;
using Pattern = FED_DataDescriptorPattern;
using Descriptors = std::vector<Descriptor>;

int ModeOf(const Pattern& pattern, std::size_t i) { return ReadAt<std::int32_t>(pattern, 8 * i); }
int ValueOf(const Pattern& pattern, std::size_t i) {
  return ReadAt<std::int32_t>(pattern, 8 * i + 4);
}
void WriteEntry(Pattern& pattern, std::size_t i, int mode, int value) {
  WriteAt(pattern, 8 * i, mode);
  WriteAt(pattern, 8 * i + 4, value);
}

// The places in `descriptors` of those that match; a place travels in the cache of a descriptor.
std::vector<int> Match(const Pattern& pattern, Descriptors descriptors) {
  for (std::size_t k = 0; k < descriptors.size(); ++k) {
    WriteCache(descriptors[k], {-1, static_cast<int>(k), 0});
  }
  std::vector<int> places;
  for (const Descriptor& matched : pattern.Match(descriptors)) {
    places.push_back(BlockIdOf(matched));
  }
  return places;
}

bool Has(const Descriptor& d, std::size_t i) { return d.Has(Descriptor::CastIndex(i)); }

bool ModelPasses(const Pattern& pattern, const Descriptor& d, std::size_t i) {
  const int value = ValueOf(pattern, i), slot = SlotOf(d, i), onf = SlotOf(d, 1);
  switch (ModeOf(pattern, i)) {
    case 0:
      return Has(d, i) && slot == value;
    case 2:
      return Has(d, i);
    case 3:
      return !Has(d, i);
    case 6:
      return Has(d, i) && slot <= value;
    case 7:
      return Has(d, i) && slot >= value;
    case 8:
      return Has(d, 1) && FED_OnfInfoPool::ExistsOnfBlock(onf) &&
             FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf)).category == value;
    default:
      return true;
  }
}

// Fields with an extreme mode; their values, negated for the lowest, are to be highest.
std::vector<std::size_t> ExtremeFields(const Pattern& pattern) {
  std::vector<std::size_t> fields;
  for (std::size_t i = 0; i < 14; ++i) {
    if (ModeOf(pattern, i) == 4 || ModeOf(pattern, i) == 5) fields.push_back(i);
  }
  return fields;
}
std::int64_t Rank(const Pattern& pattern, const Descriptor& d, std::size_t i) {
  return ModeOf(pattern, i) == 4 ? std::int64_t{SlotOf(d, i)} : -std::int64_t{SlotOf(d, i)};
}

std::vector<int> ModelMatch(const Pattern& pattern, const Descriptors& descriptors) {
  const std::vector<std::size_t> fields = ExtremeFields(pattern);
  std::vector<std::int64_t> best(14, std::numeric_limits<std::int64_t>::min());
  std::vector<std::size_t> accepted;
  for (std::size_t k = 0; k < descriptors.size(); ++k) {
    const Descriptor& d = descriptors[k];
    bool accept = true;
    for (std::size_t i = 0; i < 14; ++i) accept = accept && ModelPasses(pattern, d, i);
    for (const std::size_t i : fields) {
      accept = accept && Has(d, i) && Rank(pattern, d, i) >= best[i];
      if (accept) best[i] = Rank(pattern, d, i);
    }
    if (accept) accepted.push_back(k);
  }
  std::vector<int> selected;
  for (const std::size_t k : accepted) {
    bool keep = true;
    for (const std::size_t i : fields) keep = keep && Rank(pattern, descriptors[k], i) == best[i];
    if (keep) selected.push_back(static_cast<int>(k));
  }
  return selected;
}

Descriptor MakeRandomDescriptor(std::mt19937& random) {
  const int values[] = {0, 1, 2, 3, -1, -2147483647 - 1, 2147483647};
  const int kinds[] = {2, 5, 12, 101, 106, 201, 401, 9999};
  Descriptor descriptor;
  for (std::size_t i = 0; i < 14; ++i) {
    const Descriptor::ResultIndex field = Descriptor::CastIndex(i);
    descriptor.SetInteger(field, i == 1 ? kinds[random() % 8] : values[random() % 7]);
    if (random() % 4 == 0) descriptor.Unset(field);
  }
  return descriptor;
}

Pattern MakeRandomPattern(std::mt19937& random) {
  Pattern pattern;
  const bool extreme = random() % 2 == 0;
  for (std::size_t tests = random() % 4 + 1; tests > 0; --tests) {
    const int drawn = static_cast<int>(random() % 11) - 1;  // -1 and 9 test nothing
    const int mode = extreme && random() % 2 == 0 ? 4 + static_cast<int>(random() % 2) : drawn;
    const int value = static_cast<int>(mode == 8 ? random() % 6 + 1 : random() % 5);
    WriteEntry(pattern, random() % 14, mode, value);
  }
  return pattern;
}

TEST(Pattern, MatchesLikeTheModel) {
  std::mt19937 random(23);
  std::size_t selected = 0, severalExtremes = 0;
  for (int round = 0; round < 3000; ++round) {
    Descriptors descriptors(random() % 40);
    for (Descriptor& descriptor : descriptors) descriptor = MakeRandomDescriptor(random);
    const Pattern pattern = MakeRandomPattern(random);
    const std::vector<int> matched = Match(pattern, descriptors);
    ASSERT_EQ(matched, ModelMatch(pattern, descriptors)) << pattern.ToString();
    selected += matched.size();
    if (ExtremeFields(pattern).size() > 1 && !matched.empty()) ++severalExtremes;
  }
  EXPECT_GT(selected, 5000u) << "the draw has become trivial";
  EXPECT_GT(severalExtremes, 300u) << "the draw has become trivial";
}

TEST(Pattern, SettersAsRawBytes) {
  Descriptor labelled;
  labelled.SetString(Descriptor::LABEL, "exact text");
  const struct {
    std::function<void(Pattern&)> set;
    std::size_t field;
    int mode, value;
  } rows[] = {
      {[](Pattern& p) { p.SetMatchAll(Descriptor::STATE); }, 2, 1, 42},
      {[](Pattern& p) { p.SetMatchExact(Descriptor::STATE, -5); }, 2, 0, -5},
      {[](Pattern& p) { p.SetMatchExact(Descriptor::LABEL, "exact text"); }, 8, 0,
       SlotOf(labelled, 8)},
      {[](Pattern& p) { p.SetMatchIfPresent(Descriptor::SUB_LEVEL, true); }, 13, 2, 42},
      {[](Pattern& p) { p.SetMatchIfPresent(Descriptor::ITERATION, false); }, 0, 3, 42},
      {[](Pattern& p) { p.SetMatchHighest(Descriptor::LAYER); }, 9, 4, 42},
      {[](Pattern& p) { p.SetMatchLowest(Descriptor::LAYER); }, 9, 5, 42},
      {[](Pattern& p) { p.SetMatchLessEqual(Descriptor::ID_TYPE, 7); }, 11, 6, 7},
      {[](Pattern& p) { p.SetMatchGreaterEqual(Descriptor::ID_TYPE, 8); }, 11, 7, 8},
      {[](Pattern& p) { p.SetMatchCategory(ONF_CATEGORY_ELEMENT); }, 1, 8, 3},
  };
  ASSERT_EQ(sizeof(Pattern), 112u);
  for (const auto& row : rows) {
    Pattern pattern, expected;
    for (std::size_t i = 0; i < 14; ++i) {
      EXPECT_EQ(ModeOf(pattern, i), 1);
      EXPECT_EQ(ValueOf(pattern, i), 0);
      WriteEntry(pattern, i, 9, 42);
      WriteEntry(expected, i, i == row.field ? row.mode : 9, i == row.field ? row.value : 42);
    }
    EXPECT_FALSE(pattern == expected);
    row.set(pattern);
    EXPECT_TRUE(pattern == expected) << row.mode << " looks at values that the mode ignores too";
  }
}

TEST(Pattern, OfADescriptorMatchesThatKeyAlone) {
  Descriptor descriptor(ONF_ELEMENT_GROUP);
  descriptor.SetInteger(Descriptor::STATE, 8);
  descriptor.Unset(Descriptor::STATE);
  const Descriptors others{Descriptor(ONF_ELEMENT_GROUP), Descriptor(1, ONF_ELEMENT_GROUP),
                           Descriptor(ONF_NODE_COORDINATES), Descriptor()};
  EXPECT_EQ(Match(Pattern(descriptor), others), std::vector<int>{0});
  EXPECT_EQ(ValueOf(Pattern(descriptor), 2), 0);
  EXPECT_EQ(Match(Pattern(), others), (std::vector<int>{0, 1, 2, 3}));
}

TEST(Pattern, UnknownCategoryFailsWhenAKindIsLookedUp) {
  Pattern pattern;
  pattern.SetMatchCategory(static_cast<FED_OnfCategoryId>(77));
  EXPECT_TRUE(Match(pattern, {Descriptor()}).empty());
  EXPECT_THAT(CatchFailure([&] { Match(pattern, {Descriptor(ONF_DISPLACEMENT)}); }).what(),
              HasSubstr("77"));
}

TEST(Pattern, GetDataSpecifiesExactFieldsOnly) {
  Pattern pattern;
  pattern.SetMatchExact(Descriptor::LABEL, "the label");
  pattern.SetMatchExact(Descriptor::ITERATION, 4);
  pattern.SetMatchLessEqual(Descriptor::STATE, 9);
  Descriptor descriptor(1, ONF_DISPLACEMENT, 3);
  pattern.GetData(descriptor);
  EXPECT_EQ(descriptor.ToString(), "ITERATION=4/LABEL=the label");
  EXPECT_EQ(SlotOf(descriptor, 2), 9);
  EXPECT_EQ(SlotOf(descriptor, 1), 0);
}

TEST(Pattern, TextForm) {
  Pattern pattern;
  EXPECT_EQ(pattern.ToString(),
            "ITERATION:MATCH_ALL / ONF:MATCH_ALL / STATE:MATCH_ALL / LOADCASE:MATCH_ALL / "
            "SUBSTEP:MATCH_ALL / ANALYSIS:MATCH_ALL / INCREMENT:MATCH_ALL / "
            "OBJECTIVE_ID:MATCH_ALL / LABEL:MATCH_ALL / LAYER:MATCH_ALL / MICROPHONE:MATCH_ALL / "
            "ID_TYPE:MATCH_ALL / DIRECTION:MATCH_ALL / SUB_LEVEL:MATCH_ALL");
  for (const auto& [field, mode] :
       {std::pair{0u, 0}, {1u, 8}, {2u, 2}, {3u, 3}, {4u, 4}, {5u, 5}, {6u, 6}, {8u, 6}, {9u, 7}}) {
    WriteEntry(pattern, field, mode, -1);
  }
  pattern.SetMatchExact(Descriptor::OBJECTIVE_ID, "50%s%n / x");
  EXPECT_THAT(pattern.ToString(),
              testing::StartsWith(
                  "ITERATION:MATCH_EXACT(-1) / ONF:MATCH_CATEGORY(-1) / STATE:MATCH_PRESENT / "
                  "LOADCASE:MATCH_MISSING / SUBSTEP:MATCH_HIGHEST / ANALYSIS:MATCH_LOWEST / "
                  "INCREMENT:MATCH_LESS_EQ(-1) / OBJECTIVE_ID:MATCH_EXACT(50%s%n / x) / "
                  "LABEL:MATCH_LESS_EQ / LAYER:MATCH_GREATER_EQ(-1) / MICROPHONE:MATCH_ALL"));
  for (const int mode : {-1, 9, 2147483647}) {
    WriteEntry(pattern, 13, mode, 5);
    EXPECT_THAT(pattern.ToString(), testing::Not(testing::EndsWith(" / "))) << mode;
  }
}

TEST(Pattern, ExactTextWithoutMemoryKeepsTheValue) {
  Pattern pattern;
  pattern.SetMatchLessEqual(Descriptor::LABEL, -6);
  const auto attempt = [&] {
    pattern.SetMatchExact(Descriptor::LABEL, "another text that the pool has not met so far");
  };
  EXPECT_GT(ForEachFailingAllocation(attempt, [&] { EXPECT_EQ(ValueOf(pattern, 8), -6); }), 0u);
  EXPECT_GE(ValueOf(pattern, 8), 0);
}

}  // namespace
