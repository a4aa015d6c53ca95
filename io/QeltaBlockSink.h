#pragma once

#include <FED_DataDescriptor.h>
#include <FED_IdType.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace qelta {

/// Where an import puts its blocks: a stream of blocks, several of which may be open at a time.
///
/// Records are bytes in the layout of the block's format, without gaps; strings and lists in them
/// are handles that the sink gave out for that block.
class QeltaBlockSink {
 public:
  virtual ~QeltaBlockSink() = default;

  /// Begins the block of a valid key. `format` is empty for a kind of the catalogue;
  /// `recordCount` is a hint. The number returned stands for the block until it is closed or
  /// dropped.
  virtual std::size_t OpenBlock(const FED_DataDescriptor& key, const std::string& format,
                                std::int64_t recordCount) = 0;

  /// Puts record i of `records` at indices[i].
  virtual void WriteRecords(std::size_t block, std::size_t count, const std::int32_t* indices,
                            const void* records) = 0;

  virtual std::int32_t StoreIntList(std::size_t block, const std::int32_t* values,
                                    std::size_t count) = 0;
  virtual std::int32_t StoreText(std::size_t block, const std::string& text) = 0;

  virtual void CloseBlock(std::size_t block) = 0;
  /// The block is incomplete; it must not stay.
  virtual void DropBlock(std::size_t block) = 0;

  /// The index of an external id or name, registered when it is new.
  virtual std::int32_t IndexOfId(FED_IdType type, std::int32_t id) = 0;
  virtual std::int32_t IndexOfName(FED_IdType type, const std::string& name) = 0;

 protected:
  QeltaBlockSink() = default;
  QeltaBlockSink(const QeltaBlockSink&) = default;
  QeltaBlockSink& operator=(const QeltaBlockSink&) = default;
};

}  // namespace qelta
