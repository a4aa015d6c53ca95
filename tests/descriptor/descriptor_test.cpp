#include "FED_DataDescriptor.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "FED_DataDescriptorPattern.h"
#include "FailingAllocation.h"
#include "FailureMatcher.h"
#include "RawBytes.h"

namespace {

using namespace qelta::test;
using Descriptor = FED_DataDescriptor;

const std::string kLocation = "|%P|QeltaDataDescriptor|FED_DataDescriptor";
constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

FED_OnfId Onf(int number) { return static_cast<FED_OnfId>(number); }

Descriptor MakeLabelled(const std::string& label) {
  Descriptor descriptor;
  descriptor.SetString(Descriptor::LABEL, label);
  return descriptor;
}

// Built before main: the pool and the tables must exist by then.
const std::string s_EarlyText =
    MakeLabelled("early").ToString() +
    FED_DataDescriptorPattern(MakeLabelled("early")).ToString().substr(0, 9);

TEST(Descriptor, ServesStaticObjects) { EXPECT_EQ(s_EarlyText, "LABEL=earlyITERATION"); }

TEST(Descriptor, ConstructorsAsRawBytes) {
  const struct {
    Descriptor descriptor;
    std::uint32_t mask;
    std::vector<int> slots;  // the first five
  } rows[] = {
      {Descriptor(), 0, {kMin, kMin, kMin, kMin, kMin}},
      {Descriptor(Onf(12)), 0x2, {kMin, 12, kMin, kMin, kMin}},
      {Descriptor(-7, Onf(9999)), 0x3, {-7, 9999, kMin, kMin, kMin}},
      {Descriptor(1, Onf(2), -3), 0x7, {1, 2, -3, kMin, kMin}},
      {Descriptor(1, Onf(2), -3, 4), 0x1B, {1, 2, kMin, -3, 4}},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(sizeof row.descriptor, 80u);
    for (std::size_t i = 0; i < 14; ++i) {
      const int rest = i == 6 ? 0 : kMin;
      EXPECT_EQ(SlotOf(row.descriptor, i), i < 5 ? row.slots[i] : rest) << i;
      EXPECT_EQ(row.descriptor.Has(Descriptor::CastIndex(i)), (row.mask >> i & 1) != 0) << i;
    }
    EXPECT_EQ(ReadAt<std::uint32_t>(row.descriptor, kMaskAt), row.mask);
    EXPECT_EQ(CacheOf(row.descriptor), (Cache{-1, -1, 0}));
  }
  EXPECT_EQ(Descriptor::CastIndex((std::size_t{1} << 32) + 5), Descriptor::ANALYSIS);
}

TEST(Descriptor, KeyChangesForgetThePositionAndNothingElse) {
  const Cache found{7, 5, 9}, forgotten{-1, -1, 9}, fresh{-1, -1, 0};
  const struct {
    const char* what;
    std::function<void(Descriptor&)> act;
    Cache expected;
  } rows[] = {
      {"SetInteger", [](Descriptor& d) { d.SetInteger(Descriptor::STATE, 1); }, forgotten},
      {"same value", [](Descriptor& d) { d.SetInteger(Descriptor::ITERATION, 3); }, forgotten},
      {"SetString", [](Descriptor& d) { d.SetString(Descriptor::LABEL, "x"); }, forgotten},
      {"Unset", [](Descriptor& d) { d.Unset(Descriptor::ITERATION); }, forgotten},
      {"Assign", [](Descriptor& d) { d.AssignSpecifiedValues(Descriptor(Onf(5))); }, forgotten},
      {"GetData", [](Descriptor& d) { FED_DataDescriptorPattern().GetData(d); }, forgotten},
      {"Init", [](Descriptor& d) { d.Init(); }, fresh},
      {"Duplicate", [](Descriptor& d) { d = d.Duplicate(); }, fresh},
      {"move", [](Descriptor& d) { d = Descriptor(std::move(d)); }, found},
      {"reading", [](const Descriptor& d) { d.CheckValidity(); }, found},
  };
  for (const auto& row : rows) {
    Descriptor descriptor(3, Onf(12));
    WriteCache(descriptor, found);
    const Descriptor copy = descriptor;
    row.act(descriptor);
    EXPECT_EQ(CacheOf(descriptor), row.expected) << row.what;
    EXPECT_EQ(CacheOf(copy), found);
  }
}

TEST(Descriptor, LeftoversStayInTheirSlots) {
  Descriptor descriptor(3, Onf(12));
  descriptor.Unset(Descriptor::ITERATION);
  const Descriptor duplicate = descriptor.Duplicate();
  EXPECT_EQ(SlotOf(duplicate, 0), 3);
  EXPECT_TRUE(duplicate.HasOnly(Descriptor::ONF));
  Descriptor target = MakeLabelled("top");
  target.SetInteger(Descriptor::ITERATION, 1);
  target.AssignSpecifiedValues(descriptor);
  EXPECT_EQ(target.ToString(), "ITERATION=1/ONF=12/LABEL=top");
  EXPECT_FALSE(target.HasOnly(Descriptor::ONF));
}

TEST(Descriptor, TextsShareOnePool) {
  const Descriptor first = MakeLabelled("zzz used first"), second = MakeLabelled("aaa used second");
  EXPECT_TRUE(first < second) << "order follows first use, not the alphabet";
  const Descriptor again = MakeLabelled("zzz used " + std::string("first"));
  EXPECT_TRUE(first == again);
  EXPECT_EQ(first.GetInteger(Descriptor::LABEL), SlotOf(again, 8));
  EXPECT_EQ(again.GetString(Descriptor::LABEL), "zzz used first");
}

TEST(Descriptor, GettersOfUnspecifiedFieldsFail) {
  Descriptor descriptor(3, Onf(12));
  descriptor.SetString(Descriptor::LABEL, "100%s%n");
  const std::string what = "The metadata element ";
  const std::string of = " is not specified by the descriptor ";
  ExpectFailure([&] { descriptor.GetInteger(Descriptor::SUB_LEVEL); }, "113201110810", kLocation,
                what + "SUB_LEVEL" + of + "ITERATION=3/ONF=12/LABEL=100%s%n");
  ExpectFailure([&] { descriptor.GetString(Descriptor::OBJECTIVE_ID); }, "152601091111", kLocation,
                what + "OBJECTIVE_ID" + of + "ITERATION=3/ONF=12/LABEL=100%s%n");
  descriptor.Init();
  descriptor.SetInteger(Descriptor::STATE, 4);
  descriptor.Unset(Descriptor::STATE);
  ExpectFailure([&] { descriptor.GetInteger(Descriptor::STATE); }, "113201110810", kLocation,
                what + "STATE" + of + "(empty)");
  const Descriptor wordy = MakeLabelled(std::string(2000, 'x'));
  ExpectFailure([&] { wordy.GetInteger(Descriptor::ONF); }, "113201110810", kLocation,
                (what + "ONF" + of + wordy.ToString()).substr(0, 1023));
}

TEST(DescriptorValidity, RangesOfAllFields) {
  const struct {
    const char* name;
    int type, lowest, highest;
  } rows[14] = {
      {"ITERATION", 0, -1, kMax}, {"ONF", 0, kMin, kMax},     {"STATE", 0, 0, kMax},
      {"LOADCASE", 0, 1, kMax},   {"SUBSTEP", 0, 0, kMax},    {"ANALYSIS", 0, kMin, kMax},
      {"INCREMENT", 0, 0, kMax},  {"OBJECTIVE_ID", 1, 0, 0},  {"LABEL", 1, 0, 0},
      {"LAYER", 0, 1, 3},         {"MICROPHONE", 0, 0, kMax}, {"ID_TYPE", 0, 0, 14},
      {"DIRECTION", 0, 0, 2},     {"SUB_LEVEL", 0, 0, 7},
  };
  for (std::size_t i = 0; i < 14; ++i) {
    const auto& [name, type, lowest, highest] = rows[i];
    const Descriptor::NameAndType& item = Descriptor::RD_NAME_TYPE_ITEMS[i];
    EXPECT_EQ(item.name, name);
    EXPECT_EQ(item.type, type) << name;
    EXPECT_EQ(item.lowest, lowest) << name;
    EXPECT_EQ(item.highest, highest) << name;
    if (i == Descriptor::ONF) continue;
    for (const std::int64_t value : {std::int64_t{lowest} - 1, std::int64_t{lowest},
                                     std::int64_t{highest}, std::int64_t{highest} + 1}) {
      if (value < kMin || value > kMax) continue;
      Descriptor descriptor;
      descriptor.SetInteger(Descriptor::CastIndex(i), static_cast<int>(value));
      const std::string number = std::to_string(value);
      if (type == 1 || (lowest <= value && value <= highest)) {
        EXPECT_NO_THROW(descriptor.CheckValidity()) << name << number;
      } else {
        ExpectFailure([&] { descriptor.CheckValidity(); }, "130613172801", kLocation,
                      std::string("The descriptor field ") + name +
                          " is specified to be a positive integer value but holds value " + number +
                          "\n  Complete descriptor: " + name + '=' + number);
      }
    }
  }
}

TEST(DescriptorValidity, ChecksRunInOrder) {
  Descriptor descriptor(-2, Onf(9999), -1);
  ExpectFailure([&] { descriptor.CheckValidity(); }, "130613173901", kLocation,
                "The descriptor specifies an invalid ONF block number 9999.\n  Complete "
                "descriptor: ITERATION=-2/ONF=9999/STATE=-1");
  // Then the field of the lowest index, and leftovers of unset fields not at all.
  descriptor.SetInteger(Descriptor::ONF, 2);
  for (const char* name : {"ITERATION", "STATE"}) {
    const FED_Failure failure = CatchFailure([&] { descriptor.CheckValidity(); });
    EXPECT_EQ(failure.GetMessageText().find(name), sizeof "The descriptor field");
    descriptor.Unset(name[0] == 'I' ? Descriptor::ITERATION : Descriptor::STATE);
  }
  EXPECT_NO_THROW(descriptor.CheckValidity());
  descriptor.Unset(Descriptor::ONF);
  ExpectFailure([&] { descriptor.CheckValidity(); }, "130613173101", kLocation,
                "The descriptor does not specify any field - empty descriptors are not valid");
}

TEST(Descriptor, TextForm) {
  EXPECT_EQ(Descriptor().ToString(), "(empty)");
  EXPECT_EQ(MakeLabelled("a/b").ToString(), "LABEL=a/b");
  EXPECT_EQ(MakeLabelled("").ToString(), "LABEL=");
  Descriptor descriptor(3, Onf(12));
  descriptor.SetString(Descriptor::LABEL, "50%d %");
  descriptor.SetString(Descriptor::OBJECTIVE_ID, std::string(3000, 'o'));
  descriptor.SetInteger(Descriptor::SUB_LEVEL, kMin);
  EXPECT_EQ(descriptor.ToString(), "ITERATION=3/ONF=12/OBJECTIVE_ID=" + std::string(3000, 'o') +
                                       "/LABEL=50%d %/SUB_LEVEL=-2147483648");
}

TEST(Descriptor, SetStringWithoutMemoryChangesNothing) {
  Descriptor descriptor(3, Onf(12));
  WriteCache(descriptor, {7, 5, 9});
  const auto attempt = [&] {
    descriptor.SetString(Descriptor::LABEL, "a text that the pool does not have yet, and long");
  };
  const auto check = [&] {
    EXPECT_EQ(descriptor.ToString(), "ITERATION=3/ONF=12");
    EXPECT_EQ(SlotOf(descriptor, 8), kMin);
    EXPECT_EQ(CacheOf(descriptor), (Cache{7, 5, 9}));
  };
  EXPECT_GT(ForEachFailingAllocation(attempt, check), 0u);
}

}  // namespace
