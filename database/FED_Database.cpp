#include "FED_Database.h"

#include "FedStatusCode.h"
#include "QeltaStringUtil.h"
#include "QeltaSysUtil.h"

namespace {

bool SpecifiesAnything(const FED_DataDescriptor& descriptor) {
  return !descriptor.EqualTo(FED_DataDescriptor());
}

}  // namespace

FED_Database::FED_Database() = default;

FED_Database::FED_Database(const FED_Database& other) = default;

FED_Database& FED_Database::operator=(const FED_Database& other) = default;

FED_Database::~FED_Database() = default;

FED_DataBlock& FED_Database::FetchDataBlock(const FED_DataDescriptor& descriptor, int properties,
                                            std::int64_t recordCount, const std::string& format) {
  if (HasBlock(descriptor)) return GetDataBlock(descriptor);
  return CreateDataBlock(descriptor, properties, recordCount, format);
}

FED_DataBlock& FED_Database::FetchDataBlock(const FED_DataDescriptor& descriptor,
                                            std::size_t recordCount) {
  if (HasBlock(descriptor)) return GetDataBlock(descriptor);
  return CreateDataBlock(descriptor, recordCount);
}

bool FED_Database::HasBlock(const FED_DataDescriptor& descriptor) const {
  return m_BlockSet.HasBlockInstance(descriptor);
}

const FED_DataBlock& FED_Database::GetDataBlock(const FED_DataDescriptor& descriptor) const {
  return m_BlockSet.GetDataBlockInstance(descriptor);
}

FED_DataBlock& FED_Database::GetDataBlock(const FED_DataDescriptor& descriptor) {
  return m_BlockSet.GetDataBlockInstance(descriptor);
}

std::vector<FED_DataBlock*> FED_Database::GetDataBlocks(const FED_DataDescriptorPattern& pattern) {
  return m_BlockSet.GetDataBlocksInstances(pattern);
}

void FED_Database::DeleteDataBlock(const FED_DataDescriptor& descriptor) {
  m_BlockSet.DeleteDataBlockInstance(descriptor);
}

void FED_Database::DeleteDataBlocks(const FED_DataDescriptorPattern& pattern) {
  m_BlockSet.DeleteDataBlocksInstances(pattern);
}

std::vector<FED_DataDescriptor> FED_Database::FindBlocks(
    const FED_DataDescriptorPattern& pattern) const {
  return m_BlockSet.FindBlocksInstances(pattern);
}

void FED_Database::InitDb(const FED_IdMapsPool& pool, FED_DatabaseDefs::AccessMode mode,
                          std::uint64_t cacheSize, const std::wstring& name) {
  OpenDb(mode, cacheSize, name, pool);
}

bool FED_Database::CreateDataBlockAlias(const FED_DataDescriptor& existing,
                                        FED_DataDescriptor& alias) {
  if (existing.EqualTo(alias) || !HasBlock(existing) || HasBlock(alias)) return false;
  if (!SpecifiesAnything(existing) || !SpecifiesAnything(alias)) return false;
  m_BlockSet.StoreDataBlockAlias(existing, alias);
  return true;
}

std::uint64_t FED_Database::GetCacheSize(std::uint64_t requested) {
  const std::string text = QeltaSysUtil::get_env_var("vtm_cache_size", "", true);
  int number = 0;
  if (!text.empty() && QeltaStringUtil::ToInt(text, number) == STATUS_OK && number > 0) {
    requested = static_cast<std::uint64_t>(number);
  }
  return (requested + 1023) & ~std::uint64_t{1023};
}

void FED_Database::SaveData() { m_BlockSet.SaveData(); }
