#pragma once

#include <algorithm>
#include <vector>

#include "QeltaBlockSink.h"

namespace qelta {

/// Passes chosen blocks on to another sink and drops the others; ids and names are all passed on.
class QeltaSelectingSink : public QeltaBlockSink {
 public:
  /// Both must outlive this object.
  QeltaSelectingSink(QeltaBlockSink& target, const std::vector<FED_DataDescriptor>& keys)
      : m_Target(target), m_Keys(keys) {}

  std::size_t OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                        std::int64_t recordCount) override {
    const bool isChosen = std::any_of(m_Keys.begin(), m_Keys.end(),
                                      [&](const auto& chosen) { return chosen.EqualTo(key); });
    return isChosen ? m_Target.OpenBlock(key, format, recordCount) : kDropped;
  }
  void WriteRecords(std::size_t block, std::size_t count, const std::int32_t* indices,
                    const void* records) override {
    if (block != kDropped) m_Target.WriteRecords(block, count, indices, records);
  }
  std::int32_t StoreIntList(std::size_t block, const std::int32_t* values,
                            std::size_t count) override {
    return block == kDropped ? 0 : m_Target.StoreIntList(block, values, count);
  }
  std::int32_t StoreText(std::size_t block, const std::string& text) override {
    return block == kDropped ? 0 : m_Target.StoreText(block, text);
  }
  void CloseBlock(std::size_t block) override {
    if (block != kDropped) m_Target.CloseBlock(block);
  }
  void DropBlock(std::size_t block) override {
    if (block != kDropped) m_Target.DropBlock(block);
  }
  std::int32_t IndexOfId(FED_IdType type, std::int32_t id) override {
    return m_Target.IndexOfId(type, id);
  }
  std::int32_t IndexOfName(FED_IdType type, const std::string& name) override {
    return m_Target.IndexOfName(type, name);
  }

 private:
  static constexpr std::size_t kDropped = static_cast<std::size_t>(-1);

  QeltaBlockSink& m_Target;
  const std::vector<FED_DataDescriptor>& m_Keys;
};

}  // namespace qelta
