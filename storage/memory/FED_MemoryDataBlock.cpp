#include "FED_MemoryDataBlock.h"

#include <cstring>
#include <limits>
#include <new>

#include "FED_Failure.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaMemoryStorage|FED_MemoryDataBlock";

const char* NameOf(qelta::MemoryArena::Kind kind) {
  switch (kind) {
    case qelta::MemoryArena::Kind::INT_LIST:
      return "integer list";
    case qelta::MemoryArena::Kind::DOUBLE_LIST:
      return "double list";
    case qelta::MemoryArena::Kind::STRING:
      return "string";
  }
  return "content";
}

template <class Array>
void CopyTo(Array& out, const qelta::MemoryArena::Content& content) {
  out.Resize(content.bytes / sizeof(*out.data));
  if (out.data != nullptr) std::memcpy(out.data, content.data, content.bytes);
}

template <class Value>
std::uint64_t CopyTo(Value* out, const qelta::MemoryArena::Content& content) {
  if (content.bytes > 0) std::memcpy(out, content.data, content.bytes);
  return content.bytes / sizeof(Value);
}

}  // namespace

FED_MemoryDataBlock::FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, StorePointer store,
                                         ContentPointer content)
    : FED_StorageBlock(descriptor), m_Store(std::move(store)) {
  TakeContent(std::move(content));
}

FED_MemoryDataBlock::FED_MemoryDataBlock(const FED_DataDescriptor& descriptor,
                                         const std::string& format, StorePointer store,
                                         ContentPointer content)
    : FED_StorageBlock(descriptor, format), m_Store(std::move(store)) {
  TakeContent(std::move(content));
}

FED_MemoryDataBlock::~FED_MemoryDataBlock() = default;

void FED_MemoryDataBlock::DeleteData() { m_Store->contents.erase(GetDescriptor()); }

void FED_MemoryDataBlock::TakeContent(ContentPointer content) {
  m_Content = content != nullptr
                  ? std::move(content)
                  : std::make_shared<qelta::MemoryContent>(GetFormat(), GetRecordSize());
  SetProperties(m_Content->properties);
}

void FED_MemoryDataBlock::ChangeProperties(int properties) {
  m_Content->properties = properties;
  SetProperties(properties);
}

void FED_MemoryDataBlock::SetRecord(std::size_t index, const FED_DataRecord& record) {
  unsigned char* bytes = m_Content->records.Find(index);
  if (bytes == nullptr) {
    RequireRange(index, 1);
    bytes = m_Content->records.Touch(index);
  }
  CopyRecord(bytes, RecordBuffer(record), GetRecordSize());
}

void FED_MemoryDataBlock::GetRecord(std::size_t index, FED_ConstDataRecord& record) const {
  const unsigned char* const bytes = m_Content->records.Find(index);
  if (bytes == nullptr) FailAbsent(index);
  CopyRecord(RecordBuffer(record), bytes, GetRecordSize());
}

void FED_MemoryDataBlock::ReadRun(std::size_t first, std::size_t count, void* records) const {
  RequireRange(first, count);
  auto* const out = static_cast<unsigned char*>(records);
  const std::size_t size = GetRecordSize();
  const std::size_t read = m_Content->records.VisitRun(
      first, count, [&](const unsigned char* bytes, std::size_t position, std::size_t share) {
        CopyStrided(out + position * size, size, bytes, size, size, share);
      });
  if (read < count) FailAbsent(first + read);
}

void FED_MemoryDataBlock::WriteRun(std::size_t first, std::size_t count, const void* records) {
  RequireRange(first, count);
  const auto* const in = static_cast<const unsigned char*>(records);
  const std::size_t size = GetRecordSize();
  m_Content->records.TouchRun(first, count, false,
                              [&](unsigned char* bytes, std::size_t position, std::size_t share) {
                                CopyStrided(bytes, size, in + position * size, size, size, share);
                              });
}

void FED_MemoryDataBlock::ReadColumn(std::size_t field, std::size_t first, std::size_t count,
                                     void* values) const {
  const FieldPlace place = PlaceOf(field);
  RequireRange(first, count);
  auto* out = static_cast<unsigned char*>(values);
  const std::size_t read = m_Content->records.VisitRun(
      first, count, [&](const unsigned char* bytes, std::size_t, std::size_t share) {
        CopyStrided(out, place.size, bytes + place.offset, GetRecordSize(), place.size, share);
        out += share * place.size;
      });
  if (read < count) FailAbsent(first + read);
}

void FED_MemoryDataBlock::WriteColumn(std::size_t field, std::size_t first, std::size_t count,
                                      const void* values) {
  const FieldPlace place = PlaceOf(field);
  RequireRange(first, count);
  const auto* in = static_cast<const unsigned char*>(values);
  const bool partial = place.size != GetRecordSize();
  m_Content->records.TouchRun(
      first, count, partial, [&](unsigned char* bytes, std::size_t, std::size_t share) {
        CopyStrided(bytes + place.offset, GetRecordSize(), in, place.size, place.size, share);
        in += share * place.size;
      });
}

qelta::MemoryArena::Content FED_MemoryDataBlock::FindContent(Kind kind,
                                                             std::uint64_t handle) const {
  qelta::MemoryArena::Content content{};
  if (!m_Content->lists.Find(kind, handle, content)) FailHandle(handle, NameOf(kind));
  return content;
}

std::uint64_t FED_MemoryDataBlock::StoreContent(Kind kind, const void* data, std::size_t count,
                                                std::size_t size) {
  if (m_Content->lists.IsFull()) {
    FED_Failure::Throw("210000000001", kLocation,
                       "Block %s keeps %Iu strings and lists, the most that records can refer to. "
                       "Copy it to drop what no record refers to.",
                       GetDescriptor().ToString().c_str(), qelta::MemoryArena::kMaxHandle);
  }
  if (count > std::numeric_limits<std::size_t>::max() / size) throw std::bad_alloc();
  return m_Content->lists.Store(kind, data, count * size);
}

std::uint64_t FED_MemoryDataBlock::GetIntListLen(std::uint64_t handle) const {
  return FindContent(Kind::INT_LIST, handle).bytes / sizeof(int);
}

void FED_MemoryDataBlock::GetIntList(std::uint64_t handle, FED_IntArray& out) const {
  CopyTo(out, FindContent(Kind::INT_LIST, handle));
}

std::uint64_t FED_MemoryDataBlock::GetIntList(std::uint64_t handle, int* out) const {
  return CopyTo(out, FindContent(Kind::INT_LIST, handle));
}

std::uint64_t FED_MemoryDataBlock::SetIntList(const int* values, std::size_t count) {
  return StoreContent(Kind::INT_LIST, values, count, sizeof(int));
}

std::uint64_t FED_MemoryDataBlock::GetDoubleListLen(std::uint64_t handle) const {
  return FindContent(Kind::DOUBLE_LIST, handle).bytes / sizeof(double);
}

void FED_MemoryDataBlock::GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const {
  CopyTo(out, FindContent(Kind::DOUBLE_LIST, handle));
}

std::uint64_t FED_MemoryDataBlock::GetDoubleList(std::uint64_t handle, double* out) const {
  return CopyTo(out, FindContent(Kind::DOUBLE_LIST, handle));
}

std::uint64_t FED_MemoryDataBlock::SetDoubleList(const double* values, std::size_t count) {
  return StoreContent(Kind::DOUBLE_LIST, values, count, sizeof(double));
}

void FED_MemoryDataBlock::GetString(std::uint64_t handle, std::string& out) const {
  const qelta::MemoryArena::Content content = FindContent(Kind::STRING, handle);
  out.assign(static_cast<const char*>(content.data), content.bytes);
}

std::uint64_t FED_MemoryDataBlock::SetString(const std::string& text) {
  return StoreContent(Kind::STRING, text.data(), text.size(), 1);
}
