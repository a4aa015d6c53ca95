#include "VtuValueArrays.h"

#include <BlockMetaData.h>
#include <QeltaBulkAccess.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace qelta {
namespace {

// What of a record goes into an array.
struct Column {
  std::string name;  // of the array
  std::size_t place = 0;
  BlockDataType type = BLOCK_DATA_DOUBLE;  // of the numbers; string: a reference by name
  FED_IdType names = ID_TYPE_RECORD_INDEX;
  std::vector<std::string> components;

  bool IsReference() const { return type == BLOCK_DATA_STRING; }
  std::size_t NumberSize() const {
    return type == BLOCK_DATA_FLOAT || IsReference() ? sizeof(float) : sizeof(double);
  }
  std::size_t TupleSize() const { return components.size() * NumberSize(); }
};

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  });
  return text;
}

// "XX" for ".xx"; what we call zx is XZ to VTK.
std::string ComponentOf(const QeltaComponent& number) {
  const std::size_t dot = number.title.find('.');
  if (dot == std::string::npos) return "";
  const std::string name = Upper(number.title.substr(dot + 1));
  return name == "ZX" ? "XZ" : name;
}

// Neighbours of one type, none of which is a vector or tensor.
bool AreAlike(const std::vector<QeltaComponent>& numbers, std::size_t fieldCount) {
  return numbers.size() == fieldCount && numbers.size() > 1 &&
         std::all_of(numbers.begin(), numbers.end(), [&](const QeltaComponent& number) {
           return number.type == numbers[0].type && ComponentOf(number).empty();
         });
}

// Fields of element attributes tell what they are; others are told apart by the block's name.
std::string ArrayName(const FED_OnfMetaData& kind, std::size_t field, const std::string& name) {
  const std::string& fieldName = kind.fieldNames[field - 1];
  if (kind.onfId == ONF_ELEMENT_ATTRIBUTES) return fieldName;
  return kind.dataTypes.size() == 1 ? name : name + "_" + fieldName;
}

Column OneColumn(const std::vector<QeltaComponent>& numbers, const std::string& name) {
  Column column{name, numbers[0].place, numbers[0].type, ID_TYPE_RECORD_INDEX, {}};
  for (const QeltaComponent& number : numbers) column.components.push_back(number.title);
  return column;
}

std::vector<Column> ColumnsOf(const FED_DataBlock& block, const std::string& name) {
  const FED_OnfMetaData& kind = MetaDataOf(block);
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  const bool isCustom = kind.onfId == 0;
  if (isCustom && AreAlike(numbers, kind.dataTypes.size())) return {OneColumn(numbers, name)};
  std::vector<Column> columns;
  auto number = numbers.begin();
  for (std::size_t field = 1; field <= kind.dataTypes.size(); ++field) {
    Column column;
    column.name = ArrayName(kind, field, name);
    column.place = QeltaBulkAccess::PlaceOf(block, field).offset;
    for (; number != numbers.end() && number->field == field; ++number) {
      column.type = number->type;
      column.components.push_back(ComponentOf(*number));
    }
    if (kind.dataTypes[field - 1] == BLOCK_DATA_STRING &&
        kind.idTypes[field] != ID_TYPE_RECORD_INDEX) {
      column.type = BLOCK_DATA_STRING;
      column.names = kind.idTypes[field];
      column.components = {""};
    }
    if (!column.components.empty()) columns.push_back(std::move(column));
  }
  return columns;
}

template <class Number>
void Append(std::vector<unsigned char>& bytes, Number number, std::size_t times = 1) {
  for (std::size_t i = 0; i < times; ++i) {
    const std::size_t end = bytes.size();
    bytes.resize(end + sizeof number);
    std::memcpy(&bytes[end], &number, sizeof number);
  }
}

std::vector<unsigned char> MissingTuple(const Column& column) {
  std::vector<unsigned char> bytes;
  const std::size_t count = column.components.size();
  if (column.IsReference()) {
    Append(bytes, std::int32_t{-1}, count);
  } else if (column.type == BLOCK_DATA_FLOAT) {
    Append(bytes, std::numeric_limits<float>::quiet_NaN(), count);
  } else {
    Append(bytes, std::numeric_limits<double>::quiet_NaN(), count);
  }
  return bytes;
}

// The tuples of an array in the order of their positions, those that are missing included.
class Tuples {
 public:
  Tuples(const FED_DataBlock& block, Column column, const QeltaPositions& positions,
         const VtuArray::Sink& sink)
      : m_Column(std::move(column)),
        m_RecordSize(block.GetRecordSize()),
        m_Positions(positions),
        m_Sink(sink),
        m_Missing(MissingTuple(m_Column)) {}

  // Consecutive records.
  void Add(std::size_t index, std::size_t count, const unsigned char* records) {
    const unsigned char* const tuples = Gather(records, count);
    const auto first = m_Positions.Find(index);
    const auto last = m_Positions.Find(index + count - 1);
    if (first && last && *last - *first == count - 1) {
      Put(*first, count, tuples);
      return;
    }
    for (std::size_t i = 0; i < count; ++i) {
      const auto position = m_Positions.Find(index + i);
      if (position) Put(*position, 1, tuples + i * m_Missing.size());
      if (!position) ++m_Strays;
    }
  }

  void End() {
    FillUpTo(m_Positions.GetCount());
    Flush();
  }

  std::uint64_t GetStrays() const { return m_Strays; }

 private:
  static constexpr std::size_t kBatchBytes = std::size_t{1} << 19;

  // The tuples of some records without what stands between them.
  const unsigned char* Gather(const unsigned char* records, std::size_t count) {
    const std::size_t size = m_Missing.size();
    if (size == m_RecordSize && m_Column.type != BLOCK_DATA_INTEGER) return records;
    m_Gathered.resize(count * size);
    for (std::size_t i = 0; i < count; ++i) {
      const unsigned char* const from = records + i * m_RecordSize + m_Column.place;
      unsigned char* const to = &m_Gathered[i * size];
      if (m_Column.type == BLOCK_DATA_INTEGER) {
        Widen(from, to);
      } else {
        std::memcpy(to, from, size);
      }
    }
    return m_Gathered.data();
  }

  void Widen(const unsigned char* from, unsigned char* to) const {
    for (std::size_t i = 0; i < m_Column.components.size(); ++i) {
      std::int32_t number;
      std::memcpy(&number, from + i * sizeof number, sizeof number);
      const double wide = number;
      std::memcpy(to + i * sizeof wide, &wide, sizeof wide);
    }
  }

  void Put(std::size_t position, std::size_t count, const unsigned char* tuples) {
    FillUpTo(position);
    Append(tuples, count * m_Missing.size());
    m_Next += count;
  }

  void FillUpTo(std::size_t position) {
    for (; m_Next < position; ++m_Next) Append(m_Missing.data(), m_Missing.size());
  }

  void Append(const unsigned char* bytes, std::size_t count) {
    if (m_Batch.size() + count > kBatchBytes) Flush();
    if (count > kBatchBytes) {
      m_Sink(bytes, count);
    } else {
      m_Batch.insert(m_Batch.end(), bytes, bytes + count);
    }
  }

  void Flush() {
    if (!m_Batch.empty()) m_Sink(m_Batch.data(), m_Batch.size());
    m_Batch.clear();
  }

  Column m_Column;
  std::size_t m_RecordSize;
  const QeltaPositions& m_Positions;
  const VtuArray::Sink& m_Sink;
  std::vector<unsigned char> m_Missing;
  std::vector<unsigned char> m_Gathered;
  std::vector<unsigned char> m_Batch;
  std::size_t m_Next = 0;
  std::uint64_t m_Strays = 0;
};

const char* TypeName(const Column& column) {
  if (column.IsReference()) return "Int32";
  return column.type == BLOCK_DATA_FLOAT ? "Float32" : "Float64";
}

// Names of a map as VTK keeps texts: each with a zero behind it.
void WriteNames(const FED_IdMap& map, const VtuArray::Sink& sink) {
  VtuNumbers<char> characters(sink);
  std::string name;
  for (std::int64_t index = 0; index <= map.GetMaxIndex(); ++index) {
    name.clear();
    if (map.ContainsIndex(index) && map.HasNameAt(index)) map.NameOfIndex(index, name);
    for (const char c : name) characters.Add(c == '\0' ? '_' : c);
    characters.Add('\0');
  }
  characters.Flush();
}

std::uint64_t BytesOfNames(const FED_IdMap& map) {
  std::uint64_t total = 0;
  WriteNames(map, [&total](const void*, std::size_t bytes) { total += bytes; });
  return total;
}

}  // namespace

std::vector<VtuArray> ValuesOf(const FED_DataBlock& block, const std::string& name,
                               const QeltaPositions& positions, VtuSection section,
                               const std::shared_ptr<std::uint64_t>& strays) {
  std::vector<VtuArray> arrays;
  for (const Column& column : ColumnsOf(block, name)) {
    VtuArray array;
    array.section = section;
    array.name = column.name;
    array.type = TypeName(column);
    array.tuples = positions.GetCount();
    array.components = column.components;
    array.bytes = array.tuples * column.TupleSize();
    const bool isFirst = arrays.empty();
    array.write = [&block, &positions, column, strays, isFirst](const VtuArray::Sink& sink) {
      Tuples tuples(block, column, positions, sink);
      VisitRecords(block, [&](std::size_t index, std::size_t count, const unsigned char* records) {
        tuples.Add(index, count, records);
      });
      tuples.End();
      if (isFirst) *strays += tuples.GetStrays();
    };
    arrays.push_back(std::move(array));
  }
  return arrays;
}

bool HasValues(const FED_DataBlock& block) { return !ColumnsOf(block, "").empty(); }

std::vector<VtuArray> NamesOf(const FED_DataBlock& block, const std::string& name,
                              const FED_IdMapsPool& maps) {
  std::vector<VtuArray> arrays;
  for (const Column& column : ColumnsOf(block, name)) {
    if (!column.IsReference()) continue;
    const FED_IdMap& map = maps.GetMap(column.names);
    VtuArray array;
    array.name = column.name + " names";
    array.type = "String";
    array.tuples = static_cast<std::uint64_t>(map.GetMaxIndex() + 1);
    array.bytes = BytesOfNames(map);
    array.write = [&map](const VtuArray::Sink& sink) { WriteNames(map, sink); };
    arrays.push_back(std::move(array));
  }
  return arrays;
}

VtuArray FactOf(const std::string& name, double value) {
  VtuArray array;
  array.name = name;
  array.tuples = 1;
  array.bytes = sizeof value;
  array.write = [value](const VtuArray::Sink& sink) { sink(&value, sizeof value); };
  return array;
}

VtuArray FactOf(const std::string& name, const std::string& text) {
  VtuArray array;
  array.name = name;
  array.type = "String";
  array.tuples = 1;
  array.bytes = text.size() + 1;
  array.write = [text](const VtuArray::Sink& sink) { sink(text.c_str(), text.size() + 1); };
  return array;
}

}  // namespace qelta
