#include "FED_MemoryDatabase.h"

#include "FED_MemoryDataBlock.h"
#include "MemoryStore.h"

FED_MemoryDatabase::FED_MemoryDatabase() = default;

FED_MemoryDatabase::~FED_MemoryDatabase() { m_BlockSet.Clear(); }

FED_MemoryDatabase::FED_MemoryDatabase(const FED_MemoryDatabase& other)
    : FED_StorageDatabase(other), m_Store(other.m_Store) {
  ExpectForeignBlocks();
}

FED_MemoryDatabase& FED_MemoryDatabase::operator=(const FED_MemoryDatabase& other) {
  if (this == &other) return *this;
  FED_StorageDatabase::operator=(other);
  m_Store = other.m_Store;
  ExpectForeignBlocks();
  return *this;
}

// From now on the store may hold blocks that this database's block set has not seen.
void FED_MemoryDatabase::ExpectForeignBlocks() {
  if (m_Store != nullptr) ++m_Store->flushes;
}

void FED_MemoryDatabase::OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t,
                                const std::wstring&, const FED_IdMapsPool& pool) {
  auto store = std::make_shared<qelta::MemoryStore>();
  BeginOpen(mode, pool);
  m_Store = std::move(store);
  FinishOpen();
}

void FED_MemoryDatabase::CloseDb() {
  FinishClose();
  m_Store.reset();
}

FED_DataBlock& FED_MemoryDatabase::Create(const FED_DataDescriptor& descriptor, int properties,
                                          const std::string* format) {
  RequireCreatable(descriptor);
  const FED_DataDescriptor key = descriptor.Duplicate();
  auto* const block = format == nullptr ? new FED_MemoryDataBlock(key, m_Store)
                                        : new FED_MemoryDataBlock(key, *format, m_Store);
  block->ChangeProperties(properties);
  m_BlockSet.StoreDataBlockInstance(descriptor, block);
  try {
    m_Store->contents[key] = block->GetContent();
  } catch (...) {
    m_BlockSet.DeleteDataBlockInstance(key);
    throw;
  }
  return *block;
}

FED_DataBlock& FED_MemoryDatabase::CreateDataBlock(const FED_DataDescriptor& descriptor,
                                                   int properties, std::int64_t,
                                                   const std::string& format) {
  return Create(descriptor, properties, &format);
}

FED_DataBlock& FED_MemoryDatabase::CreateDataBlock(const FED_DataDescriptor& descriptor,
                                                   std::size_t) {
  return Create(descriptor, 0, nullptr);
}

FED_DataBlock* FED_MemoryDatabase::MakeStoredBlock(const FED_DataDescriptor& primary) {
  const auto found = m_Store->contents.find(primary);
  if (found == m_Store->contents.end()) return nullptr;
  const FED_DataDescriptor key = primary.Duplicate();
  const auto& content = found->second;
  if (key.Has(FED_DataDescriptor::ONF)) return new FED_MemoryDataBlock(key, m_Store, content);
  return new FED_MemoryDataBlock(key, content->format, m_Store, content);
}

std::uint64_t FED_MemoryDatabase::GetClosings() const { return m_Store->flushes; }
