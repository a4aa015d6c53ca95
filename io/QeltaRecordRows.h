#pragma once

#include <FED_DataBlock.h>
#include <FED_IdMapsPool.h>
#include <FED_OnfMetaData.h>
#include <RecordCursor.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "QeltaCell.h"

namespace qelta {

/// The records of one block as rows: what they belong to, and a cell for each component.
///
/// References to other entities are shown as ids and names. A custom block whose descriptor
/// specifies ID_TYPE is keyed by that map. The block and the maps must outlive this object.
class QeltaRecordRows {
 public:
  QeltaRecordRows(const FED_DataBlock& block, const FED_IdMapsPool& maps);

  /// "node", "material", "record index" ...: what the key of a row is.
  const std::string& KeyTitle() const;

  /// "DISPLACEMENT.x", "TYPE" ...: one for each cell of a row.
  std::vector<std::string> Titles() const;

  /// The index of the record that belongs to an external id; nothing when there is none.
  std::optional<std::size_t> IndexOfId(std::int32_t id) const;

  /// The same for a name.
  std::optional<std::size_t> IndexOfName(const std::string& name) const;

  /// The id or name of the record at an index; "#5" when the id map does not know index 5.
  QeltaScalar Key(std::size_t index) const;

  /// The cells of the record at an index. Fails when there is no record.
  std::vector<QeltaCell> Cells(std::size_t index);

 private:
  void AddCells(std::size_t field, std::vector<QeltaCell>& cells) const;
  QeltaScalar Entity(FED_IdType type, std::int64_t index) const;
  std::vector<QeltaScalar> List(std::size_t field) const;
  std::optional<std::size_t> WithRecord(std::int64_t index) const;

  const FED_DataBlock& m_Block;
  const FED_IdMapsPool& m_Maps;
  const FED_OnfMetaData& m_MetaData;
  FED_IdType m_KeyType;
  RecordReader m_Record;
};

}  // namespace qelta
