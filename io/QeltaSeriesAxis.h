#pragma once

#include <FED_DataDescriptor.h>
#include <FED_Database.h>
#include <FED_OnfId.h>

#include <optional>
#include <string>
#include <vector>

namespace qelta {

/// What the values of series are put in order by.
class QeltaSeriesAxis {
 public:
  using Field = FED_DataDescriptor::ResultIndex;

  /// A field of the key, a value of the frame, "index", or else a number of the records by its
  /// text. A field that holds texts is a failure.
  explicit QeltaSeriesAxis(const std::string& text);
  explicit QeltaSeriesAxis(Field field);
  static QeltaSeriesAxis Index() { return QeltaSeriesAxis("index"); }

  /// Each record of a block has an x of its own, not the block.
  bool IsWithinBlocks() const { return m_IsIndex || !m_Column.empty(); }
  bool IsIndex() const { return m_IsIndex; }
  /// Empty when it is no number of the records.
  const std::string& GetColumn() const { return m_Column; }

  /// The kind of block that holds the value of a frame.
  std::optional<FED_OnfId> GetFrameKind() const { return m_FrameKind; }

  /// The x of a block; nothing when it has none, 0 when the x are within blocks. The frame of a
  /// block has the same ITERATION, STATE, LOADCASE, SUBSTEP, ANALYSIS and INCREMENT in its key.
  std::optional<double> XOf(const FED_Database& database, const FED_DataDescriptor& key) const;

  const std::string& GetName() const { return m_Name; }
  std::string GetUnit() const;
  bool IsWhole() const { return m_IsIndex || m_Field.has_value(); }

  /// The fields that hold numbers, in the order in which they are preferred as x.
  static const std::vector<Field>& PreferredFields();

 private:
  std::string m_Name;
  std::string m_Column;
  bool m_IsIndex = false;
  std::optional<Field> m_Field;
  std::optional<FED_OnfId> m_FrameKind;
};

}  // namespace qelta
