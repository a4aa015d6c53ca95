#pragma once

#include <memory>
#include <string>

#include "FileContent.h"
#include "FileStore.h"
#include "TableBlock.h"

/// A block whose content is in a `qelta::FileStore`. Made by `FED_FileDatabase`.
class FED_FileDataBlock final : public qelta::TableBlock<qelta::FileContent> {
 public:
  using StorePointer = std::shared_ptr<qelta::FileStore>;

  /// A block of a catalogued kind; its content is taken over by Attach.
  FED_FileDataBlock(const FED_DataDescriptor& descriptor, StorePointer store);
  /// A custom block.
  FED_FileDataBlock(const FED_DataDescriptor& descriptor, const std::string& format,
                    StorePointer store);

  /// To be called once.
  void Attach(ContentPointer content) { TakeContent(std::move(content)); }

  /// What is written is pending in the store at once.
  void FlushDestroy() override {}
  void DeleteData() override;
  /// Counts: a save asks for it before it closes the block.
  void FlushToDisk() override;

 protected:
  ~FED_FileDataBlock() override;

 private:
  StorePointer m_Store;
};
