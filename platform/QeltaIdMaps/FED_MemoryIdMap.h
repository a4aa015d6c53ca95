#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FED_IdMap.h"
#include "FED_IdType.h"
#include "IdRun.h"
#include "QeltaExport.h"

namespace qelta {
class IdPairs;
class NameTable;
}  // namespace qelta

/// The id map that lives in memory, filled by Add and by the ...ForWrite operations.
///
/// Ids may be any, indices run from 0 to 2147483647 (records keep them as signed 32-bit numbers)
/// and need not be without gaps. Nothing is ever removed. A registration that contradicts an
/// earlier one is a failure and changes nothing, and so does one for which there is no memory;
/// repeating a registration is fine. Failures name the id type, the value in question and the range
/// that is known.
///
/// Every translation has constant expected cost in both directions, a registration likewise when
/// averaged over all. While consecutive ids stand at consecutive indices, a run of them takes some
/// 30 to 40 bytes however long it is; where runs are short, an id takes 8 to 16 bytes as a rule,
/// and 33 at most when ids and indices are both scattered. A name takes its text and some 30 bytes.
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
  void Add(std::int64_t index, std::int32_t id, const std::string& name);

  /// Registers ids[0 .. count - 1] at the indices firstIndex, firstIndex + 1, ... What precedes the
  /// first entity that fails stays registered. The quickest way to fill a map: it grows once, and
  /// takes consecutive ids as a whole.
  void Add(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex = 0);

  /// Likewise with names[0 .. count - 1]; no array is no names.
  void Add(const std::int32_t* ids, const std::string* names, std::size_t count,
           std::int64_t firstIndex = 0);

  /// Registers firstId, firstId + 1, ... at as many indices from firstIndex on; at once where all
  /// of them are new.
  void AddConsecutive(std::int32_t firstId, std::size_t count, std::int64_t firstIndex);

  /// Number of entities.
  std::size_t GetCount() const;

  /// Number of names. Entities and names are only ever added, so a map whose two numbers are the
  /// same has not changed.
  std::size_t GetNameCount() const;

  /// All entities, in ascending order of their indices and in as few runs as can be. Costs a pass
  /// over what is there, however far apart it is, and a sort where the indices are scattered.
  std::vector<qelta::IdRun> ListRuns() const;

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
  std::int32_t RequireIdAt(std::int64_t index) const;
  std::int64_t NextIndex() const;
  std::int32_t NextFreeId();

  void CheckRange(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex) const;
  void ReserveFor(const std::int32_t* ids, std::size_t count, std::int64_t firstIndex);
  bool IsKnown(std::int64_t index, std::int32_t id) const;
  bool IsNamed(std::int64_t index, const std::string& name) const;
  void AddRun(const qelta::IdRun& run);
  void Insert(const qelta::IdRun& run);

  std::string Title() const;
  std::string KnownIds() const;

  FED_IdType m_Type;
  std::unique_ptr<qelta::IdPairs> m_Pairs;
  std::unique_ptr<qelta::NameTable> m_Names;
  std::int32_t m_NextFreeId = 1;
};
