#include "FED_FileDataBlock.h"

#include <utility>

FED_FileDataBlock::FED_FileDataBlock(const FED_DataDescriptor& descriptor, StorePointer store)
    : TableBlock(descriptor), m_Store(std::move(store)) {}

FED_FileDataBlock::FED_FileDataBlock(const FED_DataDescriptor& descriptor,
                                     const std::string& format, StorePointer store)
    : TableBlock(descriptor, format), m_Store(std::move(store)) {}

FED_FileDataBlock::~FED_FileDataBlock() = default;

void FED_FileDataBlock::DeleteData() { m_Store->Delete(GetDescriptor()); }

void FED_FileDataBlock::FlushToDisk() { m_Store->CountClosing(); }
