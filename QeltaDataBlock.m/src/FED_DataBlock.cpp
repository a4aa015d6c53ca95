#include "FED_DataBlock.h"

#include <algorithm>

#include "FED_Failure.h"
#include "FED_OnfInfoPool.h"
#include "IntSetList.h"
#include "OnfFormatStringTool.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataBlock|FED_DataBlock";

// Calls append(index) for each existing index and extends the result by `width` values each time.
template <class Read>
std::vector<double> GatherField(const FED_DataBlock& block, std::size_t width, Read read) {
  std::vector<double> values;
  values.reserve(width * static_cast<std::size_t>(block.GetMaxIndex() + 1));
  for (const std::size_t index : block) {
    values.resize(values.size() + width);
    read(index, values.data() + values.size() - width);
  }
  return values;
}

}  // namespace

FED_DataBlock::FED_DataBlock(const FED_DataDescriptor& descriptor) : m_Descriptor(descriptor) {
  if (!descriptor.Has(FED_DataDescriptor::ONF)) {
    FED_Failure::Throw("164013180412", kLocation,
                       "Data record creation for non-onf block is not allowed.");
  }
  const int onf = descriptor.GetInteger(FED_DataDescriptor::ONF);
  if (!FED_OnfInfoPool::ExistsOnfBlock(onf)) {
    FED_Failure::Throw("164513180412", kLocation,
                       "No information is present for ONF-Block with id: %d.", onf);
  }
  const FED_OnfMetaData& info = FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf));
  m_RecordSize = info.recordSize;
  m_DataTypes = info.dataTypes;
  m_FieldDim = info.fieldDim;
  m_PrimaryIdType = info.idTypes.front();
  m_Format = info.format;
  m_EndIterator.reset(new IndexIterator(-1, -1, this));
}

FED_DataBlock::FED_DataBlock(const FED_DataDescriptor& descriptor, const std::string& format)
    : m_Descriptor(descriptor), m_Format(format) {
  if (descriptor.Has(FED_DataDescriptor::ONF)) {
    FED_Failure::Throw("163813180412", kLocation,
                       "Data block creation with a custom format for ONF block %d is not allowed.",
                       descriptor.GetInteger(FED_DataDescriptor::ONF));
  }
  int size = 0;
  OnfFormatStringTool::GetFormatSizeInformation(m_Format.c_str(), size, m_DataTypes);
  m_RecordSize = static_cast<std::uint64_t>(std::int64_t{size});
  m_FieldDim = OnfFormatStringTool::DetermineFieldDim(m_DataTypes);
  m_EndIterator.reset(new IndexIterator(-1, -1, this));
}

FED_DataBlock::~FED_DataBlock() { m_EndIterator->m_Block = nullptr; }

void FED_DataBlock::IndexIterator::SkipAbsent() {
  for (; m_Index <= m_Last; ++m_Index) {
    if (m_Block->HasRecord(static_cast<std::size_t>(m_Index))) return;
  }
  m_Index = -1;
}

FED_DataBlock::IndexIterator& FED_DataBlock::IndexIterator::operator++() {
  ++m_Index;
  SkipAbsent();
  return *this;
}

FED_DataBlock::IndexIterator FED_DataBlock::Begin() const {
  IndexIterator iterator(0, GetMaxIndex(), this);
  iterator.SkipAbsent();
  return iterator;
}

QeltaMatrix<3, 1, double> FED_DataBlock::GetVector(std::size_t index) const {
  QeltaMatrix<3, 1, double> vector{};
  GetVector(index, vector.data());
  return vector;
}

std::uint64_t FED_DataBlock::GetNumRecords() const {
  return static_cast<std::uint64_t>(GetMaxIndex() + 1);
}

FED_IntSetIntvl<int> FED_DataBlock::GetRecordIndices() const {
  FED_IntSetIntvl<int> indices;
  std::int64_t first = 0;
  std::int64_t last = -1;
  const auto finishRun = [&] {
    if (first <= last) indices.Insert(static_cast<int>(first), static_cast<int>(last));
  };
  for (const std::size_t index : *this) {
    const std::int64_t current = static_cast<std::int64_t>(index);
    if (current != last + 1) {
      finishRun();
      first = current;
    }
    last = current;
  }
  finishRun();
  return indices;
}

void FED_DataBlock::GetRecordIndices(FED_IntSetIntvl<int>& out) const { out = GetRecordIndices(); }

void FED_DataBlock::GetRecordIndices(std::vector<std::uint64_t>& out) const {
  out.clear();
  for (const std::size_t index : *this) out.push_back(index);
}

std::vector<double> FED_DataBlock::GetFieldData() const {
  switch (m_FieldDim) {
    case FED_BlockDataType::DIM_SCALAR:
      return GatherField(*this, 1, [this](std::size_t i, double* out) { *out = GetScalar(i); });
    case FED_BlockDataType::DIM_VECTOR:
      return GatherField(*this, 3, [this](std::size_t i, double* out) { GetVector(i, out); });
    case FED_BlockDataType::DIM_TENSOR:
      return GatherField(*this, 6, [this](std::size_t i, double* out) { GetTensor(i, out); });
    default:
      return {};
  }
}

FED_DataRecord& FED_DataBlock::CreateDataRecord() {
  return *new FED_DataRecord(*this, m_RecordSize, m_DataTypes);
}

FED_ConstDataRecord& FED_DataBlock::CreateDataRecord() const {
  return *new FED_ConstDataRecord(*this, m_RecordSize, m_DataTypes);
}

void FED_DataBlock::DeleteDataRecord(FED_ConstDataRecord& record) const {
  // A compiler may take the address of a reference for non-null; read back from a volatile it
  // cannot, and a reference to no object does no harm.
  FED_ConstDataRecord* const volatile address = &record;
  delete address;
}

FED_IntSetIntvl<int> FED_DataBlock::RetrieveIntSet(std::uint64_t handle) const {
  FED_IntArray list;
  GetIntList(handle, list);
  return qelta::MakeIntSet(list.data, static_cast<std::size_t>(list.count));
}

std::uint64_t FED_DataBlock::StoreIntSet(const FED_IntSetIntvl<int>& set) {
  std::vector<int> members(static_cast<std::size_t>(set.Size()));
  qelta::ListMembers(set, members.data());
  return SetIntList(members.data(), members.size());
}

std::uint64_t FED_DataBlock::SetIntList(const FED_IntArray& list) {
  return SetIntList(list.data, static_cast<std::size_t>(list.count));
}

std::uint64_t FED_DataBlock::SetDoubleList(const FED_DoubleArray& list) {
  return SetDoubleList(list.data, static_cast<std::size_t>(list.count));
}
