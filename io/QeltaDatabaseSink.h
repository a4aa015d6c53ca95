#pragma once

#include <FED_DataBlock.h>
#include <FED_Database.h>

#include <vector>

#include "QeltaBlockSink.h"

namespace qelta {

/// Writes into a database. A block that stands there under the same key is replaced; ids and names
/// are looked up in the database's id maps and registered there.
class QeltaDatabaseSink : public QeltaBlockSink {
 public:
  /// The database must be initialised and outlive this object.
  explicit QeltaDatabaseSink(FED_Database& database) : m_Database(database) {}

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
  FED_Database& m_Database;
  std::vector<FED_DataBlock*> m_Open;  // null: the place is free
};

}  // namespace qelta
