#include "MemoryTable.h"

#include <algorithm>
#include <cstring>

namespace qelta {
namespace {

constexpr std::size_t kFirstCapacity = 8;

// The bits from `slot` on of the word that holds it, at most `count` of them.
std::uint64_t WordMask(std::size_t slot, std::size_t count) {
  const std::size_t first = slot % 64;
  const std::size_t bits = std::min(count, 64 - first);
  const std::uint64_t ones = bits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
  return ones << first;
}

}  // namespace

std::size_t MemoryTable::Page::CountFrom(std::size_t slot, std::size_t wanted) const {
  for (std::size_t done = 0; done < wanted;) {
    const std::uint64_t mask = WordMask(slot + done, wanted - done);
    const std::uint64_t absent = ~present[(slot + done) / 64] & mask;
    if (absent != 0) {
      const auto hole = static_cast<std::size_t>(__builtin_ctzll(absent));
      return (slot + done) / 64 * 64 + hole - slot;
    }
    done += 64 - (slot + done) % 64;
  }
  return wanted;
}

void MemoryTable::Page::Mark(std::size_t slot, std::size_t count) {
  for (std::size_t done = 0; done < count;) {
    present[(slot + done) / 64] |= WordMask(slot + done, count - done);
    done += 64 - (slot + done) % 64;
  }
}

const unsigned char* MemoryTable::FindRun(std::size_t first, std::size_t& count) const {
  const unsigned char* const bytes = Find(first);
  if (bytes != nullptr) {
    count = PageOf(first)->CountFrom(first % kPageRecords, PageShare(first, count));
  }
  return bytes;
}

unsigned char* MemoryTable::Touch(std::size_t index) {
  unsigned char* bytes = nullptr;
  TouchRun(index, 1, false, [&](unsigned char* at, std::size_t, std::size_t) { bytes = at; });
  return bytes;
}

// A block with a handful of records must not cost a full page, so the first page grows.
void MemoryTable::MakePage(std::size_t index, std::size_t count) {
  const std::size_t number = index / kPageRecords;
  if (number >= m_Pages.size()) m_Pages.resize(number + 1);
  std::unique_ptr<Page>& page = m_Pages[number];
  if (page == nullptr) page = std::make_unique<Page>();
  const std::size_t needed = index % kPageRecords + count;
  if (needed <= page->capacity) return;
  std::size_t capacity = number == 0 ? kFirstCapacity : kPageRecords;
  while (capacity < needed) capacity *= 2;
  // One byte more: a record without fields has an address too. Not zeroed: see Touch.
  std::unique_ptr<unsigned char[]> bytes(new unsigned char[capacity * m_RecordSize + 1]);
  if (page->capacity > 0) {
    std::memcpy(bytes.get(), page->bytes.get(), page->capacity * m_RecordSize);
  }
  page->bytes = std::move(bytes);
  page->capacity = capacity;
}

unsigned char* MemoryTable::MarkPresent(std::size_t index, std::size_t count, bool zeroed) {
  Page& page = *m_Pages[index / kPageRecords];
  const std::size_t slot = index % kPageRecords;
  unsigned char* const bytes = page.bytes.get() + slot * m_RecordSize;
  if (zeroed && page.CountFrom(slot, count) < count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!page.Has(slot + i)) std::memset(bytes + i * m_RecordSize, 0, m_RecordSize);
    }
  }
  page.Mark(slot, count);
  m_MaxIndex = std::max(m_MaxIndex, static_cast<std::int64_t>(index + count - 1));
  return bytes;
}

void MemoryTable::PresentRuns(FED_IntSetIntvl<int>& out) const {
  out.Clear();
  for (std::size_t number = 0; number < m_Pages.size(); ++number) {
    const Page* page = m_Pages[number].get();
    if (page == nullptr) continue;
    for (std::size_t slot = 0; slot < kPageRecords;) {
      const std::uint64_t rest = page->present[slot / 64] >> slot % 64;
      if (rest == 0) {
        slot = (slot / 64 + 1) * 64;
        continue;
      }
      slot += static_cast<std::size_t>(__builtin_ctzll(rest));
      const std::size_t count = page->CountFrom(slot, kPageRecords - slot);
      const std::size_t first = number * kPageRecords + slot;
      out.Insert(static_cast<int>(first), static_cast<int>(first + count - 1));
      slot += count;
    }
  }
}

}  // namespace qelta
