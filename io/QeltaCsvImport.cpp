#include "QeltaCsvImport.h"

#include <FED_Failure.h>
#include <FED_IdMapsPool.h>
#include <FED_OnfMetaData.h>
#include <QeltaStringUtil.h>
#include <RecordCursor.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <set>

#include "CsvTable.h"
#include "QeltaComponents.h"
#include "QeltaNames.h"

namespace qelta {
namespace {

constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

struct Field {
  char type;  // of the format: i, d, S, V or T
  std::size_t column;
  std::size_t count;
};

std::optional<int> ToInteger(const std::string& text) {
  int value = 0;
  if (QeltaStringUtil::ToInt(text, value) != STATUS_OK) return std::nullopt;
  return value;
}

std::optional<double> ToDouble(const std::string& text) {
  const std::string digits = QeltaStringUtil::Trim(text);
  if (digits.empty()) return std::numeric_limits<double>::quiet_NaN();
  const char* const begin = digits.data() + (digits[0] == '+' ? 1 : 0);
  const char* const end = digits.data() + digits.size();
  double value = 0;
  const auto [rest, error] = std::from_chars(begin, end, value);
  if (rest != end || error != std::errc()) return std::nullopt;
  return value;
}

class CsvImport {
 public:
  CsvImport(const CsvTable& table, const std::string& name) : m_Table(table), m_Name(name) {
    for (std::size_t i = 0; i < table.titles.size(); ++i) {
      const std::string title = QeltaStringUtil::Trim(table.titles[i]);
      if (IsSameName(title, "index")) m_IndexColumn = i;
      if (IsSameName(title, "id")) m_IdColumn = i;
    }
    for (std::size_t i = 0; i < table.titles.size();) {
      if (i != m_IndexColumn && i != m_IdColumn) m_Fields.push_back(FieldAt(i));
      i += i == m_IndexColumn || i == m_IdColumn ? 1 : m_Fields.back().count;
    }
    if (m_Fields.empty()) {
      FED_Failure::Throw("310000000805", kLocation, "%s, line 1: there is no column of values.",
                         name.c_str());
    }
  }

  std::string Format() const {
    std::string format = "I|";
    for (const Field& field : m_Fields) format += field.type;
    return format;
  }

  // Fails before anything is written when a row has no place of its own.
  std::vector<std::size_t> Indices(FED_Database& database, FED_IdType type) const {
    std::vector<std::size_t> indices;
    std::set<std::size_t> used;
    for (std::size_t row = 0; row < m_Table.rows.size(); ++row) {
      indices.push_back(IndexOf(row, database, type));
      if (!used.insert(indices.back()).second) {
        Complain("310000000806", row, "there is an earlier row for the same record");
      }
    }
    return indices;
  }

  void Fill(FED_DataRecord& record, std::size_t row) const {
    for (std::size_t i = 0; i < m_Fields.size(); ++i) {
      const Field& field = m_Fields[i];
      const std::string* const texts = &m_Table.rows[row][field.column];
      double values[6] = {};
      for (std::size_t k = 0; k < field.count && field.type != 'S'; ++k) {
        values[k] = *ToDouble(texts[k]);
      }
      if (field.type == 'S') record.SetString(i + 1, *texts);
      if (field.type == 'i') record.SetInteger(i + 1, *ToInteger(*texts));
      if (field.type == 'd') record.SetDouble(i + 1, values[0]);
      if (field.type == 'V') record.SetVector(i + 1, values);
      if (field.type == 'T') record.SetTensor(i + 1, values);
    }
  }

 private:
  static constexpr const char* kLocation = "|%P|QeltaIo|QeltaCsvImport";

  [[noreturn]] void Complain(const char* messageId, std::size_t row,
                             const std::string& cause) const {
    FED_Failure::Throw(messageId, kLocation, "%s, line %Iu: %s.", m_Name.c_str(),
                       static_cast<std::uint64_t>(m_Table.lines[row]), cause.c_str());
  }

  template <class Test>
  bool AllOf(std::size_t column, Test test) const {
    return std::all_of(m_Table.rows.begin(), m_Table.rows.end(),
                       [&](const auto& row) { return bool(test(row[column])); });
  }

  Field FieldAt(std::size_t column) const {
    for (const BlockDataType type : {BLOCK_DATA_VECTOR, BLOCK_DATA_TENSOR}) {
      const std::size_t count = ComponentNames(type).size();
      if (HasComponents(column, ComponentNames(type))) {
        return {type == BLOCK_DATA_VECTOR ? 'V' : 'T', column, count};
      }
    }
    const bool isInteger = AllOf(column, ToInteger);
    return {isInteger ? 'i' : AllOf(column, ToDouble) ? 'd' : 'S', column, 1};
  }

  bool HasComponents(std::size_t first, const std::vector<std::string>& endings) const {
    const std::size_t dot = m_Table.titles[first].rfind('.');
    if (dot == std::string::npos || first + endings.size() > m_Table.titles.size()) return false;
    const std::string name = m_Table.titles[first].substr(0, dot);
    for (std::size_t i = 0; i < endings.size(); ++i) {
      if (!IsSameName(m_Table.titles[first + i], name + endings[i])) return false;
      if (!AllOf(first + i, ToDouble)) return false;
    }
    return true;
  }

  std::size_t IndexOf(std::size_t row, FED_Database& database, FED_IdType type) const {
    const bool usesMap = m_IdColumn != kNoColumn && type != ID_TYPE_RECORD_INDEX;
    const std::size_t column = usesMap || m_IndexColumn == kNoColumn ? m_IdColumn : m_IndexColumn;
    if (column == kNoColumn) return row;
    const std::string& text = m_Table.rows[row][column];
    const std::optional<int> number = ToInteger(text);
    if (usesMap) {
      FED_IdMap& map = database.GetIdMapsPool().GetMap(type);
      const bool isNamed = FED_ID_TYPE_INFO[type].named != 0;
      if (isNamed && !text.empty()) {
        return static_cast<std::size_t>(map.IndexOfNameForWrite(text));
      }
      if (number) return static_cast<std::size_t>(map.IndexOfIdForWrite(*number));
    } else if (number && *number >= 0) {
      return static_cast<std::size_t>(*number);
    }
    Complain("310000000807", row, "'" + text + "' is no " + (usesMap ? "id" : "record index"));
  }

  const CsvTable& m_Table;
  const std::string& m_Name;
  std::size_t m_IndexColumn = kNoColumn;
  std::size_t m_IdColumn = kNoColumn;
  std::vector<Field> m_Fields;
};

FED_IdType IdTypeOf(const FED_DataDescriptor& key) {
  if (!key.Has(FED_DataDescriptor::ID_TYPE)) return ID_TYPE_RECORD_INDEX;
  return static_cast<FED_IdType>(key.GetInteger(FED_DataDescriptor::ID_TYPE));
}

}  // namespace

std::uint64_t ImportCsv(std::istream& text, const std::string& name, FED_Database& database,
                        const FED_DataDescriptor& key) {
  if (key.Has(FED_DataDescriptor::ONF)) {
    FED_Failure::Throw("310000000808", "|%P|QeltaIo|QeltaCsvImport",
                       "Comma-separated values become a custom block, whose key has no ONF.");
  }
  key.CheckValidity();
  const CsvTable table = CsvTable::Read(text, name);
  const CsvImport import(table, name);
  const std::vector<std::size_t> indices = import.Indices(database, IdTypeOf(key));
  const FED_DataDescriptor own = key.Duplicate();
  if (database.HasBlock(own)) database.DeleteDataBlock(own);
  FED_DataBlock& block =
      database.FetchDataBlock(own, 0, static_cast<std::int64_t>(indices.size()), import.Format());
  const RecordWriter record(block);
  for (std::size_t row = 0; row < indices.size(); ++row) {
    import.Fill(*record, row);
    block.SetRecord(indices[row], *record);
  }
  return indices.size();
}

}  // namespace qelta
