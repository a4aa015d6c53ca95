#pragma once

#include <vector>

#include "QeltaBlockSink.h"

namespace qelta {

/// Keeps what blocks there are, and none of their records.
class QeltaCountingSink : public QeltaBlockSink {
 public:
  struct Block {
    FED_DataDescriptor key;
    std::string format;  ///< of a custom block, else empty
    std::uint64_t recordCount;
  };

  /// The blocks that were opened and not dropped, in the order of the import.
  const std::vector<Block>& GetBlocks() const { return m_Blocks; }

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
  std::vector<Block> m_Blocks;
};

}  // namespace qelta
