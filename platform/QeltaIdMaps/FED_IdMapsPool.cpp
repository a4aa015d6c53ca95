#include "FED_IdMapsPool.h"

#include <utility>

#include "FED_Failure.h"
#include "FED_MemoryIdMap.h"

namespace {

constexpr char kLocation[] = "|%P|QeltaIdMaps|FED_IdMapsPool";

}  // namespace

FED_IdMapsPool::FED_IdMapsPool() : m_Table(std::make_shared<Table>()) {
  for (std::size_t type = 0; type < kTypeCount; ++type) {
    (*m_Table)[type] = std::make_shared<FED_MemoryIdMap>(static_cast<FED_IdType>(type));
  }
}

FED_IdMapsPool::~FED_IdMapsPool() = default;
FED_IdMapsPool::FED_IdMapsPool(const FED_IdMapsPool& other) = default;
FED_IdMapsPool& FED_IdMapsPool::operator=(const FED_IdMapsPool& other) = default;

const FED_IdMap& FED_IdMapsPool::GetMap(FED_IdType type) const { return *Slot(type); }

FED_IdMap& FED_IdMapsPool::GetMap(FED_IdType type) { return *Slot(type); }

std::shared_ptr<const FED_IdMap> FED_IdMapsPool::ShareMap(FED_IdType type) const {
  return Slot(type);
}

void FED_IdMapsPool::SetMap(FED_IdType type, std::shared_ptr<FED_IdMap> map) {
  std::shared_ptr<FED_IdMap>& slot = Slot(type);
  if (map == nullptr) {
    FED_Failure::Throw("110000000101", kLocation,
                       "No id map was given for id type %d; to forget a map, set an empty "
                       "FED_MemoryIdMap.",
                       static_cast<int>(type));
  }
  slot = std::move(map);
}

std::shared_ptr<FED_IdMap>& FED_IdMapsPool::Slot(FED_IdType type) const {
  const auto position = static_cast<std::size_t>(type);
  if (position >= kTypeCount) {
    FED_Failure::Throw("110000000102", kLocation,
                       "The id type %d does not exist; id types run from 0 to %d.",
                       static_cast<int>(type), static_cast<int>(kTypeCount) - 1);
  }
  return (*m_Table)[position];
}
