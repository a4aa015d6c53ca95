#include "FED_MemoryDataBlock.h"

FED_MemoryDataBlock::FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, StorePointer store,
                                         ContentPointer content)
    : TableBlock(descriptor), m_Store(std::move(store)) {
  TakeOrMake(std::move(content));
}

FED_MemoryDataBlock::FED_MemoryDataBlock(const FED_DataDescriptor& descriptor,
                                         const std::string& format, StorePointer store,
                                         ContentPointer content)
    : TableBlock(descriptor, format), m_Store(std::move(store)) {
  TakeOrMake(std::move(content));
}

FED_MemoryDataBlock::~FED_MemoryDataBlock() = default;

void FED_MemoryDataBlock::TakeOrMake(ContentPointer content) {
  TakeContent(content != nullptr
                  ? std::move(content)
                  : std::make_shared<qelta::MemoryContent>(GetFormat(), GetRecordSize()));
}

void FED_MemoryDataBlock::DeleteData() { m_Store->contents.erase(GetDescriptor()); }

void FED_MemoryDataBlock::ChangeProperties(int properties) {
  GetContent()->properties = properties;
  SetProperties(properties);
}
