// What a new block is, and what creates none.

#include <limits>

#include "StorageContract.h"

namespace qelta::test {
namespace {

void ExpectEmpty(const FED_DataBlock& block) {
  std::vector<std::uint64_t> indices = {1, 2};
  block.GetRecordIndices(indices);
  EXPECT_TRUE(indices.empty());
  EXPECT_TRUE(block.GetRecordIndices().Empty());
  EXPECT_EQ(block.GetMaxIndex(), -1);
  EXPECT_EQ(block.GetNumRecords(), 0u);
  EXPECT_EQ(block.Begin(), block.End());
  EXPECT_TRUE(block.GetFieldData().empty());
}

TEST_P(StorageContract, ABlockIsWhatItWasCreatedAs) {
  const FED_DataBlock& custom = Make(CustomKey(3), "S|bId|T", -77);
  EXPECT_TRUE(custom.GetDescriptor().EqualTo(CustomKey(3)));
  EXPECT_EQ(custom.GetFormat(), "S|bId|T");
  EXPECT_EQ(custom.GetProperties(), -77);
  EXPECT_EQ(custom.GetRecordSize(), 60u);
  EXPECT_EQ(custom.GetPrimaryIdType(), ID_TYPE_RECORD_INDEX);
  const FED_DataDescriptor key(1, ONF_NODE_COORDINATES);
  const FED_DataBlock& catalogued = Db().CreateDataBlock(key, 10);
  EXPECT_TRUE(catalogued.GetDescriptor().EqualTo(key));
  EXPECT_EQ(catalogued.GetProperties(), 0);
  EXPECT_EQ(catalogued.GetFieldDim(), FED_BlockDataType::DIM_VECTOR);
  EXPECT_EQ(catalogued.GetPrimaryIdType(), ID_TYPE_NODE);
}

TEST_P(StorageContract, TheRecordCountIsAHint) {
  using Limits = std::numeric_limits<std::int64_t>;
  int iteration = 0;
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{1000}, std::int64_t{-1},
                                   Limits::min(), std::int64_t{1} << 33, Limits::max()}) {
    SCOPED_TRACE(count);
    const auto size = static_cast<std::size_t>(count);
    const FED_DataDescriptor key(++iteration, ONF_TEMPERATURE);
    for (FED_DataBlock* const block : {&Db().CreateDataBlock(CustomKey(iteration), 0, count, "I|d"),
                                       &Db().CreateDataBlock(key, size)}) {
      ExpectEmpty(*block);
      block->Reserve(size);
      ExpectEmpty(*block);
      block->SetScalar(2, 4.5);
      EXPECT_EQ(block->GetScalar(2), 4.5);
      EXPECT_EQ(block->GetMaxIndex(), 2);
    }
  }
}

TEST_P(StorageContract, WhatIsNotCreatedLeavesNothingBehind) {
  const FED_DataDescriptor custom = CustomKey(1), displacement(1, ONF_DISPLACEMENT);
  FED_DataDescriptor badLayer = CustomKey(1);
  badLayer.SetInteger(FED_DataDescriptor::LAYER, 4);
  const struct {
    const char* what;
    FED_DataDescriptor key;
    const char* format;  // null: by kind
  } rows[] = {{"layer out of range", badLayer, "I|d"},
              {"nothing specified", {}, "I|d"},
              {"nothing specified, by kind", {}, nullptr},
              {"not in the catalogue", {1, static_cast<FED_OnfId>(9999)}, nullptr},
              {"custom key without a format", custom, nullptr},
              {"catalogued kind with a format", displacement, "I|V"},
              {"no format", custom, ""},
              {"no record character", custom, "d|d"},
              {"no such field", custom, "I|dx"}};
  for (const auto& row : rows) {
    const auto create = [&] {
      row.format != nullptr ? Make(row.key, row.format) : Db().CreateDataBlock(row.key, 0);
    };
    EXPECT_THROW(create(), FED_Failure) << row.what;
    EXPECT_TRUE(All().empty()) << row.what;
  }
  ExpectEmpty(Make(custom, "I|d"));
  ExpectEmpty(Db().CreateDataBlock(displacement, 0));
}

}  // namespace
}  // namespace qelta::test
