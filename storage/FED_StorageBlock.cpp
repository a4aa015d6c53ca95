#include "FED_StorageBlock.h"

#include <algorithm>

#include "FED_Failure.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaStorage|FED_StorageBlock";

}  // namespace

FED_StorageBlock::FED_StorageBlock(const FED_DataDescriptor& descriptor)
    : FED_DataBlock(descriptor) {
  LayOut();
}

FED_StorageBlock::FED_StorageBlock(const FED_DataDescriptor& descriptor, const std::string& format)
    : FED_DataBlock(descriptor, format) {
  LayOut();
}

void FED_StorageBlock::LayOut() {
  for (std::size_t field = 1; field <= GetDataTypes().size(); ++field) {
    m_Places.push_back(QeltaBulkAccess::PlaceOf(*this, field));
  }
  m_IntegerField = FirstOf({BLOCK_DATA_INTEGER, BLOCK_DATA_INDEX});
  m_ScalarField = FirstOf({BLOCK_DATA_DOUBLE, BLOCK_DATA_TIME});
  m_VectorField = FirstOf({BLOCK_DATA_VECTOR});
  m_TensorField = FirstOf({BLOCK_DATA_TENSOR});
}

std::size_t FED_StorageBlock::FirstOf(std::initializer_list<BlockDataType> types) const {
  const std::vector<BlockDataType>& fields = GetDataTypes();
  const auto found = std::find_first_of(fields.begin(), fields.end(), types.begin(), types.end());
  return found == fields.end() ? 0 : static_cast<std::size_t>(found - fields.begin()) + 1;
}

std::size_t FED_StorageBlock::Require(std::size_t field, const char* kind) const {
  if (field != 0) return field;
  FED_Failure::Throw("200000000001", kLocation,
                     "Block %s has no %s field: its format is '%s'. Use a record cursor.",
                     GetDescriptor().ToString().c_str(), kind, GetFormat().c_str());
}

FED_StorageBlock::FieldPlace FED_StorageBlock::PlaceOf(std::size_t field) const {
  const bool isKnown = 1 <= field && field <= m_Places.size();
  return isKnown ? m_Places[field - 1] : QeltaBulkAccess::PlaceOf(*this, field);
}

void FED_StorageBlock::FailAbsent(std::size_t index) const {
  RequireRange(index, 1);
  FED_Failure::Throw("200000000004", kLocation,
                     "Block %s holds no record at index %Iu; its highest index is %d. Ask "
                     "HasRecord before reading.",
                     GetDescriptor().ToString().c_str(), static_cast<std::uint64_t>(index),
                     static_cast<int>(GetMaxIndex()));
}

void FED_StorageBlock::FailHandle(std::uint64_t handle, const char* kind) const {
  FED_Failure::Throw("200000000005", kLocation,
                     "Block %s keeps no %s under the handle %Iu. Handles belong to the block that "
                     "gave them out.",
                     GetDescriptor().ToString().c_str(), kind, handle);
}

void FED_StorageBlock::CopyStrided(unsigned char* to, std::size_t toStep, const unsigned char* from,
                                   std::size_t fromStep, std::size_t size, std::size_t count) {
  if (size == 0) return;  // records without fields: the caller's address may be null
  if (toStep == size && fromStep == size) {
    std::memcpy(to, from, size * count);
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    CopyRecord(to + i * toStep, from + i * fromStep, size);
  }
}

FED_IntSetIntvl<int> FED_StorageBlock::GetRecordIndices() const {
  FED_IntSetIntvl<int> indices;
  PresentRuns(indices);
  return indices;
}

void FED_StorageBlock::GetRecordIndices(FED_IntSetIntvl<int>& out) const { PresentRuns(out); }

void FED_StorageBlock::GetRecordIndices(std::vector<std::uint64_t>& out) const {
  out.clear();
  for (const auto& run : GetRecordIndices()) {
    for (std::int64_t index = run.lo; index <= run.hi; ++index) {
      out.push_back(static_cast<std::uint64_t>(index));
    }
  }
}

void FED_StorageBlock::SetInteger(std::size_t index, int value) {
  WriteColumn(Require(m_IntegerField, "integer"), index, 1, &value);
}

int FED_StorageBlock::GetInteger(std::size_t index) const {
  int value = 0;
  ReadColumn(Require(m_IntegerField, "integer"), index, 1, &value);
  return value;
}

void FED_StorageBlock::SetScalar(std::size_t index, double value) {
  WriteColumn(Require(m_ScalarField, "scalar"), index, 1, &value);
}

double FED_StorageBlock::GetScalar(std::size_t index) const {
  double value = 0;
  ReadColumn(Require(m_ScalarField, "scalar"), index, 1, &value);
  return value;
}

void FED_StorageBlock::SetVector(std::size_t index, const double* values) {
  WriteColumn(Require(m_VectorField, "vector"), index, 1, values);
}

void FED_StorageBlock::GetVector(std::size_t index, double* values) const {
  ReadColumn(Require(m_VectorField, "vector"), index, 1, values);
}

void FED_StorageBlock::SetTensor(std::size_t index, const double* values) {
  WriteColumn(Require(m_TensorField, "tensor"), index, 1, values);
}

void FED_StorageBlock::GetTensor(std::size_t index, double* values) const {
  ReadColumn(Require(m_TensorField, "tensor"), index, 1, values);
}

// A block with field data has one field, so its records are the values themselves.
std::vector<double> FED_StorageBlock::GetFieldData() const {
  const auto width = static_cast<std::size_t>(GetFieldDim());
  if (width == 0) return {};
  FED_IntSetIntvl<int> indices;
  PresentRuns(indices);
  std::vector<double> values(width * static_cast<std::size_t>(indices.Size()));
  double* out = values.data();
  for (const auto& run : indices) {
    const auto count = static_cast<std::size_t>(run.hi) - static_cast<std::size_t>(run.lo) + 1;
    ReadRun(static_cast<std::size_t>(run.lo), count, out);
    out += width * count;
  }
  return values;
}
