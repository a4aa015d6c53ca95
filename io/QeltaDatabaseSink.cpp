#include "QeltaDatabaseSink.h"

#include <FED_Failure.h>
#include <FED_IdMapsPool.h>

#include <cstring>
#include <limits>
#include <memory>

namespace qelta {
namespace {

template <class T>
T Load(const unsigned char* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

void SetField(FED_DataRecord& record, std::size_t field, const unsigned char* bytes) {
  double values[6];
  const std::size_t size = record.GetDataTypeSize(field);
  switch (size) {
    case 4:
      record.SetInteger(field, Load<std::int32_t>(bytes));
      break;
    case 8:
      record.SetDouble(field, Load<double>(bytes));
      break;
    case 24:
      record.SetVector(field, static_cast<double*>(std::memcpy(values, bytes, size)));
      break;
    default:
      record.SetTensor(field, static_cast<double*>(std::memcpy(values, bytes, size)));
  }
}

void SetFields(FED_DataRecord& record, const unsigned char* bytes) {
  for (std::size_t field = 1; field <= record.Size(); ++field) {
    SetField(record, field, bytes);
    bytes += record.GetDataTypeSize(field);
  }
}

// Number of indices from the first on that follow one another.
std::size_t RunLength(const std::int32_t* indices, std::size_t count) {
  std::size_t length = 1;
  while (length < count && indices[length] == indices[length - 1] + 1) ++length;
  return length;
}

std::int32_t ToIndex(std::int64_t index) {
  if (index < 0 || index > std::numeric_limits<std::int32_t>::max()) {
    FED_Failure::Throw("310000000601", "|%P|QeltaIo|QeltaDatabaseSink",
                       "The id map gives an index beyond the records that a block can have.");
  }
  return static_cast<std::int32_t>(index);
}

}  // namespace

std::size_t QeltaDatabaseSink::OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                                         std::int64_t recordCount) {
  const FED_DataDescriptor own = key.Duplicate();
  if (m_Database.HasBlock(own)) m_Database.DeleteDataBlock(own);
  FED_DataBlock& block = format.empty()
                             ? m_Database.FetchDataBlock(own, static_cast<std::size_t>(recordCount))
                             : m_Database.FetchDataBlock(own, 0, recordCount, format);
  m_Open.push_back({&block, dynamic_cast<FED_RecordRuns*>(&block)});
  return m_Open.size() - 1;
}

void QeltaDatabaseSink::WriteRecords(std::size_t block, std::size_t count,
                                     const std::int32_t* indices, const void* records) {
  const OpenBlockState& state = m_Open[block];
  const auto* bytes = static_cast<const unsigned char*>(records);
  if (state.runs == nullptr) {
    WriteSingly(*state.block, count, indices, bytes);
    return;
  }
  for (std::size_t done = 0; done < count;) {
    const std::size_t length = RunLength(indices + done, count - done);
    state.runs->WriteRun(static_cast<std::size_t>(indices[done]), length,
                         bytes + done * state.block->GetRecordSize());
    done += length;
  }
}

void QeltaDatabaseSink::WriteSingly(FED_DataBlock& block, std::size_t count,
                                    const std::int32_t* indices, const unsigned char* records) {
  const auto giveBack = [&block](FED_DataRecord* record) { block.DeleteDataRecord(*record); };
  const std::unique_ptr<FED_DataRecord, decltype(giveBack)> record(&block.CreateDataRecord(),
                                                                   giveBack);
  for (std::size_t i = 0; i < count; ++i) {
    SetFields(*record, records + i * block.GetRecordSize());
    block.SetRecord(static_cast<std::size_t>(indices[i]), *record);
  }
}

std::int32_t QeltaDatabaseSink::StoreIntList(std::size_t block, const std::int32_t* values,
                                             std::size_t count) {
  return static_cast<std::int32_t>(m_Open[block].block->SetIntList(values, count));
}

std::int32_t QeltaDatabaseSink::StoreText(std::size_t block, const std::string& text) {
  return static_cast<std::int32_t>(m_Open[block].block->SetString(text));
}

void QeltaDatabaseSink::CloseBlock(std::size_t block) {
  m_Open[block] = {nullptr, nullptr};
  while (!m_Open.empty() && m_Open.back().block == nullptr) m_Open.pop_back();
}

void QeltaDatabaseSink::DropBlock(std::size_t block) {
  const FED_DataDescriptor key = m_Open[block].block->GetDescriptor().Duplicate();
  CloseBlock(block);
  m_Database.DeleteDataBlock(key);
}

std::int32_t QeltaDatabaseSink::IndexOfId(FED_IdType type, std::int32_t id) {
  return ToIndex(m_Database.GetIdMapsPool().GetMap(type).IndexOfIdForWrite(id));
}

std::int32_t QeltaDatabaseSink::IndexOfName(FED_IdType type, const std::string& name) {
  return ToIndex(m_Database.GetIdMapsPool().GetMap(type).IndexOfNameForWrite(name));
}

}  // namespace qelta
