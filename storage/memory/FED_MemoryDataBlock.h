#pragma once

#include <memory>
#include <string>

#include "FED_StorageBlock.h"
#include "MemoryStore.h"

/// A block whose content is in a `qelta::MemoryStore`. Made by `FED_MemoryDatabase`: with new,
/// empty content, or over content that is there already.
class FED_MemoryDataBlock final : public FED_StorageBlock {
 public:
  using StorePointer = std::shared_ptr<qelta::MemoryStore>;
  using ContentPointer = std::shared_ptr<qelta::MemoryContent>;

  /// A block of a catalogued kind.
  FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, StorePointer store,
                      ContentPointer content = nullptr);
  /// A custom block.
  FED_MemoryDataBlock(const FED_DataDescriptor& descriptor, const std::string& format,
                      StorePointer store, ContentPointer content = nullptr);

  const ContentPointer& GetContent() const { return m_Content; }
  void ChangeProperties(int properties);

  bool HasRecord(std::size_t index) const override { return m_Content->records.Has(index); }
  void SetRecord(std::size_t index, const FED_DataRecord& record) override;
  void GetRecord(std::size_t index, FED_ConstDataRecord& record) const override;
  std::int64_t GetMaxIndex() const override { return m_Content->records.MaxIndex(); }
  /// Nothing to prepare: pages are made on first touch.
  void Reserve(std::size_t) override {}
  void FlushDestroy() override {}

  std::uint64_t GetIntListLen(std::uint64_t handle) const override;
  void GetIntList(std::uint64_t handle, FED_IntArray& out) const override;
  std::uint64_t GetIntList(std::uint64_t handle, int* out) const override;
  using FED_DataBlock::SetIntList;
  std::uint64_t SetIntList(const int* values, std::size_t count) override;
  std::uint64_t GetDoubleListLen(std::uint64_t handle) const override;
  void GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const override;
  std::uint64_t GetDoubleList(std::uint64_t handle, double* out) const override;
  using FED_DataBlock::SetDoubleList;
  std::uint64_t SetDoubleList(const double* values, std::size_t count) override;
  void GetString(std::uint64_t handle, std::string& out) const override;
  std::uint64_t SetString(const std::string& text) override;

  void DeleteData() override;
  /// Counts: a save asks for it before it closes the block.
  void FlushToDisk() override { ++m_Store->flushes; }

  void ReadRun(std::size_t first, std::size_t count, void* records) const override;
  void WriteRun(std::size_t first, std::size_t count, const void* records) override;
  void ReadColumn(std::size_t field, std::size_t first, std::size_t count,
                  void* values) const override;
  void WriteColumn(std::size_t field, std::size_t first, std::size_t count,
                   const void* values) override;
  void PresentRuns(FED_IntSetIntvl<int>& out) const override {
    m_Content->records.PresentRuns(out);
  }
  const void* FindRun(std::size_t first, std::size_t& count) const override {
    return m_Content->records.FindRun(first, count);
  }

 protected:
  ~FED_MemoryDataBlock() override;

 private:
  using Kind = qelta::MemoryArena::Kind;

  void TakeContent(ContentPointer content);
  qelta::MemoryArena::Content FindContent(Kind kind, std::uint64_t handle) const;
  std::uint64_t StoreContent(Kind kind, const void* data, std::size_t count, std::size_t size);

  StorePointer m_Store;
  ContentPointer m_Content;
};
