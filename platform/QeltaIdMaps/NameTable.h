#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "NumberMap.h"
#include "NumberSlots.h"

namespace qelta {

// The names of the entities that have one, both ways. All texts stand in one string.
class NameTable {
 public:
  std::size_t GetCount() const { return m_Ends.size(); }
  // Any index may be asked for.
  std::optional<std::string_view> FindName(std::int64_t index) const;
  std::optional<std::int64_t> FindIndex(std::string_view name) const;

  void MakeRoomFor(std::int64_t index, std::string_view name);
  // Needs room; neither the index nor the name may be known.
  void Insert(std::int64_t index, std::string_view name) noexcept;

 private:
  NumberRun PlaceOf(std::int64_t index) const;
  static NumberRun Hashed(std::int64_t index, std::string_view name);

  std::string m_Texts;
  std::vector<std::size_t> m_Ends;  // of each text
  NumberMap m_PlaceOfIndex;         // in m_Ends
  NumberSlots m_IndexOfHash;
};

}  // namespace qelta
