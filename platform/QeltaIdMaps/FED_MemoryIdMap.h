#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "FED_IdMap.h"
#include "FED_IdType.h"
#include "QeltaExport.h"

/// The id map that lives in memory, filled by Add and by the ...ForWrite operations.
///
/// Every translation has constant cost in both directions. Nothing is ever removed. A registration
/// that contradicts an earlier one is a failure and changes nothing; repeating a registration is
/// fine. Failures name the id type, the value in question and the range that is known.
///
/// Reading from several threads is safe while nobody writes.
class QELTA_EXPORT FED_MemoryIdMap : public FED_IdMap {
 public:
  /// An empty map; `type` is what its failures speak of.
  explicit FED_MemoryIdMap(FED_IdType type);
  ~FED_MemoryIdMap() override;

  FED_MemoryIdMap(const FED_MemoryIdMap&) = delete;
  FED_MemoryIdMap& operator=(const FED_MemoryIdMap&) = delete;

  /// Registers an entity without a name; an entity that is known keeps the name it has.
  void Add(std::int64_t index, std::int32_t id);

  /// Registers an entity with its name, or gives a known one its name; an empty name is none.
  /// Where memory runs out, the entity may stay without its name; repeating the call completes it.
  void Add(std::int64_t index, std::int32_t id, const std::string& name);

  /// Registers ids[0 .. count - 1] at the indices firstIndex, firstIndex + 1, ... What precedes the
  /// first entity that fails stays registered.
  void Add(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex = 0);

  /// Likewise with names[0 .. count - 1].
  void Add(const std::int32_t* ids, const std::string* names, std::size_t count,
           std::int64_t firstIndex = 0);

  /// Number of entities.
  std::size_t GetCount() const;

  bool ContainsName(const std::string& name) const override;
  bool ContainsId(std::int32_t id) const override;

  /// A failure also where the entity has no name.
  void NameOfIndex(std::int64_t index, std::string& name) const override;
  std::int32_t IdOfIndex(std::int64_t index) const override;
  bool ContainsIndex(std::int64_t index) const override;
  std::int64_t IndexOfName(const std::string& name) const override;
  std::int64_t IndexOfId(std::int32_t id) const override;

  /// What is unknown is registered at the index behind GetMaxIndex(). A new name gets the smallest
  /// positive id that is not in use; an empty name is a failure.
  std::int64_t IndexOfNameForWrite(const std::string& name) override;
  std::int64_t IndexOfIdForWrite(std::int32_t id) override;

  std::int64_t GetMaxIndex() const override;
  bool HasNameAt(std::int64_t index) const override;

 private:
  // The name is the key of m_IndexOfName, or null.
  struct Entity {
    std::int32_t id;
    const std::string* name;
  };

  const Entity& EntityAt(std::int64_t index) const;
  std::int64_t NextIndex() const;
  std::int32_t NextFreeId();

  void CheckRun(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex) const;
  void ReserveFor(std::size_t count);
  bool IsKnown(std::int64_t index, std::int32_t id) const;
  bool IsNamed(std::int64_t index, const std::string& name) const;
  void Insert(std::int64_t index, std::int32_t id);
  void SetName(std::int64_t index, const std::string& name);

  std::string Title() const;
  std::string KnownIds() const;

  FED_IdType m_Type;
  std::unordered_map<std::int64_t, Entity> m_Entities;
  std::unordered_map<std::int32_t, std::int64_t> m_IndexOfId;
  std::unordered_map<std::string, std::int64_t> m_IndexOfName;
  std::int64_t m_MaxIndex = -1;
  std::int32_t m_LeastId = 0;
  std::int32_t m_GreatestId = 0;
  std::int32_t m_NextFreeId = 1;
};
