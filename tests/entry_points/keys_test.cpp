// Descriptors, patterns and lists in the caller's memory.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "FED_DataDescriptorList.h"
#include "FED_DataDescriptorList_F.h"
#include "FED_DataDescriptorPattern.h"
#include "FED_DataDescriptorPattern_F.h"
#include "FED_DataDescriptor_F.h"
#include "RawBytes.h"

namespace qelta::test {
namespace {

using Descriptor = FED_DataDescriptor;

constexpr std::int32_t kLabel = Descriptor::LABEL;

std::string TextOf(const std::function<void(char*, const std::int32_t*)>& call,
                   std::int32_t length = 24) {
  std::string buffer(24, '#');
  call(buffer.data(), &length);
  return buffer;
}

std::string LabelOf(Descriptor& descriptor, std::int32_t length = 24) {
  return TextOf([&](char* b, const auto* n) { Descriptor_GetString_F(&descriptor, &kLabel, b, n); },
                length);
}

TEST(DescriptorEntryPoints, TrimBlanksAndControlCharactersOnly) {
  const struct {
    const char* given;
    const char* stored;
  } rows[] = {
      {"word", "word"},
      {"  word \n", "word"},
      {" \t\n\v\f\r ", ""},
      {"\xC3\xA0 \xC2\xA0", "\xC3\xA0 \xC2\xA0"},
  };
  for (const auto& row : rows) {
    Descriptor descriptor;
    WriteCache(descriptor, {7, 8, 9});
    Descriptor_SetString_F(&descriptor, &kLabel, row.given);
    EXPECT_TRUE(descriptor.HasOnly(Descriptor::LABEL));
    EXPECT_EQ(descriptor.GetString(Descriptor::LABEL), row.stored);
    EXPECT_EQ(CacheOf(descriptor), (Cache{-1, -1, 9}));
    std::string fitted = row.stored;
    fitted.resize(24, ' ');
    EXPECT_EQ(LabelOf(descriptor), fitted);
  }
}

TEST(DescriptorEntryPoints, FitTextsToTheBuffer) {
  Descriptor descriptor;
  const auto write = [&](char* b, const auto* n) { Descriptor_ToString_F(&descriptor, b, n); };
  EXPECT_EQ(TextOf(write), "(empty)                 ");
  descriptor.SetInteger(Descriptor::ITERATION, 3);
  descriptor.SetString(Descriptor::LABEL, "top");
  EXPECT_EQ(TextOf(write), "ITERATION=3/LABEL=top   ");
  EXPECT_EQ(TextOf(write, 12), "ITERATION=3/############");
  for (const std::int32_t length : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(TextOf(write, length), std::string(24, '#'));
    EXPECT_EQ(LabelOf(descriptor, length), std::string(24, '#'));
  }
  EXPECT_EQ(LabelOf(descriptor, 2), "to######################");
}

TEST(PatternEntryPoints, TakeExactlyTheGivenCharacters) {
  const struct {
    std::int32_t length;
    std::string stored;
  } rows[] = {{4, "ab  "}, {2, "ab"}, {6, std::string("ab  \0c", 6)},
              {0, ""},     {-1, ""},  {std::numeric_limits<std::int32_t>::min(), ""}};
  for (const auto& row : rows) {
    FED_DataDescriptorPattern pattern, expected;
    DataDescriptorPattern_SetMatchExact_Str_F(&pattern, &kLabel, "ab  \0cd", &row.length);
    expected.SetMatchExact(Descriptor::LABEL, row.stored);
    EXPECT_TRUE(pattern == expected) << row.length;
  }
}

TEST(DescriptorEntryPoints, EndTheProcessOnAnUnspecifiedField) {
  Descriptor descriptor;
  descriptor.SetInteger(Descriptor::STATE, 1);
  EXPECT_EXIT(LabelOf(descriptor), testing::ExitedWithCode(1),
              testing::MatchesRegex(
                  "failure FED_DataDescriptor_F\\.cpp:.+ "
                  "\\|%P\\|QeltaDataDescriptor\\|FED_DataDescriptor_F: "
                  "Failure in method Descriptor_GetString_F "
                  "The metadata element LABEL is not specified by the descriptor STATE=1\n"
                  "terminating: condition 'status != STATUS_OK' in Descriptor_GetString_F "
                  "\\(FED_DataDescriptor_F\\.cpp:.+\\)\n"));
}

TEST(ListEntryPoints, EndTheProcessNamingAnAbsurdSize) {
  for (const std::uint64_t size : {std::uint64_t{1} << 58, ~std::uint64_t{0}}) {
    FED_DataDescriptorList list(2);
    EXPECT_EXIT(DataDescriptorList_Resize_F(&list, &size), testing::ExitedWithCode(1),
                testing::MatchesRegex(
                    "failure FED_DataDescriptorList_F\\.cpp:.+ "
                    "\\|%P\\|QeltaDataDescriptor\\|FED_DataDescriptorList: "
                    "Failure in method DataDescriptorList_Resize_F std::bad_alloc\n"
                    "terminating: condition 'status != STATUS_OK' in DataDescriptorList_Resize_F "
                    "\\(FED_DataDescriptorList_F\\.cpp:.+\\): "
                    "Failed to resize a data descriptor list to size " +
                    std::to_string(size) + "\n"));
  }
}

}  // namespace
}  // namespace qelta::test
