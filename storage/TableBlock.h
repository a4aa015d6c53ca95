#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "ContentKind.h"
#include "FED_Failure.h"
#include "FED_StorageBlock.h"

namespace qelta {

/// A block over a table that keeps records in pieces, each record in one of them.
///
/// `Content` is what the blocks of a module are made over. It outlives the block object and has
///  - `int properties`
///  - `bool Has(index)`, `std::int64_t MaxIndex()`, `void PresentRuns(FED_IntSetIntvl<int>&)`
///  - `const unsigned char* Find(index)`: the record's bytes, null when there is none
///  - `unsigned char* FindToChange(index)`: likewise, for all of it to be written at once
///  - `std::size_t VisitRun(first, count, use)`: use(bytes, position, count) for every piece up to
///    the first absent record; the number of records passed
///  - `void TouchRun(first, count, zeroed, use)`: likewise for writing; makes absent records,
///  zeroed
///    unless `use` writes all of them
///  - `Place`, with `bytes`, the length of a string or list; `bool FindContent(kind, handle,
///    Place&)`, `void CopyContent(const Place&, void*)`, `bool IsFull()`, `std::uint64_t
///    StoreContent(kind, data, bytes)`
template <class Content>
class TableBlock : public FED_StorageBlock {
 public:
  using ContentPointer = std::shared_ptr<Content>;
  using FED_DataBlock::SetDoubleList;
  using FED_DataBlock::SetIntList;

  const ContentPointer& GetContent() const { return m_Content; }

  bool HasRecord(std::size_t index) const override { return m_Content->Has(index); }
  std::int64_t GetMaxIndex() const override { return m_Content->MaxIndex(); }
  /// Nothing to prepare: room is made on first touch.
  void Reserve(std::size_t) override {}

  void SetRecord(std::size_t index, const FED_DataRecord& record) override {
    const unsigned char* const from = RecordBuffer(record);
    unsigned char* const bytes = m_Content->FindToChange(index);
    if (bytes != nullptr) {
      CopyRecord(bytes, from, GetRecordSize());
    } else {
      WriteRun(index, 1, from);
    }
  }

  void GetRecord(std::size_t index, FED_ConstDataRecord& record) const override {
    const unsigned char* const bytes = m_Content->Find(index);
    if (bytes == nullptr) FailAbsent(index);
    CopyRecord(RecordBuffer(record), bytes, GetRecordSize());
  }

  void ReadRun(std::size_t first, std::size_t count, void* records) const override {
    RequireRange(first, count);
    auto* const out = static_cast<unsigned char*>(records);
    const std::size_t size = GetRecordSize();
    const std::size_t read = m_Content->VisitRun(
        first, count, [&](const unsigned char* bytes, std::size_t position, std::size_t share) {
          CopyStrided(out + position * size, size, bytes, size, size, share);
        });
    if (read < count) FailAbsent(first + read);
  }

  void WriteRun(std::size_t first, std::size_t count, const void* records) override {
    RequireRange(first, count);
    m_Content->WriteRun(first, count, static_cast<const unsigned char*>(records));
  }

  void ReadColumn(std::size_t field, std::size_t first, std::size_t count,
                  void* values) const override {
    const FieldPlace place = PlaceOf(field);
    RequireRange(first, count);
    auto* out = static_cast<unsigned char*>(values);
    const std::size_t read = m_Content->VisitRun(
        first, count, [&](const unsigned char* bytes, std::size_t, std::size_t share) {
          CopyStrided(out, place.size, bytes + place.offset, GetRecordSize(), place.size, share);
          out += share * place.size;
        });
    if (read < count) FailAbsent(first + read);
  }

  void WriteColumn(std::size_t field, std::size_t first, std::size_t count,
                   const void* values) override {
    const FieldPlace place = PlaceOf(field);
    RequireRange(first, count);
    const auto* in = static_cast<const unsigned char*>(values);
    m_Content->TouchRun(first, count, place.size != GetRecordSize(),
                        [&](unsigned char* bytes, std::size_t, std::size_t share) {
                          CopyStrided(bytes + place.offset, GetRecordSize(), in, place.size,
                                      place.size, share);
                          in += share * place.size;
                        });
  }

  void PresentRuns(FED_IntSetIntvl<int>& out) const override { m_Content->PresentRuns(out); }

  std::uint64_t GetIntListLen(std::uint64_t handle) const override {
    return Require(ContentKind::INT_LIST, handle).bytes / sizeof(int);
  }
  void GetIntList(std::uint64_t handle, FED_IntArray& out) const override {
    CopyToArray(Require(ContentKind::INT_LIST, handle), out);
  }
  std::uint64_t GetIntList(std::uint64_t handle, int* out) const override {
    return CopyTo(Require(ContentKind::INT_LIST, handle), out);
  }
  std::uint64_t SetIntList(const int* values, std::size_t count) override {
    return Store(ContentKind::INT_LIST, values, count, sizeof(int));
  }
  std::uint64_t GetDoubleListLen(std::uint64_t handle) const override {
    return Require(ContentKind::DOUBLE_LIST, handle).bytes / sizeof(double);
  }
  void GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const override {
    CopyToArray(Require(ContentKind::DOUBLE_LIST, handle), out);
  }
  std::uint64_t GetDoubleList(std::uint64_t handle, double* out) const override {
    return CopyTo(Require(ContentKind::DOUBLE_LIST, handle), out);
  }
  std::uint64_t SetDoubleList(const double* values, std::size_t count) override {
    return Store(ContentKind::DOUBLE_LIST, values, count, sizeof(double));
  }
  void GetString(std::uint64_t handle, std::string& out) const override {
    const Place place = Require(ContentKind::STRING, handle);
    out.resize(static_cast<std::size_t>(place.bytes));
    if (!out.empty()) m_Content->CopyContent(place, out.data());
  }
  std::uint64_t SetString(const std::string& text) override {
    return Store(ContentKind::STRING, text.data(), text.size(), 1);
  }

 protected:
  using Place = typename Content::Place;

  using FED_StorageBlock::FED_StorageBlock;

  /// To be called once, by the constructor of the block.
  void TakeContent(ContentPointer content) {
    m_Content = std::move(content);
    SetProperties(m_Content->properties);
  }

 private:
  Place Require(ContentKind kind, std::uint64_t handle) const {
    Place place{};
    if (!m_Content->FindContent(kind, handle, place)) FailHandle(handle, NameOf(kind));
    return place;
  }

  template <class Array>
  void CopyToArray(const Place& place, Array& out) const {
    out.Resize(place.bytes / sizeof(*out.data));
    if (out.data != nullptr) m_Content->CopyContent(place, out.data);
  }

  template <class Value>
  std::uint64_t CopyTo(const Place& place, Value* out) const {
    if (place.bytes > 0) m_Content->CopyContent(place, out);
    return place.bytes / sizeof(Value);
  }

  std::uint64_t Store(ContentKind kind, const void* data, std::size_t count, std::size_t size) {
    if (m_Content->IsFull()) {
      FED_Failure::Throw("200000000015", "|%P|QeltaStorage|TableBlock",
                         "Block %s keeps %Iu strings and lists, the most that records can refer "
                         "to. Copy it to drop what no record refers to.",
                         GetDescriptor().ToString().c_str(), kMaxHandle);
    }
    if (count > std::numeric_limits<std::size_t>::max() / size) throw std::bad_alloc();
    return m_Content->StoreContent(kind, data, count * size);
  }

  ContentPointer m_Content;
};

}  // namespace qelta
