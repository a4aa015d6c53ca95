#pragma once

#include <memory>
#include <string>

#include "MemoryStore.h"
#include "TableBlock.h"

/// A block whose content is in a `qelta::MemoryStore`. Made by `FED_MemoryDatabase`: with new,
/// empty content, or over content that is there already.
class FED_MemoryDataBlock final : public qelta::TableBlock<qelta::MemoryContent> {
 public:
  using StorePointer = std::shared_ptr<qelta::MemoryStore>;

  /// A block of a catalogued kind.
  FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, StorePointer store,
                      ContentPointer content = nullptr);
  /// A custom block.
  FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, const std::string& format,
                      StorePointer store, ContentPointer content = nullptr);

  void ChangeProperties(int properties);

  void FlushDestroy() override {}
  void DeleteData() override;
  /// Counts: a save asks for it before it closes the block.
  void FlushToDisk() override { ++m_Store->flushes; }

  const void* FindRun(std::size_t first, std::size_t& count) const override {
    return GetContent()->FindRun(first, count);
  }

 protected:
  ~FED_MemoryDataBlock() override;

 private:
  void TakeOrMake(ContentPointer content);

  StorePointer m_Store;
};
