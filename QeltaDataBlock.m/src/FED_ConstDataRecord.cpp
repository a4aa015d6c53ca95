#include "FED_ConstDataRecord.h"

#include "FED_DataBlock.h"
#include "FED_Failure.h"
#include "IntSetList.h"
#include "OnfFormatStringTool.h"

std::uint64_t FED_ConstDataRecord::s_InstanceCounter = 0;

namespace {

std::uint64_t RequireFieldSize(BlockDataType type) {
  const int size = OnfFormatStringTool::GetFieldSize(type);
  if (size > 0) return static_cast<std::uint64_t>(size);
  FED_Failure::Throw("114313130712", "|%P|QeltaDataBlock|FED_ConstDataRecord",
                     "Unknown data type %d encountered in data record", static_cast<int>(type));
}

}  // namespace

FED_ConstDataRecord::FED_ConstDataRecord(const FED_DataBlock& block, std::uint64_t recordSize,
                                         const std::vector<BlockDataType>& dataTypes)
    : m_FieldCount(dataTypes.size()),
      m_RecordSize(recordSize),
      m_Block(&block),
      m_Buffer(new unsigned char[static_cast<std::size_t>(recordSize)]()),
      m_Layout(new LayoutEntry[dataTypes.size() + 1]()) {
  std::uint64_t offset = 0;
  LayoutEntry* entry = m_Layout.get();
  for (const BlockDataType type : dataTypes) {
    *entry++ = {type, offset};
    offset += RequireFieldSize(type);
  }
  entry->offset = offset;
  ++s_InstanceCounter;
}

FED_ConstDataRecord::~FED_ConstDataRecord() { --s_InstanceCounter; }

QeltaMatrix<3, 1, double> FED_ConstDataRecord::GetVector(std::size_t i) const {
  QeltaMatrix<3, 1, double> vector{};
  GetVector(i, vector.data());
  return vector;
}

std::string FED_ConstDataRecord::GetString(std::size_t i) const {
  std::string text;
  GetString(i, text);
  return text;
}

void FED_ConstDataRecord::GetString(std::size_t i, std::string& out) const {
  m_Block->GetString(Handle(i), out);
}

std::uint64_t FED_ConstDataRecord::GetIntListLen(std::size_t i) const {
  return IsIntList(i) ? m_Block->GetIntListLen(Handle(i)) : GetIntSet(i).Size();
}

void FED_ConstDataRecord::GetIntList(std::size_t i, FED_IntArray& out) const {
  if (IsIntList(i)) {
    m_Block->GetIntList(Handle(i), out);
    return;
  }
  const FED_IntSetIntvl<int> set = GetIntSet(i);
  out.Resize(set.Size());
  qelta::ListMembers(set, out.data);
}

std::uint64_t FED_ConstDataRecord::GetIntList(std::size_t i, int* out) const {
  return IsIntList(i) ? m_Block->GetIntList(Handle(i), out) : qelta::ListMembers(GetIntSet(i), out);
}

void FED_ConstDataRecord::GetIndexList(std::size_t i, std::vector<QeltaIdx>& out) const {
  static_assert(sizeof(QeltaIdx) == sizeof(int) && std::is_standard_layout_v<QeltaIdx>);
  out.assign(static_cast<std::size_t>(GetIntListLen(i)), QeltaIdx(0));
  if (!out.empty()) GetIntList(i, reinterpret_cast<int*>(out.data()));
}

FED_IntSetIntvl<int> FED_ConstDataRecord::GetIntSet(std::size_t i) const {
  return m_Block->RetrieveIntSet(Handle(i));
}

std::uint64_t FED_ConstDataRecord::GetDoubleListLen(std::size_t i) const {
  return m_Block->GetDoubleListLen(Handle(i));
}

void FED_ConstDataRecord::GetDoubleList(std::size_t i, FED_DoubleArray& out) const {
  m_Block->GetDoubleList(Handle(i), out);
}

std::uint64_t FED_ConstDataRecord::GetDoubleList(std::size_t i, double* out) const {
  return m_Block->GetDoubleList(Handle(i), out);
}

bool FED_ConstDataRecord::operator==(const FED_ConstDataRecord& other) const {
  if (m_FieldCount != other.m_FieldCount || m_RecordSize != other.m_RecordSize) return false;
  for (std::size_t i = 1; i <= m_FieldCount + 1; ++i) {
    const LayoutEntry& mine = Entry(i);
    const LayoutEntry& theirs = other.Entry(i);
    if (mine.type != theirs.type || mine.offset != theirs.offset) return false;
  }
  return std::memcmp(m_Buffer.get(), other.m_Buffer.get(),
                     static_cast<std::size_t>(m_RecordSize)) == 0;
}
