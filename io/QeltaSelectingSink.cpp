#include "QeltaSelectingSink.h"

#include <FED_Failure.h>

namespace qelta {

std::size_t QeltaSelectingSink::OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                                          std::int64_t recordCount) {
  if (m_Accepts && !m_Accepts(key)) return kDropped;
  if (m_Changes.IsEmpty()) return m_Target.OpenBlock(key, format, recordCount);
  FED_DataDescriptor changed = key.Duplicate();
  m_Changes.ApplyTo(changed);
  if (!m_Changed.insert(changed).second) {
    FED_Failure::Throw(kCollisionId, "|%P|QeltaIo|QeltaSelectingSink",
                       "With these changes of keys %s and another block would both become %s; "
                       "select fewer blocks or change other fields.",
                       key.ToString().c_str(), changed.ToString().c_str());
  }
  return m_Target.OpenBlock(changed, format, recordCount);
}

void QeltaSelectingSink::WriteRecords(std::size_t block, std::size_t count,
                                      const std::int32_t* indices, const void* records) {
  if (block != kDropped) m_Target.WriteRecords(block, count, indices, records);
}

std::int32_t QeltaSelectingSink::StoreIntList(std::size_t block, const std::int32_t* values,
                                              std::size_t count) {
  return block == kDropped ? 0 : m_Target.StoreIntList(block, values, count);
}

std::int32_t QeltaSelectingSink::StoreText(std::size_t block, const std::string& text) {
  return block == kDropped ? 0 : m_Target.StoreText(block, text);
}

void QeltaSelectingSink::CloseBlock(std::size_t block) {
  if (block != kDropped) m_Target.CloseBlock(block);
}

void QeltaSelectingSink::DropBlock(std::size_t block) {
  if (block != kDropped) m_Target.DropBlock(block);
}

std::int32_t QeltaSelectingSink::IndexOfId(FED_IdType type, std::int32_t id) {
  return m_Target.IndexOfId(type, id);
}

std::int32_t QeltaSelectingSink::IndexOfName(FED_IdType type, const std::string& name) {
  return m_Target.IndexOfName(type, name);
}

}  // namespace qelta
