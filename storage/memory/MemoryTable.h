#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "FED_IntSetIntvl.h"

namespace qelta {

/// The records of one block: pages of a fixed number of records that are made on first touch, and
/// a bit for each record that is there.
class MemoryTable {
 public:
  static constexpr std::size_t kPageRecords = 1024;

  explicit MemoryTable(std::size_t recordSize) : m_RecordSize(recordSize) {}

  std::size_t GetRecordSize() const { return m_RecordSize; }

  bool Has(std::size_t index) const {
    const Page* page = PageOf(index);
    return page != nullptr && page->Has(index % kPageRecords);
  }

  /// The bytes of the record, null when there is none.
  const unsigned char* Find(std::size_t index) const {
    const Page* page = PageOf(index);
    if (page == nullptr || !page->Has(index % kPageRecords)) return nullptr;
    return page->bytes.get() + index % kPageRecords * m_RecordSize;
  }

  unsigned char* Find(std::size_t index) {
    return const_cast<unsigned char*>(static_cast<const MemoryTable*>(this)->Find(index));
  }

  /// The bytes of the record, null when there is none. Of `count` records, at least 1, `count`
  /// becomes the number that follow one another there.
  const unsigned char* FindRun(std::size_t first, std::size_t& count) const;

  /// Makes the record when it is absent. The caller is going to write all of it.
  unsigned char* Touch(std::size_t index);

  /// -1 for an empty table.
  std::int64_t MaxIndex() const { return m_MaxIndex; }

  /// Replaces `out` by the indices that are there.
  void PresentRuns(FED_IntSetIntvl<int>& out) const;

  /// Calls use(bytes, position, count) for the parts of the run that lie in one page, in order;
  /// `position` counts records from `first`. Stops at the first absent record and returns the
  /// number of records passed.
  template <class Use>
  std::size_t VisitRun(std::size_t first, std::size_t count, Use use) const {
    for (std::size_t done = 0; done < count;) {
      const std::size_t index = first + done;
      const Page* page = PageOf(index);
      if (page == nullptr) return done;
      const std::size_t wanted = PageShare(index, count - done);
      const std::size_t present = page->CountFrom(index % kPageRecords, wanted);
      if (present > 0) {
        use(page->bytes.get() + index % kPageRecords * m_RecordSize, done, present);
      }
      done += present;
      if (present < wanted) return done;
    }
    return count;
  }

  /// Makes every record of the run and calls use(bytes, position, count) as VisitRun does. Records
  /// that were absent are zeroed first, unless the caller is going to write all of them. Nothing
  /// changes when memory is short.
  template <class Use>
  void TouchRun(std::size_t first, std::size_t count, bool zeroed, Use use) {
    for (std::size_t done = 0; done < count; done += PageShare(first + done, count - done)) {
      MakePage(first + done, PageShare(first + done, count - done));
    }
    for (std::size_t done = 0; done < count;) {
      const std::size_t share = PageShare(first + done, count - done);
      use(MarkPresent(first + done, share, zeroed), done, share);
      done += share;
    }
  }

 private:
  struct Page {
    std::uint64_t present[kPageRecords / 64] = {};
    std::size_t capacity = 0;
    std::unique_ptr<unsigned char[]> bytes;

    bool Has(std::size_t slot) const { return (present[slot / 64] >> slot % 64 & 1) != 0; }
    std::size_t CountFrom(std::size_t slot, std::size_t wanted) const;
    void Mark(std::size_t slot, std::size_t count);
  };

  const Page* PageOf(std::size_t index) const {
    const std::size_t number = index / kPageRecords;
    return number < m_Pages.size() ? m_Pages[number].get() : nullptr;
  }
  static std::size_t PageShare(std::size_t index, std::size_t count) {
    const std::size_t room = kPageRecords - index % kPageRecords;
    return count < room ? count : room;
  }
  void MakePage(std::size_t index, std::size_t count);
  unsigned char* MarkPresent(std::size_t index, std::size_t count, bool zeroed);

  std::size_t m_RecordSize;
  std::int64_t m_MaxIndex = -1;
  std::vector<std::unique_ptr<Page>> m_Pages;
};

}  // namespace qelta
