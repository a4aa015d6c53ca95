#pragma once

#include <FED_Database.h>
#include <FED_IdType.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

#include "CsvTable.h"

namespace qelta {

/// A table of comma-separated values with a header line, on its way into a custom block.
///
/// Columns `index` and `id` tell where a row goes: to the record index, or to the id or name in the
/// id map of the key's ID_TYPE, which learns it; without either, rows are numbered from 0. Every
/// other column is a field: integers if all its values are, else doubles, else texts. Three
/// adjacent columns NAME.x, NAME.y, NAME.z are a vector, and six of them NAME.xx, .yy, .zz, .xy,
/// .yz, .zx a tensor; the block keeps no other part of the titles. Values may stand in double
/// quotes, empty numbers are no numbers.
class QeltaCsvImport {
 public:
  /// Reads all of the text. What is wrong with it, such as a number that no double can hold, is a
  /// failure that names `name`, the line and the column. Memory for the whole table.
  QeltaCsvImport(std::istream& text, std::string name);

  /// Fails when no table can be stored under this key: it has an ONF, or no field at all.
  static void RequireKey(const FED_DataDescriptor& key);

  /// Stores the table and returns the number of its records; a block of this key is replaced. After
  /// a failure, such as two rows for one record, the database is as it was but for ids that it
  /// learnt.
  std::uint64_t Store(FED_Database& database, const FED_DataDescriptor& key) const;

 private:
  static constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

  struct Field {
    char type;  // of the format: i, d, S, V or T
    std::size_t column;
    std::size_t count;
  };

  Field FieldAt(std::size_t column) const;
  bool HasTitles(std::size_t first, const std::vector<std::string>& endings) const;
  char TypeOf(std::size_t column) const;
  void RequireNumbers(std::size_t column) const;
  [[noreturn]] void Complain(const char* messageId, std::size_t row,
                             const std::string& cause) const;
  std::string Format() const;
  std::vector<std::size_t> Indices(FED_Database& database, FED_IdType type) const;
  std::size_t IndexOf(std::size_t row, FED_Database& database, FED_IdType type) const;
  void Fill(FED_DataRecord& record, std::size_t row) const;

  std::string m_Name;
  CsvTable m_Table;
  std::size_t m_IndexColumn = kNoColumn;
  std::size_t m_IdColumn = kNoColumn;
  std::vector<Field> m_Fields;
};

}  // namespace qelta
