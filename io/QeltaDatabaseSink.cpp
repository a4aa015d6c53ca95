#include "QeltaDatabaseSink.h"

#include <FED_Failure.h>
#include <FED_IdMapsPool.h>
#include <QeltaBulkAccess.h>

#include <limits>

namespace qelta {
namespace {

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
  m_Open.push_back(&block);
  return m_Open.size() - 1;
}

void QeltaDatabaseSink::WriteRecords(std::size_t block, std::size_t count,
                                     const std::int32_t* indices, const void* records) {
  FED_DataBlock& target = *m_Open[block];
  const auto* bytes = static_cast<const unsigned char*>(records);
  for (std::size_t done = 0; done < count;) {
    const std::size_t length = RunLength(indices + done, count - done);
    QeltaBulkAccess::WriteRun(target, static_cast<std::size_t>(indices[done]), length,
                              bytes + done * target.GetRecordSize());
    done += length;
  }
}

std::int32_t QeltaDatabaseSink::StoreIntList(std::size_t block, const std::int32_t* values,
                                             std::size_t count) {
  return static_cast<std::int32_t>(m_Open[block]->SetIntList(values, count));
}

std::int32_t QeltaDatabaseSink::StoreText(std::size_t block, const std::string& text) {
  return static_cast<std::int32_t>(m_Open[block]->SetString(text));
}

void QeltaDatabaseSink::CloseBlock(std::size_t block) {
  m_Open[block] = nullptr;
  while (!m_Open.empty() && m_Open.back() == nullptr) m_Open.pop_back();
}

void QeltaDatabaseSink::DropBlock(std::size_t block) {
  const FED_DataDescriptor key = m_Open[block]->GetDescriptor().Duplicate();
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
