#include "QeltaCsvImport.h"

#include <FED_Failure.h>
#include <FED_IdMapsPool.h>
#include <FED_Message.h>
#include <FED_OnfMetaData.h>
#include <QeltaStringUtil.h>
#include <RecordCursor.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "QeltaComponents.h"
#include "QeltaNames.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaIo|QeltaCsvImport";

std::optional<int> ToInteger(const std::string& text) {
  int value = 0;
  if (QeltaStringUtil::ToInt(text, value) != STATUS_OK) return std::nullopt;
  return value;
}

struct Number {
  std::errc error = std::errc();  // result_out_of_range where no double can hold it
  double value = std::numeric_limits<double>::quiet_NaN();

  bool IsText() const { return error == std::errc::invalid_argument; }
};

Number ToNumber(const std::string& text) {
  const std::string digits = QeltaStringUtil::Trim(text);
  Number number;
  if (digits.empty()) return number;
  const char* const end = digits.data() + digits.size();
  const auto result =
      std::from_chars(digits.data() + (digits[0] == '+' ? 1 : 0), end, number.value);
  number.error = result.ptr == end ? result.ec : std::errc::invalid_argument;
  return number;
}

FED_IdType IdTypeOf(const FED_DataDescriptor& key) {
  if (!key.Has(FED_DataDescriptor::ID_TYPE)) return ID_TYPE_RECORD_INDEX;
  return static_cast<FED_IdType>(key.GetInteger(FED_DataDescriptor::ID_TYPE));
}

}  // namespace

QeltaCsvImport::QeltaCsvImport(std::istream& text, std::string name)
    : m_Name(std::move(name)), m_Table(CsvTable::Read(text, m_Name)) {
  for (std::size_t i = 0; i < m_Table.titles.size(); ++i) {
    const std::string title = QeltaStringUtil::Trim(m_Table.titles[i]);
    if (IsSameName(title, "index")) m_IndexColumn = i;
    if (IsSameName(title, "id")) m_IdColumn = i;
  }
  for (std::size_t i = 0; i < m_Table.titles.size();) {
    const bool isPlace = i == m_IndexColumn || i == m_IdColumn;
    if (!isPlace) m_Fields.push_back(FieldAt(i));
    i += isPlace ? 1 : m_Fields.back().count;
  }
  if (m_Fields.empty()) {
    FED_Failure::Throw("310000000805", kLocation, "%s, line 1: there is no column of values.",
                       m_Name.c_str());
  }
}

void QeltaCsvImport::Complain(const char* messageId, std::size_t row,
                              const std::string& cause) const {
  FED_Failure::Throw(messageId, kLocation, "%s, line %Iu: %s.", m_Name.c_str(),
                     static_cast<std::uint64_t>(m_Table.lines[row]), cause.c_str());
}

QeltaCsvImport::Field QeltaCsvImport::FieldAt(std::size_t column) const {
  for (const BlockDataType type : {BLOCK_DATA_VECTOR, BLOCK_DATA_TENSOR}) {
    const std::size_t count = ComponentNames(type).size();
    if (!HasTitles(column, ComponentNames(type))) continue;
    for (std::size_t i = 0; i < count; ++i) RequireNumbers(column + i);
    return {type == BLOCK_DATA_VECTOR ? 'V' : 'T', column, count};
  }
  return {TypeOf(column), column, 1};
}

bool QeltaCsvImport::HasTitles(std::size_t first, const std::vector<std::string>& endings) const {
  const std::size_t dot = m_Table.titles[first].rfind('.');
  if (dot == std::string::npos || first + endings.size() > m_Table.titles.size()) return false;
  const std::string name = m_Table.titles[first].substr(0, dot);
  for (std::size_t i = 0; i < endings.size(); ++i) {
    if (!IsSameName(m_Table.titles[first + i], name + endings[i])) return false;
  }
  return true;
}

char QeltaCsvImport::TypeOf(std::size_t column) const {
  const auto all = [&](auto test) {
    return std::all_of(m_Table.rows.begin(), m_Table.rows.end(),
                       [&](const auto& row) { return test(row[column]); });
  };
  if (all([](const std::string& text) { return ToInteger(text).has_value(); })) return 'i';
  if (!all([](const std::string& text) { return !ToNumber(text).IsText(); })) return 'S';
  RequireNumbers(column);
  return 'd';
}

void QeltaCsvImport::RequireNumbers(std::size_t column) const {
  const std::string& title = m_Table.titles[column];
  for (std::size_t row = 0; row < m_Table.rows.size(); ++row) {
    const std::string& text = m_Table.rows[row][column];
    const Number number = ToNumber(text);
    if (number.IsText()) {
      Complain("310000001000", row,
               FED_MESSAGE("'%s' in the column %s is no number, as the components of vectors and "
                           "tensors are; mend it, or give the column another title",
                           text.c_str(), title.c_str()));
    }
    if (number.error != std::errc()) {
      Complain("310000001001", row,
               FED_MESSAGE("'%s' in the column %s is too large or too small for a double",
                           text.c_str(), title.c_str()));
    }
  }
}

std::string QeltaCsvImport::Format() const {
  std::string format = "I|";
  for (const Field& field : m_Fields) format += field.type;
  return format;
}

std::vector<std::size_t> QeltaCsvImport::Indices(FED_Database& database, FED_IdType type) const {
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

std::size_t QeltaCsvImport::IndexOf(std::size_t row, FED_Database& database,
                                    FED_IdType type) const {
  const bool usesMap = m_IdColumn != kNoColumn && type != ID_TYPE_RECORD_INDEX;
  const std::size_t column = usesMap || m_IndexColumn == kNoColumn ? m_IdColumn : m_IndexColumn;
  if (column == kNoColumn) return row;
  const std::string& text = m_Table.rows[row][column];
  const std::optional<int> number = ToInteger(text);
  if (usesMap) {
    FED_IdMap& map = database.GetIdMapsPool().GetMap(type);
    const bool isNamed = FED_ID_TYPE_INFO[type].named != 0;
    if (isNamed && !text.empty()) return static_cast<std::size_t>(map.IndexOfNameForWrite(text));
    if (number) return static_cast<std::size_t>(map.IndexOfIdForWrite(*number));
  } else if (number && *number >= 0) {
    return static_cast<std::size_t>(*number);
  }
  Complain("310000000807", row, "'" + text + "' is no " + (usesMap ? "id" : "record index"));
}

void QeltaCsvImport::Fill(FED_DataRecord& record, std::size_t row) const {
  for (std::size_t i = 0; i < m_Fields.size(); ++i) {
    const Field& field = m_Fields[i];
    const std::string* const texts = &m_Table.rows[row][field.column];
    double values[6] = {};
    for (std::size_t k = 0; k < field.count && field.type != 'S'; ++k) {
      values[k] = ToNumber(texts[k]).value;
    }
    if (field.type == 'S') record.SetString(i + 1, *texts);
    if (field.type == 'i') record.SetInteger(i + 1, *ToInteger(*texts));
    if (field.type == 'd') record.SetDouble(i + 1, values[0]);
    if (field.type == 'V') record.SetVector(i + 1, values);
    if (field.type == 'T') record.SetTensor(i + 1, values);
  }
}

void QeltaCsvImport::RequireKey(const FED_DataDescriptor& key) {
  if (key.Has(FED_DataDescriptor::ONF)) {
    FED_Failure::Throw("310000000808", kLocation,
                       "Comma-separated values become a custom block, whose key has no ONF.");
  }
  key.CheckValidity();
}

std::uint64_t QeltaCsvImport::Store(FED_Database& database, const FED_DataDescriptor& key) const {
  RequireKey(key);
  const std::vector<std::size_t> indices = Indices(database, IdTypeOf(key));
  const FED_DataDescriptor own = key.Duplicate();
  if (database.HasBlock(own)) database.DeleteDataBlock(own);
  FED_DataBlock& block =
      database.FetchDataBlock(own, 0, static_cast<std::int64_t>(indices.size()), Format());
  const RecordWriter record(block);
  for (std::size_t row = 0; row < indices.size(); ++row) {
    Fill(*record, row);
    block.SetRecord(indices[row], *record);
  }
  return indices.size();
}

}  // namespace qelta
