#include "FED_MemoryDatabase.h"

#include <utility>

#include "ClosedAliases.h"
#include "FED_Failure.h"
#include "FED_MemoryDataBlock.h"
#include "MemoryStore.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaMemoryStorage|FED_MemoryDatabase";

}  // namespace

FED_MemoryDatabase::FED_MemoryDatabase() : m_Aliases(new qelta::ClosedAliases) {}

FED_MemoryDatabase::~FED_MemoryDatabase() { m_BlockSet.Clear(); }

FED_MemoryDatabase::FED_MemoryDatabase(const FED_MemoryDatabase& other)
    : FED_Database(other),
      m_WasOpened(other.m_WasOpened),
      m_Mode(other.m_Mode),
      m_IdMaps(other.m_IdMaps),
      m_Store(other.m_Store),
      m_Aliases(new qelta::ClosedAliases) {}

FED_MemoryDatabase& FED_MemoryDatabase::operator=(const FED_MemoryDatabase& other) {
  if (this == &other) return *this;
  std::unique_ptr<qelta::ClosedAliases> aliases(new qelta::ClosedAliases);
  FED_Database::operator=(other);
  m_WasOpened = other.m_WasOpened;
  m_Mode = other.m_Mode;
  m_IdMaps = other.m_IdMaps;
  m_Store = other.m_Store;
  m_Aliases = std::move(aliases);
  return *this;
}

void FED_MemoryDatabase::OpenDb(FED_DatabaseDefs::AccessMode mode, std::uint64_t,
                                const std::wstring&, const FED_IdMapsPool& pool) {
  if (m_WasOpened) {
    FED_Failure::Throw("210000000002", kLocation,
                       "This database object was initialised before; use a new one.");
  }
  m_Store = std::make_shared<qelta::MemoryStore>();
  m_Mode = mode;
  m_IdMaps = pool;
  m_WasOpened = true;
}

void FED_MemoryDatabase::CloseDb() {
  m_BlockSet.Clear();
  m_Store.reset();
}

void FED_MemoryDatabase::RequireCreatable(const FED_DataDescriptor& descriptor) const {
  if (!IsInitialized()) {
    FED_Failure::Throw("210000000003", kLocation,
                       "The database is not open; call InitDb before blocks are created.");
  }
  if (m_Mode == FED_DatabaseDefs::READ_ONLY) {
    FED_Failure::Throw("210000000004", kLocation,
                       "Block %s cannot be created: the database is open for reading only.",
                       descriptor.ToString().c_str());
  }
  descriptor.CheckValidity();
  if (HasBlock(descriptor)) {
    FED_Failure::Throw("210000000005", kLocation,
                       "Block %s is there already; fetch it instead of creating it.",
                       descriptor.ToString().c_str());
  }
}

template <class... Format>
FED_DataBlock& FED_MemoryDatabase::Create(const FED_DataDescriptor& descriptor, int properties,
                                          const Format&... format) {
  RequireCreatable(descriptor);
  const FED_DataDescriptor key = descriptor.Duplicate();
  auto* const block = new FED_MemoryDataBlock(key, format..., m_Store);
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
  return Create(descriptor, properties, format);
}

FED_DataBlock& FED_MemoryDatabase::CreateDataBlock(const FED_DataDescriptor& descriptor,
                                                   std::size_t) {
  return Create(descriptor, 0);
}

bool FED_MemoryDatabase::HasBlock(const FED_DataDescriptor& descriptor) const {
  if (FED_Database::HasBlock(descriptor)) return true;
  // Reopening makes a new block object over content that is there; nobody can tell the difference.
  return const_cast<FED_MemoryDatabase*>(this)->Reopen(descriptor) &&
         FED_Database::HasBlock(descriptor);
}

bool FED_MemoryDatabase::Reopen(const FED_DataDescriptor& descriptor) {
  if (!IsInitialized() || m_Store->flushes == 0) return false;
  if (m_BlockSet.FindPosition(descriptor) < 0) return false;
  std::vector<FED_DataDescriptor> names =
      m_Aliases->GroupOf(m_BlockSet, descriptor, m_Store->flushes);
  if (names.empty()) names.push_back(descriptor.Duplicate());
  for (const FED_DataDescriptor& name : names) {
    if (m_Store->contents.count(name) == 0) continue;
    OpenBlock(name);
    qelta::StoreAliases(m_BlockSet, name, names);
    return true;
  }
  return false;
}

void FED_MemoryDatabase::OpenBlock(const FED_DataDescriptor& primary) {
  const auto& content = m_Store->contents.at(primary);
  const FED_DataDescriptor key = primary.Duplicate();
  FED_DataBlock* const block =
      key.Has(FED_DataDescriptor::ONF)
          ? new FED_MemoryDataBlock(key, m_Store, content)
          : new FED_MemoryDataBlock(key, content->format, m_Store, content);
  m_BlockSet.StoreDataBlockInstance(primary, block);
}

const FED_DataBlock& FED_MemoryDatabase::GetDataBlock(const FED_DataDescriptor& descriptor) const {
  HasBlock(descriptor);
  return FED_Database::GetDataBlock(descriptor);
}

FED_DataBlock& FED_MemoryDatabase::GetDataBlock(const FED_DataDescriptor& descriptor) {
  HasBlock(descriptor);
  return FED_Database::GetDataBlock(descriptor);
}

std::vector<FED_DataBlock*> FED_MemoryDatabase::GetDataBlocks(
    const FED_DataDescriptorPattern& pattern) {
  std::vector<FED_DataBlock*> blocks;
  for (const FED_DataDescriptor& descriptor : FindBlocks(pattern)) {
    blocks.push_back(&GetDataBlock(descriptor));
  }
  return blocks;
}

void FED_MemoryDatabase::DeleteDataBlock(const FED_DataDescriptor& descriptor) {
  if (HasBlock(descriptor)) FED_Database::DeleteDataBlock(descriptor);
}

void FED_MemoryDatabase::DeleteDataBlocks(const FED_DataDescriptorPattern& pattern) {
  for (const FED_DataDescriptor& descriptor : FindBlocks(pattern)) HasBlock(descriptor);
  FED_Database::DeleteDataBlocks(pattern);
}
