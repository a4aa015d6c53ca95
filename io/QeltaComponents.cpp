#include "QeltaComponents.h"

#include <BlockMetaData.h>
#include <QeltaBulkAccess.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qelta {
namespace {

constexpr std::size_t kBatchBytes = std::size_t{1} << 20;

template <class Number>
double ReadAs(const unsigned char* place) {
  Number value;
  std::memcpy(&value, place, sizeof value);
  return static_cast<double>(value);
}

// The type of the numbers in a field; BLOCK_DATA_STRING when there are none.
BlockDataType NumberType(BlockDataType type, FED_IdType reference) {
  switch (type) {
    case BLOCK_DATA_INTEGER:
    case BLOCK_DATA_INDEX:
      return reference == ID_TYPE_RECORD_INDEX ? BLOCK_DATA_INTEGER : BLOCK_DATA_STRING;
    case BLOCK_DATA_FLOAT:
      return BLOCK_DATA_FLOAT;
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_TIME:
    case BLOCK_DATA_VECTOR:
    case BLOCK_DATA_TENSOR:
      return BLOCK_DATA_DOUBLE;
    default:
      return BLOCK_DATA_STRING;
  }
}

}  // namespace

double QeltaComponent::Read(const unsigned char* record) const {
  if (type == BLOCK_DATA_INTEGER) return ReadAs<std::int32_t>(record + place);
  return type == BLOCK_DATA_FLOAT ? ReadAs<float>(record + place) : ReadAs<double>(record + place);
}

const std::vector<std::string>& ComponentNames(BlockDataType type) {
  static const std::vector<std::string> kOne = {""};
  static const std::vector<std::string> kVector = {".x", ".y", ".z"};
  static const std::vector<std::string> kTensor = {".xx", ".yy", ".zz", ".xy", ".yz", ".zx"};
  return type == BLOCK_DATA_VECTOR ? kVector : type == BLOCK_DATA_TENSOR ? kTensor : kOne;
}

std::vector<QeltaComponent> NumbersOf(const FED_DataBlock& block) {
  const FED_OnfMetaData& kind = MetaDataOf(block);
  std::vector<QeltaComponent> numbers;
  for (std::size_t field = 1; field <= kind.dataTypes.size(); ++field) {
    const BlockDataType fieldType = kind.dataTypes[field - 1];
    const BlockDataType type = NumberType(fieldType, kind.idTypes[field]);
    if (type == BLOCK_DATA_STRING) continue;
    std::size_t place = QeltaBulkAccess::PlaceOf(block, field).offset;
    for (const std::string& name : ComponentNames(fieldType)) {
      numbers.push_back({kind.fieldNames[field - 1] + name, field, place, type});
      place += sizeof(double);
    }
  }
  return numbers;
}

void VisitRecords(const FED_DataBlock& block, const QeltaRecordVisitor& visit) {
  const std::size_t size = block.GetRecordSize();
  const std::size_t fitting = kBatchBytes / std::max<std::size_t>(size, 1);
  const std::size_t batch = std::clamp<std::size_t>(fitting, 1, block.GetNumRecords() + 1);
  std::vector<unsigned char> records(batch * size);
  FED_IntSetIntvl<int> runs;
  QeltaBulkAccess::PresentRuns(block, runs);
  for (const auto& run : runs) {
    const auto end = static_cast<std::size_t>(run.hi) + 1;
    for (auto first = static_cast<std::size_t>(run.lo); first < end; first += batch) {
      const std::size_t count = std::min(batch, end - first);
      QeltaBulkAccess::ReadRun(block, first, count, records.data());
      visit(first, count, records.data());
    }
  }
}

FED_IdType RecordIdTypeOf(const FED_DataBlock& block) {
  return RecordIdTypeOf(block.GetDescriptor());
}

FED_IdType RecordIdTypeOf(const FED_DataDescriptor& key) {
  if (key.Has(FED_DataDescriptor::ONF)) {
    const auto kind = static_cast<FED_OnfId>(key.GetInteger(FED_DataDescriptor::ONF));
    return FED_OnfInfoPool::GetOnfInfo(kind).idTypes.front();
  }
  if (!key.Has(FED_DataDescriptor::ID_TYPE)) return ID_TYPE_RECORD_INDEX;
  const int type = key.GetInteger(FED_DataDescriptor::ID_TYPE);
  const bool isKnown = ID_TYPE_NODE <= type && type <= ID_TYPE_RECORD_INDEX;
  return isKnown ? static_cast<FED_IdType>(type) : ID_TYPE_RECORD_INDEX;
}

}  // namespace qelta
