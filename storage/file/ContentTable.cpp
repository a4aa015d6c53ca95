#include "ContentTable.h"

#include <xxhash.h>

#include <utility>

#include "FileContent.h"

namespace qelta {
namespace {

std::uint64_t HashOf(const std::string& key) { return XXH3_64bits(key.data(), key.size()); }

}  // namespace

// The number of slots when the key is not there.
std::size_t ContentTable::PlaceOf(const std::string& key) const {
  if (m_Slots.empty()) return 0;
  const std::uint64_t hash = HashOf(key);
  std::size_t place = FirstFor(hash);
  for (; m_Slots[place].content != nullptr; place = Next(place)) {
    if (m_Slots[place].hash == hash && m_Slots[place].content->GetRow().key == key) return place;
  }
  return m_Slots.size();
}

ContentTable::ContentPointer ContentTable::Find(const std::string& key) const {
  const std::size_t place = PlaceOf(key);
  return place < m_Slots.size() ? m_Slots[place].content : nullptr;
}

void ContentTable::Insert(ContentPointer content) {
  if (3 * (m_Count + 1) > 2 * m_Slots.size()) Grow();
  const std::uint64_t hash = HashOf(content->GetRow().key);
  Put({hash, std::move(content)});
  ++m_Count;
}

void ContentTable::Put(Slot&& slot) noexcept {
  std::size_t place = FirstFor(slot.hash);
  while (m_Slots[place].content != nullptr) place = Next(place);
  m_Slots[place] = std::move(slot);
}

void ContentTable::Grow() {
  std::vector<Slot> slots(m_Slots.empty() ? 16 : 2 * m_Slots.size());
  m_Slots.swap(slots);
  for (Slot& slot : slots) {
    if (slot.content != nullptr) Put(std::move(slot));
  }
}

// What follows without a gap is put in anew, so that no search ends too early.
void ContentTable::Erase(const std::string& key) noexcept {
  std::size_t place = PlaceOf(key);
  if (place >= m_Slots.size()) return;
  m_Slots[place] = Slot();
  --m_Count;
  for (place = Next(place); m_Slots[place].content != nullptr; place = Next(place)) {
    Slot slot = std::move(m_Slots[place]);
    m_Slots[place] = Slot();
    Put(std::move(slot));
  }
}

void ContentTable::Clear() noexcept {
  m_Slots.clear();
  m_Count = 0;
}

}  // namespace qelta
