#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qelta {

class FileContent;

/// The contents of a store by key. One list without links: opening a database enters all of its
/// blocks here, which in a linked table costs more than reading them from the catalogue.
class ContentTable {
 public:
  using ContentPointer = std::shared_ptr<FileContent>;

  /// Null when there is none.
  ContentPointer Find(const std::string& key) const;
  /// The key is that of the content's row and must not be there. Nothing changes when memory is
  /// short.
  void Insert(ContentPointer content);
  /// Does nothing when there is none.
  void Erase(const std::string& key) noexcept;
  void Clear() noexcept;

  std::size_t GetCount() const { return m_Count; }

  /// In no order. `visit` must not change the table.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const Slot& slot : m_Slots) {
      if (slot.content != nullptr) visit(slot.content);
    }
  }

 private:
  struct Slot {
    std::uint64_t hash = 0;
    ContentPointer content;
  };

  std::size_t FirstFor(std::uint64_t hash) const { return hash & (m_Slots.size() - 1); }
  std::size_t Next(std::size_t place) const { return (place + 1) & (m_Slots.size() - 1); }
  std::size_t PlaceOf(const std::string& key) const;
  void Grow();
  void Put(Slot&& slot) noexcept;

  std::vector<Slot> m_Slots;  // a power of two of them, at most two thirds in use
  std::size_t m_Count = 0;
};

}  // namespace qelta
