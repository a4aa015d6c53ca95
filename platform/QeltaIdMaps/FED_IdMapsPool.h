#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "FED_IdMap.h"
#include "FED_IdType.h"
#include "QeltaExport.h"

/// The id maps of a model, one for each of the 16 id types.
///
/// A pool is a handle: its copies share one table, and a map set through one of them is seen by
/// all. All maps exist from the start, as empty FED_MemoryIdMaps. The table, and with it the maps,
/// lives as long as the last handle.
class QELTA_EXPORT FED_IdMapsPool {
 public:
  FED_IdMapsPool();
  ~FED_IdMapsPool();
  /// Moving copies, so that no handle is ever without a table.
  FED_IdMapsPool(const FED_IdMapsPool& other);
  FED_IdMapsPool& operator=(const FED_IdMapsPool& other);

  /// The map of an id type; the reference holds until SetMap replaces that map. A type outside 0
  /// to 15 is a failure.
  const FED_IdMap& GetMap(FED_IdType type) const;
  FED_IdMap& GetMap(FED_IdType type);

  /// The same map for whom it is to outlive its place in the pool.
  std::shared_ptr<const FED_IdMap> ShareMap(FED_IdType type) const;

  /// Replaces the map of an id type and shares its ownership; the former map goes unless somebody
  /// else holds it. No map, or a type outside 0 to 15, is a failure and changes nothing.
  void SetMap(FED_IdType type, std::shared_ptr<FED_IdMap> map);

 private:
  static constexpr std::size_t kTypeCount = 16;
  using Table = std::array<std::shared_ptr<FED_IdMap>, kTypeCount>;

  std::shared_ptr<FED_IdMap>& Slot(FED_IdType type) const;

  std::shared_ptr<Table> m_Table;
};
