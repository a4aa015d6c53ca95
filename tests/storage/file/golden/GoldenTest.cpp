// Databases that earlier versions wrote, value by value; make_golden.cpp wrote them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TemporaryDirectory.h"
#include "damage/Saves.h"

namespace qelta::test {
namespace {

using testing::ElementsAre;

class Golden : public testing::TestWithParam<const char*> {
 protected:
  std::unique_ptr<FED_FileDatabase> Copy(const std::string& name) {
    CopyFiles(std::string(QELTA_GOLDEN_DATABASES) + '/' + GetParam() + '/' + name, path);
    return Open(path);
  }

  TemporaryDirectory directory;
  const std::string path = directory / "db";
};

INSTANTIATE_TEST_SUITE_P(Versions, Golden, testing::Values("version-1", "version-1-windows"));

TEST_P(Golden, ABlockOfAllTypesIsRead) {
  const auto db = Copy("full");
  const FED_DataBlock& block = db->GetDataBlock(CustomKey(-1));
  EXPECT_EQ(block.GetFormat(), "S|SODLfitVT");
  EXPECT_EQ(block.GetProperties(), -5);
  std::vector<std::uint64_t> indices;
  block.GetRecordIndices(indices);
  EXPECT_THAT(indices, ElementsAre(1, 65));
  for (const std::uint64_t index : indices) {
    const Cursor record(block);
    block.GetRecord(index, *record);
    EXPECT_EQ(record->GetString(1), "text");
    int integers[3] = {};
    double doubles[6] = {};
    EXPECT_EQ(record->GetIntList(2, integers), 2u);
    EXPECT_THAT(integers, ElementsAre(-2, 9, 0));
    EXPECT_EQ(record->GetDoubleList(3, doubles), 2u);
    EXPECT_THAT(doubles, ElementsAre(0.25, -1, 0, 0, 0, 0));
    EXPECT_EQ(record->GetIntList(4, integers), 3u);
    EXPECT_THAT(integers, ElementsAre(3, 1, 2));
    EXPECT_EQ(record->GetFloat(5), 1.5f);
    EXPECT_EQ(record->GetInteger(6), -7);
    EXPECT_EQ(record->GetDouble(7), 0.125);
    record->GetTensor(9, doubles);
    EXPECT_THAT(doubles, ElementsAre(2, 2, 3, 4, 5, 6));
    record->GetVector(8, doubles);
    EXPECT_THAT(doubles, ElementsAre(2, 2, 3, 4, 5, 6));
  }
}

TEST_P(Golden, KeysNamesAndIdsAreRead) {
  const auto db = Copy("full");
  EXPECT_EQ(db->FindBlocks(FED_DataDescriptorPattern()).size(), 3u);
  FED_DataDescriptor alias;
  alias.SetString(FED_DataDescriptor::OBJECTIVE_ID, "latest");
  const FED_DataBlock& block = db->GetDataBlock(alias);
  EXPECT_EQ(block.GetDescriptor().ToString(), "ITERATION=7/ONF=101/LABEL=t\u00f6p");
  EXPECT_THAT(block.GetFieldData(), ElementsAre(1, 2, 3, -0.5, 1e300, 0));
  const FED_IdMap& nodes = db->GetIdMapsPool().GetMap(ID_TYPE_NODE);
  const FED_IdMap& materials = db->GetIdMapsPool().GetMap(ID_TYPE_MATERIAL);
  EXPECT_EQ(nodes.GetMaxIndex(), 2);
  EXPECT_EQ(nodes.IndexOfId(11), 1);
  EXPECT_EQ(nodes.IndexOfId(99), 2);
  EXPECT_EQ(materials.GetMaxIndex(), 1);
  EXPECT_EQ(materials.IndexOfName("air"), 1);
}

TEST_P(Golden, DatabasesGoOn) {
  EXPECT_THAT(Copy("full")->Verify().problems, testing::IsEmpty());
  EXPECT_EQ(Copy("empty")->FindBlocks(FED_DataDescriptorPattern()).size(), 0u);
  SaveUpTo(3, path);
  EXPECT_EQ(FindDifference(path, 3), "");
}

}  // namespace
}  // namespace qelta::test
