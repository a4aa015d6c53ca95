#pragma once

#include <functional>
#include <set>

#include "QeltaBlockSink.h"
#include "QeltaFieldText.h"

namespace qelta {

/// Passes the blocks of some keys on to another sink, perhaps under changed keys, and drops the
/// others; ids and names are all passed on.
class QeltaSelectingSink : public QeltaBlockSink {
 public:
  using Accepts = std::function<bool(const FED_DataDescriptor&)>;

  /// The message id of the failure when the changes give two blocks one key.
  static constexpr const char* kCollisionId = "310000000602";

  /// No function accepts all. The target must outlive this object.
  QeltaSelectingSink(QeltaBlockSink& target, Accepts accepts, QeltaKeyChanges changes = {})
      : m_Target(target), m_Accepts(std::move(accepts)), m_Changes(std::move(changes)) {}

  /// Fails when the changes give two blocks one key.
  std::size_t OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                        std::int64_t recordCount) override;
  void WriteRecords(std::size_t block, std::size_t count, const std::int32_t* indices,
                    const void* records) override;
  std::int32_t StoreIntList(std::size_t block, const std::int32_t* values,
                            std::size_t count) override;
  std::int32_t StoreText(std::size_t block, const std::string& text) override;
  void CloseBlock(std::size_t block) override;
  void DropBlock(std::size_t block) override;
  std::int32_t IndexOfId(FED_IdType type, std::int32_t id) override;
  std::int32_t IndexOfName(FED_IdType type, const std::string& name) override;

 private:
  static constexpr std::size_t kDropped = static_cast<std::size_t>(-1);

  QeltaBlockSink& m_Target;
  Accepts m_Accepts;
  QeltaKeyChanges m_Changes;
  std::set<FED_DataDescriptor> m_Changed;
};

}  // namespace qelta
