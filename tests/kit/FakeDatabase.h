#pragma once

#include <string>
#include <vector>

#include "FED_Database.h"
#include "FakeBlock.h"

namespace qelta::test {

/// A database without storage whose blocks are fakes; it writes down what is asked of it and opens
/// up what is protected.
class FakeDatabase : public FED_Database {
 public:
  using FED_Database::GetCacheSize;
  using FED_Database::m_BlockSet;
  using FED_Database::SaveData;

  struct Opening {
    FED_DatabaseDefs::AccessMode mode;
    std::uint64_t cacheSize;
    std::wstring name;
    const FED_IdMapsPool* pool;
  };

  void OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t cacheSize, const std::wstring& name,
              const FED_IdMapsPool& pool) override {
    openings.push_back({mode, cacheSize, name, &pool});
  }
  void CloseDb() override {}
  bool IsInitialized() const override { return !openings.empty(); }

  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                 std::int64_t recordCount, const std::string& format) override {
    created.push_back(format + ' ' + std::to_string(properties) + ' ' +
                      std::to_string(recordCount));
    return Register(descriptor, new FakeBlock(descriptor.Duplicate(), format));
  }
  FED_DataBlock& CreateDataBlock(const FED_DataDescriptor& descriptor,
                                 std::size_t recordCount) override {
    created.push_back(std::to_string(recordCount));
    return Register(descriptor, new FakeBlock(descriptor.Duplicate(), blockCalls));
  }

  const FED_IdMapsPool& GetIdMapsPool() const override { return m_Pool; }
  FED_IdMapsPool& GetIdMapsPool() override { return m_Pool; }

  std::vector<Opening> openings;
  std::vector<std::string> created;
  FakeBlock::Calls* blockCalls = nullptr;

 protected:
  FED_DataBlock& Register(const FED_DataDescriptor& descriptor, FED_DataBlock* block) {
    m_BlockSet.StoreDataBlockInstance(descriptor, block);
    return *block;
  }

 private:
  FED_IdMapsPool m_Pool;
};

}  // namespace qelta::test
