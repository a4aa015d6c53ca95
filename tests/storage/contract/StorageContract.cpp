#include "StorageContract.h"

#include "FED_LogMacros.h"

namespace qelta::test {

void ExpectFailure(const std::function<void()>& action, std::initializer_list<std::string> parts) {
  const std::string text = CatchFailure(action).GetMessageText();
  for (const std::string& part : parts) EXPECT_THAT(text, testing::HasSubstr(part));
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
