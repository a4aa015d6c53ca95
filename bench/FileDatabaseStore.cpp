#include "FileDatabaseStore.h"

#include <FED_FileDatabase.h>
#include <FED_RecordRuns.h>

namespace qelta::bench {
namespace {

// An integer and two tensors.
constexpr const char* kRecordFormat = "IITT";

FED_DataDescriptor DescriptorOf(const BlockKey& key) {
  FED_DataDescriptor descriptor(key.iteration, static_cast<FED_OnfId>(key.onf));
  descriptor.SetInteger(FED_DataDescriptor::LOADCASE, key.loadcase);
  return descriptor;
}

FED_DataDescriptor TableDescriptor() {
  FED_DataDescriptor descriptor;
  descriptor.SetString(FED_DataDescriptor::LABEL, "records");
  return descriptor;
}

FED_DatabaseDefs::AccessMode AccessOf(BlockStore::Mode mode) {
  if (mode == BlockStore::Mode::Read) return FED_DatabaseDefs::READ_ONLY;
  return mode == BlockStore::Mode::Create ? FED_DatabaseDefs::CREATE : FED_DatabaseDefs::READ_WRITE;
}

void Write(FED_DataBlock& block, const void* bytes, std::size_t size) {
  dynamic_cast<FED_RecordRuns&>(block).WriteRun(0, size / block.GetRecordSize(), bytes);
}

class FileDatabaseStore : public BlockStore {
 public:
  FileDatabaseStore(const std::filesystem::path& path, Mode mode) {
    m_Database.InitDb(FED_IdMapsPool(), AccessOf(mode), 0, path.wstring());
  }

  void Add(const BlockKey& key, const void* bytes, std::size_t size) override {
    Write(m_Database.CreateDataBlock(DescriptorOf(key), 0), bytes, size);
  }
  void Replace(const BlockKey& key, const void* bytes, std::size_t size) override {
    Write(m_Database.GetDataBlock(DescriptorOf(key)), bytes, size);
  }
  void Commit() override { m_Database.Save(); }

  std::uint64_t List() override {
    std::uint64_t sum = 0;
    for (const FED_DataDescriptor& key : m_Database.FindBlocks(FED_DataDescriptorPattern())) {
      sum += static_cast<std::uint64_t>(key.GetInteger(FED_DataDescriptor::ITERATION));
    }
    return sum;
  }
  void Read(const BlockKey& key, void* bytes, std::size_t size) override {
    const FED_DataBlock& block = m_Database.GetDataBlock(DescriptorOf(key));
    dynamic_cast<const FED_RecordRuns&>(block).ReadRun(0, size / block.GetRecordSize(), bytes);
  }

  void AddTable(const void* records, std::size_t count) override {
    Write(m_Database.CreateDataBlock(TableDescriptor(), 0, 0, kRecordFormat), records,
          count * kRecordBytes);
  }
  void ReadRecord(std::size_t index, void* record) override {
    if (m_Table == nullptr) {
      m_Table = &dynamic_cast<FED_RecordRuns&>(m_Database.GetDataBlock(TableDescriptor()));
    }
    m_Table->ReadRun(index, 1, record);
  }

 private:
  FED_FileDatabase m_Database;
  FED_RecordRuns* m_Table = nullptr;
};

}  // namespace

std::unique_ptr<BlockStore> OpenFileDatabase(const std::filesystem::path& path,
                                             BlockStore::Mode mode) {
  return std::make_unique<FileDatabaseStore>(path, mode);
}

}  // namespace qelta::bench
