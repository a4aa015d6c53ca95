#include "StorageContract.h"

#include <algorithm>
#include <random>

#include "FED_LogMacros.h"

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

void ExpectFailure(const std::function<void()>& action, std::initializer_list<std::string> parts) {
  const std::string text = CatchFailure(action).GetMessageText();
  for (const std::string& part : parts) EXPECT_THAT(text, testing::HasSubstr(part));
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

StorageContract::StorageContract()
    : m_Cursors(FED_ConstDataRecord::s_InstanceCounter),
      m_Name(GetParam().freshName()),
      m_Database(Open(FED_DatabaseDefs::CREATE)) {
  FED_LogMacros::SetSink(
      [](void* log, FED_LogMacros::LogMsgType, const char*, int, const char*, const char* text) {
        static_cast<std::vector<std::string>*>(log)->push_back(text);
      },
      &m_Log);
}

StorageContract::~StorageContract() {
  FED_LogMacros::SetSink(nullptr, nullptr);
  EXPECT_EQ(FED_ConstDataRecord::s_InstanceCounter, m_Cursors) << "cursors were left behind";
}

std::unique_ptr<FED_Database> StorageContract::Open(FED_DatabaseDefs::AccessMode mode,
                                                    const FED_IdMapsPool& pool) {
  auto database = GetParam().make();
  database->InitDb(pool, mode, 0, m_Name);
  return database;
}

void StorageContract::Reopen(FED_DatabaseDefs::AccessMode mode, const FED_IdMapsPool& pool) {
  Db().CloseDb();
  m_Database = Open(mode, pool);
}

Keys StorageContract::MakeWorld() {
  Keys keys = {{1, ONF_DISPLACEMENT}, {1, ONF_ELEMENT_TOPOLOGY}, {2, ONF_NODE_GROUP},
               CustomKey(1),          LabelKey("spread"),        LabelKey("empty"),
               LabelKey("first"),     LabelKey("second"),        LabelKey("third")};
  for (std::size_t i = 0; i < 3; ++i) Fill(Db().CreateDataBlock(keys[i], 4), {0, 2, 1024}, 5);
  Fill(Make(keys[3], "S|SODLfitV", 77), {3, 4, 63, 64}, 6);
  Fill(Make(keys[4], "I|dI", -2), {70000, 5}, 7);
  Make(keys[5], "I|S", 1);
  EXPECT_TRUE(Db().CreateDataBlockAlias(keys[0], keys[6]));
  EXPECT_TRUE(Db().CreateDataBlockAlias(keys[6], keys[7]));
  EXPECT_TRUE(Db().CreateDataBlockAlias(keys[2], keys[8]));
  return keys;
}

std::vector<std::string> StorageContract::DescribeAll(const Keys& keys) {
  std::vector<std::string> texts;
  for (const FED_DataDescriptor& key : keys) {
    texts.push_back(Has(key) ? Describe(Get(key)) : "none");
  }
  return texts;
}

std::vector<StorageContract::WayToSave> StorageContract::WaysToSave() {
  const auto flush = [this] {
    for (const FED_DataDescriptor& key : All()) {
      if (!Has(key)) continue;
      Get(key).FlushDestroy();
      Get(key).FlushToDisk();
    }
  };
  std::vector<WayToSave> ways = {
      {"flush", true, flush},
      {"Save", true, [this] { Save(); }},
      {"FED_Database::SaveData", true, [this] { CloseBlocks(); }},
      {"SaveData of the module", true, [this] { GetParam().closeBlocksOfModule(Db()); }},
      {"SaveData twice, Save", true, [this] { CloseBlocks(), CloseBlocks(), Save(); }}};
  if (GetParam().keepsContent) {
    ways.push_back({"Save, reopen", false, [this] { Save(), Reopen(); }});
    ways.push_back({"SaveData, Save, reopen", false, [this] { CloseBlocks(), Save(), Reopen(); }});
  }
  return ways;
}

INSTANTIATE_TEST_SUITE_P(Modules, StorageContract, testing::ValuesIn(StorageModules()),
                         testing::PrintToStringParamName());

}  // namespace qelta::test
