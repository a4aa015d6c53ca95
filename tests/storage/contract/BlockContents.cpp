#include "BlockContents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>

#include "FED_DoubleArray.h"
#include "FED_IntArray.h"

namespace qelta::test {
namespace {

// Opens what only derived blocks see; never instantiated.
class RecordBytes : public FED_DataBlock {
 public:
  using FED_DataBlock::RecordBuffer;
};

template <class T>
void Append(std::string& text, const T* values, std::size_t count) {
  text += '{' + std::to_string(count) + ':';
  text.append(reinterpret_cast<const char*>(values), count * sizeof(T));
}

void AppendContent(std::string& text, const FED_ConstDataRecord& record, std::size_t i) {
  const BlockDataType type = record.GetDataType(i);
  FED_IntArray integers;
  FED_DoubleArray doubles;
  if (type == BLOCK_DATA_STRING) {
    Append(text, record.GetString(i).data(), record.GetString(i).size());
  } else if (type == BLOCK_DATA_INT_SET || type == BLOCK_DATA_INT_LIST) {
    record.GetIntList(i, integers);
    Append(text, integers.data, integers.count);
  } else if (type == BLOCK_DATA_DOUBLE_LIST) {
    record.GetDoubleList(i, doubles);
    Append(text, doubles.data, doubles.count);
  }
}

}  // namespace

Bytes ReadRecord(const FED_DataBlock& block, std::size_t index) {
  const Cursor cursor(block);
  block.GetRecord(index, *cursor);
  const unsigned char* const bytes = RecordBytes::RecordBuffer(*cursor);
  return Bytes(bytes, bytes + block.GetRecordSize());
}

void WriteRecord(FED_DataBlock& block, std::size_t index, const Bytes& bytes) {
  const Cursor cursor(block);
  std::copy(bytes.begin(), bytes.end(), RecordBytes::RecordBuffer(*cursor));
  block.SetRecord(index, *cursor);
}

Bytes SomeBytes(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(count);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
  return bytes;
}

void Fill(FED_DataBlock& block, std::initializer_list<std::size_t> indices, unsigned seed) {
  const Cursor cursor(block);
  for (const std::size_t index : indices) {
    const Bytes bytes = SomeBytes(block.GetRecordSize(), ++seed);
    std::copy(bytes.begin(), bytes.end(), RecordBytes::RecordBuffer(*cursor));
    for (std::size_t i = 1; i <= cursor->Size(); ++i) {
      const BlockDataType type = cursor->GetDataType(i);
      const bool isIntList = type == BLOCK_DATA_INT_SET || type == BLOCK_DATA_INT_LIST;
      const Bytes content = SomeBytes(seed % 20, seed);
      if (type == BLOCK_DATA_STRING) cursor->SetString(i, {content.begin(), content.end()});
      if (isIntList) cursor->SetIntList(i, std::vector<int>(content.begin(), content.end()));
      if (type == BLOCK_DATA_DOUBLE_LIST) cursor->SetDoubleList(i, {0.5, 1. / seed});
    }
    block.SetRecord(index, *cursor);
  }
}

std::string Describe(const FED_DataBlock& block) {
  std::string text = block.GetDescriptor().ToString() + ' ' + block.GetFormat() + ' ' +
                     std::to_string(block.GetProperties());
  std::vector<std::uint64_t> indices;
  block.GetRecordIndices(indices);
  Append(text, indices.data(), indices.size());
  const Cursor cursor(block);
  for (const std::uint64_t index : indices) {
    block.GetRecord(static_cast<std::size_t>(index), *cursor);
    Append(text, RecordBytes::RecordBuffer(*cursor), block.GetRecordSize());
    for (std::size_t i = 1; i <= cursor->Size(); ++i) AppendContent(text, *cursor, i);
  }
  return text;
}

FED_DataDescriptor CustomKey(int iteration) {
  FED_DataDescriptor key;
  key.SetInteger(FED_DataDescriptor::ITERATION, iteration);
  return key;
}

FED_DataDescriptor LabelKey(const std::string& label) {
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, label);
  return key;
}

Keys MakeWorld(FED_Database& database) {
  Keys keys = {{1, ONF_DISPLACEMENT}, {1, ONF_ELEMENT_TOPOLOGY}, {2, ONF_NODE_GROUP},
               CustomKey(1),          LabelKey("spread"),        LabelKey("empty"),
               LabelKey("first"),     LabelKey("second"),        LabelKey("third")};
  for (std::size_t i = 0; i < 3; ++i) Fill(database.CreateDataBlock(keys[i], 4), {0, 2, 1024}, 5);
  Fill(database.CreateDataBlock(keys[3], 77, 0, "S|SODLfitV"), {3, 4, 63, 64}, 6);
  Fill(database.CreateDataBlock(keys[4], -2, 0, "I|dI"), {70000, 5}, 7);
  database.CreateDataBlock(keys[5], 1, 0, "I|S");
  EXPECT_TRUE(database.CreateDataBlockAlias(keys[0], keys[6]));
  EXPECT_TRUE(database.CreateDataBlockAlias(keys[6], keys[7]));
  EXPECT_TRUE(database.CreateDataBlockAlias(keys[2], keys[8]));
  return keys;
}

std::vector<std::string> DescribeAll(FED_Database& database, const Keys& keys) {
  std::vector<std::string> texts;
  for (const FED_DataDescriptor& key : keys) {
    const FED_DataDescriptor fresh = key.Duplicate();  // without a remembered position
    texts.push_back(database.HasBlock(fresh) ? Describe(database.GetDataBlock(fresh)) : "none");
  }
  return texts;
}

}  // namespace qelta::test
