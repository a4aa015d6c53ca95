#include "QeltaCountingSink.h"

#include <algorithm>

namespace qelta {

std::size_t QeltaCountingSink::OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                                         std::int64_t /*recordCount*/) {
  m_Blocks.push_back({key, format, 0});
  return m_Blocks.size() - 1;
}

void QeltaCountingSink::WriteRecords(std::size_t block, std::size_t count,
                                     const std::int32_t* /*indices*/, const void* /*records*/) {
  m_Blocks[block].recordCount += count;
}

std::int32_t QeltaCountingSink::StoreIntList(std::size_t /*block*/, const std::int32_t* /*values*/,
                                             std::size_t /*count*/) {
  return 0;
}

std::int32_t QeltaCountingSink::StoreText(std::size_t /*block*/, const std::string& /*text*/) {
  return 0;
}

void QeltaCountingSink::CloseBlock(std::size_t /*block*/) {}

// Only the table at the end of a file is dropped, and so is every block behind this one.
void QeltaCountingSink::DropBlock(std::size_t block) {
  const std::size_t kept = std::min(block, m_Blocks.size());
  m_Blocks.erase(m_Blocks.begin() + static_cast<std::ptrdiff_t>(kept), m_Blocks.end());
}

std::int32_t QeltaCountingSink::IndexOfId(FED_IdType /*type*/, std::int32_t /*id*/) { return 0; }

std::int32_t QeltaCountingSink::IndexOfName(FED_IdType /*type*/, const std::string& /*name*/) {
  return 0;
}

}  // namespace qelta
