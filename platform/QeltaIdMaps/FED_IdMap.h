#pragma once

#include <cstdint>
#include <string>

#include "QeltaExport.h"

/// Translates the external ids and names of one kind of entity to indices and back.
///
/// Ids are any 32-bit numbers, indices count from 0. An entity has one index and one id and may
/// have a name; no two entities share any of them. The order of the virtual operations is part of
/// the interface: maps of other modules are built against it.
///
/// Asking for the partner of something unknown is a failure; the Contains operations never fail.
class QELTA_EXPORT FED_IdMap {
 public:
  virtual ~FED_IdMap();

  virtual bool ContainsName(const std::string& name) const = 0;
  virtual bool ContainsId(std::int32_t id) const = 0;

  /// Writes the name of the entity at `index` into `name`.
  virtual void NameOfIndex(std::int64_t index, std::string& name) const = 0;

  virtual std::int32_t IdOfIndex(std::int64_t index) const = 0;

  /// True when an entity has this index.
  virtual bool ContainsIndex(std::int64_t index) const = 0;

  virtual std::int64_t IndexOfName(const std::string& name) const = 0;
  virtual std::int64_t IndexOfId(std::int32_t id) const = 0;

  /// The index to store for a name or id that is being written; what is unknown may be registered.
  virtual std::int64_t IndexOfNameForWrite(const std::string& name) = 0;
  virtual std::int64_t IndexOfIdForWrite(std::int32_t id) = 0;

  /// The greatest index in use. -1, the answer of this class: the map is empty or cannot be
  /// enumerated.
  virtual std::int64_t GetMaxIndex() const;

  /// True when the entity at `index` has a name; false is the answer of this class.
  virtual bool HasNameAt(std::int64_t index) const;

 protected:
  FED_IdMap() = default;
  FED_IdMap(const FED_IdMap&) = default;
  FED_IdMap& operator=(const FED_IdMap&) = default;
};
