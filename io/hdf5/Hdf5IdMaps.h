#pragma once

#include <FED_IdMapsPool.h>

#include <array>
#include <cstdint>

#include "Hdf5Handle.h"

namespace qelta {

/// Writes the id maps that know something, each into a group that has the name of its id type.
void WriteIdMaps(hid_t group, const FED_IdMapsPool& maps);

/// The id maps of a file, and where a target has their entities.
class Hdf5IdMaps {
 public:
  explicit Hdf5IdMaps(hid_t group);

  /// The target learns all ids and names. A map that knows nothing yet takes them at the same
  /// indices. The target must outlive this object or the next call.
  void TeachTo(FED_IdMapsPool& target);

  /// Whether the target has the same entities of a type at the same indices, and no others.
  bool AreSame(FED_IdType type) const { return m_AreSame[static_cast<std::size_t>(type)]; }

  /// Whether an index can be translated.
  bool Knows(FED_IdType type, std::int32_t index) const;
  /// The index in the target. Throws an Hdf5Problem when the file knows no entity at `index`.
  std::int32_t Translate(FED_IdType type, std::int32_t index) const;

 private:
  FED_IdMapsPool m_Maps;
  FED_IdMapsPool m_Target;
  std::array<bool, 16> m_AreSame;
};

}  // namespace qelta
