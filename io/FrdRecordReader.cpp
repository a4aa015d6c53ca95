#include "FrdRecordReader.h"

#include <FED_Message.h>

#include <algorithm>
#include <cstring>

#include "FrdColumns.h"
#include "FrdTableLines.h"

namespace qelta {
namespace {

constexpr std::size_t kKeyWidth = 3;
constexpr std::size_t kValueWidth = 12;
constexpr std::size_t kValuesPerLine = 6;

// Records are unaligned.
template <class T>
T Load(const char* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

}  // namespace

FrdRecordReader::FrdRecordReader(FrdSource& source, FrdIdIndex& nodes)
    : m_Source(source), m_Nodes(nodes) {}

void FrdRecordReader::Read(const FrdTable& table, std::size_t valueCount, const Delivery& deliver) {
  m_Deliver = &deliver;
  m_Seen.Clear();
  StartBatch(valueCount);
  switch (table.encoding) {
    case FrdEncoding::ShortText:
      ReadText(5);
      break;
    case FrdEncoding::LongText:
      ReadText(10);
      break;
    case FrdEncoding::BinaryFloat:
      ReadBinary<float>(RequireFrdCount(m_Source, table));
      break;
    case FrdEncoding::BinaryDouble:
      ReadBinary<double>(RequireFrdCount(m_Source, table));
      break;
  }
  Deliver();
}

// The solver's counts are sometimes wrong, so the text decides where the table ends.
void FrdRecordReader::ReadText(std::size_t idWidth) {
  std::string_view line;
  while (NextFrdTableLine(m_Source, line)) {
    double* const values = Add(RequireFrdId(m_Source, line.substr(kKeyWidth, idWidth)));
    ReadValues(line, kKeyWidth + idWidth, values);
  }
}

void FrdRecordReader::ReadValues(std::string_view line, std::size_t start, double* values) {
  for (std::size_t done = 0;;) {
    const std::size_t count = std::min(kValuesPerLine, m_ValueCount - done);
    ReadValuesOfLine(line, start, values + done, count);
    done += count;
    if (done == m_ValueCount) return;
    line = RequireFrdLine(m_Source, " -2");
  }
}

void FrdRecordReader::ReadValuesOfLine(std::string_view line, std::size_t start, double* values,
                                       std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view column = FrdColumn(line, start + i * kValueWidth + 1, kValueWidth);
    if (!ParseFrdDouble(column, values[i])) {
      m_Source.ThrowDamage("310000000301", "the value '" + std::string(column) + "' in column " +
                                               std::to_string(start + i * kValueWidth + 1) +
                                               " is not a number");
    }
  }
  RequireFrdLineEnd(m_Source, line, start + count * kValueWidth);
}

template <class T>
void FrdRecordReader::ReadBinary(std::size_t recordCount) {
  const std::size_t recordSize = sizeof(std::int32_t) + m_ValueCount * sizeof(T);
  for (std::size_t done = 0; done < recordCount;) {
    const std::size_t count = std::min(GetCapacity(), recordCount - done);
    const char* bytes = RequireFrdBytes(m_Source, count * recordSize);
    for (const char* const end = bytes + count * recordSize; bytes != end;) {
      double* const values = Add(RequireFrdId(m_Source, Load<std::int32_t>(bytes)));
      bytes += sizeof(std::int32_t);
      for (std::size_t i = 0; i < m_ValueCount; ++i, bytes += sizeof(T)) {
        values[i] = static_cast<double>(Load<T>(bytes));
      }
    }
    done += count;
  }
}

void FrdRecordReader::StartBatch(std::size_t valueCount) {
  constexpr std::size_t kBatchValues = std::size_t{1} << 14;
  const std::size_t capacity = std::max<std::size_t>(kBatchValues / valueCount, 1);
  m_ValueCount = valueCount;
  m_Count = 0;
  m_Ids.resize(capacity);
  m_Indices.resize(capacity);
  m_Values.resize(capacity * valueCount);
}

// The place for the values of one more record.
double* FrdRecordReader::Add(std::int32_t id) {
  if (m_Count == GetCapacity()) Deliver();
  const std::int32_t index = m_Nodes.FindOrAdd(id);
  if (!m_Seen.Mark(index)) {
    m_Source.ThrowDamage("310000000302", FED_MESSAGE("node %d stands twice in the table", id));
  }
  m_Ids[m_Count] = id;
  m_Indices[m_Count] = index;
  return m_Values.data() + m_ValueCount * m_Count++;
}

void FrdRecordReader::Deliver() {
  if (m_Count > 0) {
    (*m_Deliver)({m_Count, m_ValueCount, m_Ids.data(), m_Indices.data(), m_Values.data()});
  }
  m_Count = 0;
}

}  // namespace qelta
