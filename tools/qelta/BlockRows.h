#pragma once

#include <FED_DataBlock.h>
#include <FED_Database.h>
#include <FED_IntSetIntvl.h>
#include <QeltaRecordRows.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "NumberRanges.h"
#include "RowOutput.h"

namespace qelta {

/// Which records and fields of a block are wanted; everything, unless something is said.
struct RowChoice {
  std::string ids;
  std::vector<std::string> names;
  std::string rows;
  std::vector<std::string> fields;
  std::size_t head = std::numeric_limits<std::size_t>::max();
};

/// Fails as a wrong command line does when no block has one of the fields: blocks may lack some.
void RequireFields(const std::vector<std::string>& names, const FED_Database& database,
                   const std::vector<FED_DataDescriptor>& keys);

/// The records of a block on their way to an output.
class BlockRows {
 public:
  BlockRows(const FED_DataBlock& block, const FED_IdMapsPool& maps, const RowChoice& choice,
            OutputFormat format);

  /// Returns the number of rows; a block that has none of the wanted fields has none. No record
  /// comes twice.
  std::size_t Print(RowOutput& output);

 private:
  bool IsTable() const { return m_Format == OutputFormat::Table; }
  bool IsFull() const { return m_Count >= m_Choice.head; }

  void ChooseCells();
  std::vector<OutputColumn> Columns() const;
  std::vector<Table::Align> Aligns() const;
  void AddByKeys(RowOutput& output);
  void AddById(int id, RowOutput& output);
  bool HasIdIn(const NumberRange& range, std::size_t index) const;
  void ComplainAbout(const std::string& key) const;
  void AddByIndices(RowOutput& output);
  template <class Test>
  void AddIf(Test test, RowOutput& output);
  void AddRow(std::size_t index, RowOutput& output);

  const FED_DataBlock& m_Block;
  QeltaRecordRows m_Rows;
  const RowChoice& m_Choice;
  OutputFormat m_Format;
  std::string m_Descriptor;
  std::vector<std::string> m_Titles;
  std::vector<std::size_t> m_Cells;
  FED_IntSetIntvl<int> m_Shown;  // ranges may overlap
  std::size_t m_Count = 0;
};

}  // namespace qelta
