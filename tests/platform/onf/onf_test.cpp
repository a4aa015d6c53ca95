#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "FED_OnfInfoPool.h"
#include "FailureMatcher.h"
#include "OnfFormatStringTool.h"

namespace {

using namespace qelta::test;
using testing::Each;
using testing::ElementsAreArray;
using testing::HasSubstr;

const std::set<int> kNamedIdTypes = {2, 3, 5, 6, 8, 9, 10, 11, 12};

TEST(OnfFormat, GoodFormats) {
  const struct {
    const char* format;
    std::vector<int> types;
    int size, dim;
  } rows[] = {
      {"I", {}, 0, 0},
      {"S|||bb", {}, 0, 0},
      {"Id", {2}, 8, 1},
      {"S|b|d|", {2}, 8, 1},
      {"I|V", {5}, 24, 3},
      {"I|T", {6}, 48, 6},
      {"I|t", {11}, 8, 0},
      {"I|f", {3}, 4, 0},
      {"I|dd", {2, 2}, 16, 0},
      {"SIS", {1, 4}, 8, 0},
      {"I|IdVTS", {1, 2, 5, 6, 4}, 88, 0},
      {"I|IdfSV|TOLDit", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 116, 0},
  };
  for (const auto& row : rows) {
    int size = -1;
    std::vector<BlockDataType> types(3, BLOCK_DATA_DOUBLE_LIST);
    const int count = OnfFormatStringTool::GetFormatSizeInformation(row.format, size, types);
    EXPECT_THAT(types, ElementsAreArray(row.types)) << row.format;
    EXPECT_EQ(count, static_cast<int>(row.types.size())) << row.format;
    EXPECT_EQ(size, row.size) << row.format;
    EXPECT_EQ(OnfFormatStringTool::DetermineFieldDim(types), row.dim) << row.format;
  }
}

TEST(OnfFormat, BadFormatsFailByNameAndChangeNothing) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "''"},      {"x|d", "'x|d'"}, {"|d", "'|d'"}, {"d", "'d'"},   {"bI|d", "'bI|d'"},
      {"I|dx", "'x'"}, {"I|d ", "' '"},  {"I|v", "'v'"}, {"I|0", "'0'"}, {"I|%s%n", "I|%s%n"}};
  for (const auto& [format, named] : rows) {
    int size = 17;
    std::vector<BlockDataType> types{BLOCK_DATA_TENSOR};
    const FED_Failure failure = CatchFailure(
        [&, text = format] { OnfFormatStringTool::GetFormatSizeInformation(text, size, types); });
    EXPECT_THAT(failure.GetMessageText(), HasSubstr(named));
    EXPECT_EQ(size, 17) << format;
    EXPECT_THAT(types, testing::ElementsAre(BLOCK_DATA_TENSOR)) << format;
  }
}

// Against a reading of the format apart from the library's own.
void ExpectLayoutFitsFormat(const FED_OnfMetaData& info) {
  const std::map<char, std::pair<int, std::uint64_t>> kinds = {
      {'I', {1, 4}}, {'d', {2, 8}}, {'f', {3, 4}}, {'S', {4, 4}},  {'V', {5, 24}}, {'T', {6, 48}},
      {'O', {7, 4}}, {'L', {8, 4}}, {'D', {9, 4}}, {'i', {10, 4}}, {'t', {11, 8}}};
  std::uint64_t size = 0;
  std::vector<int> types;
  for (const char character : info.format.substr(1)) {
    if (character == '|' || character == 'b') continue;
    types.push_back(kinds.at(character).first);
    size += kinds.at(character).second;
  }
  EXPECT_THAT(info.dataTypes, ElementsAreArray(types));
  EXPECT_EQ(info.recordSize, size);
  EXPECT_EQ(info.idTypes.size(), types.size() + 1);
  EXPECT_EQ(info.writeLookup.size(), types.size() + 1);
  EXPECT_EQ(info.fieldNames.size(), types.size());
}

TEST(OnfCatalogue, EveryKindAgreesWithItsFormatAndIsInOneCategory) {
  std::set<std::string> names;
  std::vector<FED_OnfId> all;
  for (int number = 1; number <= 6; ++number) {
    const auto category = static_cast<FED_OnfCategoryId>(number);
    for (const FED_OnfId onf : FED_OnfInfoPool::GetOnfListForCategory(category)) {
      SCOPED_TRACE(onf);
      EXPECT_TRUE(all.empty() || all.back() < onf);
      all.push_back(onf);
      const FED_OnfMetaData& info = FED_OnfInfoPool::GetOnfInfo(onf);
      EXPECT_TRUE(FED_OnfInfoPool::ExistsOnfBlock(onf));
      EXPECT_EQ(info.onfId, onf);
      EXPECT_EQ(info.category, category);
      EXPECT_TRUE(names.insert(info.name).second) << info.name;
      ExpectLayoutFitsFormat(info);
      // Records of a named id type are known by name; only fields that hold numbers, names or
      // lists of them can refer.
      EXPECT_EQ(info.format[0] == 'S', kNamedIdTypes.count(info.idTypes[0]) != 0);
      for (std::size_t i = 1; i < info.idTypes.size(); ++i) {
        const std::set<int> referring = {1, 4, 7, 8, 10};
        EXPECT_TRUE(info.idTypes[i] == 15 || referring.count(info.dataTypes[i - 1]) != 0) << i;
      }
    }
  }
  EXPECT_EQ(all, FED_OnfInfoPool::GetAllOnfIds());
  for (const int onf : {2, 5, 12}) EXPECT_TRUE(FED_OnfInfoPool::ExistsOnfBlock(onf));
}

TEST(OnfCatalogue, UnknownNumbersAndCategoriesFailByName) {
  for (const int onf : {9999, 0, -1, 600, -2147483647 - 1}) {
    EXPECT_FALSE(FED_OnfInfoPool::ExistsOnfBlock(onf)) << onf;
    const auto ask = [&] { FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf)); };
    EXPECT_THAT(CatchFailure(ask).GetMessageText(), HasSubstr(' ' + std::to_string(onf) + ';'));
  }
  for (const int category : {0, 7, -1}) {
    const auto ask = [&] {
      FED_OnfInfoPool::GetOnfListForCategory(static_cast<FED_OnfCategoryId>(category));
    };
    EXPECT_THAT(CatchFailure(ask).GetMessageText(),
                HasSubstr(' ' + std::to_string(category) + ';'));
  }
}

TEST(OnfCatalogue, CustomFormatsStayForEveryThreadAndHaveNoIds) {
  const FED_OnfMetaData& info = FED_OnfInfoPool::FetchOnfInfo("S|dSi");
  EXPECT_EQ(info.format, "S|dSi");
  ExpectLayoutFitsFormat(info);
  EXPECT_THAT(info.idTypes, Each(15));
  EXPECT_THAT(info.writeLookup, Each(false));
  std::vector<std::set<const FED_OnfMetaData*>> seen(4);
  std::vector<std::thread> threads;
  for (auto& mine : seen) {
    threads.emplace_back([&mine] {
      for (std::size_t i = 0; i < 500; ++i) {
        mine.insert(&FED_OnfInfoPool::FetchOnfInfo("I|" + std::string(i % 50, 'f')));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(seen[0].size(), 50u);
  EXPECT_THAT(seen, Each(seen[0]));
  EXPECT_EQ(&FED_OnfInfoPool::FetchOnfInfo("S|dSi"), &info);
  EXPECT_NE(&FED_OnfInfoPool::FetchOnfInfo("I|dSi"), &info);
  EXPECT_THAT(CatchFailure([] { FED_OnfInfoPool::FetchOnfInfo("I|q"); }).GetMessageText(),
              HasSubstr("'q'"));
}

TEST(IdTypeInfo, SecondWordTellsNamedTypes) {
  for (int type = 0; type < 16; ++type) {
    std::int32_t words[2];
    std::memcpy(words, &FED_ID_TYPE_INFO[type], sizeof words);
    EXPECT_EQ(words[0], type);
    EXPECT_EQ(words[1], static_cast<int>(kNamedIdTypes.count(type))) << type;
  }
}

}  // namespace
