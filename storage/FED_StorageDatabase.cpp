#include "FED_StorageDatabase.h"

#include "ClosedAliases.h"
#include "FED_Failure.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaStorage|FED_StorageDatabase";

}  // namespace

FED_StorageDatabase::FED_StorageDatabase() : m_Aliases(new qelta::ClosedAliases) {}

FED_StorageDatabase::~FED_StorageDatabase() = default;

FED_StorageDatabase::FED_StorageDatabase(const FED_StorageDatabase& other)
    : FED_Database(other),
      m_WasOpened(other.m_WasOpened),
      m_IsOpen(other.m_IsOpen),
      m_Mode(other.m_Mode),
      m_IdMaps(other.m_IdMaps),
      m_Aliases(new qelta::ClosedAliases) {}

FED_StorageDatabase& FED_StorageDatabase::operator=(const FED_StorageDatabase& other) {
  if (this == &other) return *this;
  std::unique_ptr<qelta::ClosedAliases> aliases(new qelta::ClosedAliases);
  FED_Database::operator=(other);
  m_WasOpened = other.m_WasOpened;
  m_IsOpen = other.m_IsOpen;
  m_Mode = other.m_Mode;
  m_IdMaps = other.m_IdMaps;
  m_Aliases = std::move(aliases);
  return *this;
}

void FED_StorageDatabase::BeginOpen(FED_DatabaseDefs::AccessMode mode, const FED_IdMapsPool& pool) {
  if (m_WasOpened) {
    FED_Failure::Throw("200000000011", kLocation,
                       "This database object was initialised before; use a new one.");
  }
  m_Mode = mode;
  m_IdMaps = pool;
  m_WasOpened = true;
}

void FED_StorageDatabase::FinishClose() {
  m_BlockSet.Clear();
  m_IsOpen = false;
}

void FED_StorageDatabase::RequireCreatable(const FED_DataDescriptor& descriptor) const {
  if (!IsInitialized()) {
    FED_Failure::Throw("200000000012", kLocation,
                       "The database is not open; call InitDb before blocks are created.");
  }
  RequireWritable(descriptor);
  descriptor.CheckValidity();
  if (HasBlock(descriptor)) {
    FED_Failure::Throw("200000000013", kLocation,
                       "Block %s is there already; fetch it instead of creating it.",
                       descriptor.ToString().c_str());
  }
}

void FED_StorageDatabase::RequireWritable(const FED_DataDescriptor& descriptor) const {
  if (m_Mode != FED_DatabaseDefs::READ_ONLY) return;
  FED_Failure::Throw("200000000014", kLocation,
                     "Block %s cannot be created or deleted: the database is open for reading "
                     "only.",
                     descriptor.ToString().c_str());
}

bool FED_StorageDatabase::HasBlock(const FED_DataDescriptor& descriptor) const {
  if (FED_Database::HasBlock(descriptor)) return true;
  // Reopening makes a new block object over content that is there; nobody can tell the difference.
  return const_cast<FED_StorageDatabase*>(this)->Reopen(descriptor) &&
         FED_Database::HasBlock(descriptor);
}

bool FED_StorageDatabase::Reopen(const FED_DataDescriptor& descriptor) {
  if (!IsInitialized() || GetClosings() == 0) return false;
  if (!MayHoldUnregistered() && m_BlockSet.FindPosition(descriptor) < 0) return false;
  std::vector<FED_DataDescriptor> names = m_Aliases->GroupOf(m_BlockSet, descriptor, GetClosings());
  if (names.empty()) names.push_back(descriptor.Duplicate());
  for (const FED_DataDescriptor& name : names) {
    FED_DataBlock* const block = MakeStoredBlock(name);
    if (block == nullptr) continue;
    m_BlockSet.ReopenDataBlockInstance(name, block);
    return true;
  }
  return false;
}

const FED_DataBlock& FED_StorageDatabase::GetDataBlock(const FED_DataDescriptor& descriptor) const {
  HasBlock(descriptor);
  return FED_Database::GetDataBlock(descriptor);
}

FED_DataBlock& FED_StorageDatabase::GetDataBlock(const FED_DataDescriptor& descriptor) {
  HasBlock(descriptor);
  return FED_Database::GetDataBlock(descriptor);
}

std::vector<FED_DataBlock*> FED_StorageDatabase::GetDataBlocks(
    const FED_DataDescriptorPattern& pattern) {
  std::vector<FED_DataBlock*> blocks;
  for (const FED_DataDescriptor& descriptor : FindBlocks(pattern)) {
    blocks.push_back(&GetDataBlock(descriptor));
  }
  return blocks;
}

void FED_StorageDatabase::DeleteDataBlock(const FED_DataDescriptor& descriptor) {
  if (!HasBlock(descriptor)) return;
  RequireWritable(descriptor);
  FED_Database::DeleteDataBlock(descriptor);
}

void FED_StorageDatabase::DeleteDataBlocks(const FED_DataDescriptorPattern& pattern) {
  for (const FED_DataDescriptor& descriptor : FindBlocks(pattern)) {
    if (HasBlock(descriptor)) RequireWritable(descriptor);
  }
  FED_Database::DeleteDataBlocks(pattern);
}
