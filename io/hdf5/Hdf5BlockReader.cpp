#include "Hdf5BlockReader.h"

#include <QeltaBulkAccess.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "Hdf5Attributes.h"
#include "Hdf5ColumnReader.h"
#include "Hdf5Fields.h"
#include "Hdf5Names.h"

namespace qelta {
namespace {

constexpr std::size_t kBatchBytes = std::size_t{1} << 20;

// Where the fields of consecutive rows of the file go.
struct Records {
  unsigned char* bytes;
  std::size_t size;  // of one
  std::size_t count;
};

struct Source {
  hid_t group;
  std::size_t rows;
  std::size_t columnBytes;
  const Hdf5IdMaps& maps;
  FED_DataBlock& block;
};

// What a field of consecutive records is made of.
class FieldReader {
 public:
  FieldReader() = default;
  virtual ~FieldReader() = default;
  FieldReader(const FieldReader&) = delete;
  FieldReader& operator=(const FieldReader&) = delete;

  virtual void Read(const Records& records) = 0;
};

// References to entities of a type; nothing to do when the target has the same.
class References {
 public:
  References(const Hdf5IdMaps& maps, FED_IdType type)
      : m_Maps(maps), m_Type(type), m_Move(type != ID_TYPE_RECORD_INDEX && !maps.AreSame(type)) {}

  bool Move() const { return m_Move; }
  void Translate(std::int32_t& reference) const {
    if (m_Move) reference = m_Maps.Translate(m_Type, reference);
  }

 private:
  const Hdf5IdMaps& m_Maps;
  FED_IdType m_Type;
  bool m_Move;
};

class NumberReader : public FieldReader {
 public:
  NumberReader(const Source& source, const Hdf5Field& field)
      : m_Offset(field.offset),
        m_Size(field.width * H5Tget_size(field.valueType)),
        m_References(source.maps, field.idType),
        m_Column(source.group, field.name, field.valueType, field.width, source.columnBytes) {
    m_Column.RequireRows(source.rows);
  }

  void Read(const Records& records) override {
    m_Values.resize(records.count * m_Size);
    m_Column.Read(m_Values.data(), records.count);
    for (std::size_t i = 0; i < records.count; ++i) {
      std::memcpy(records.bytes + i * records.size + m_Offset, &m_Values[i * m_Size], m_Size);
    }
    if (m_References.Move()) TranslateAll(records);
  }

 private:
  void TranslateAll(const Records& records) const {
    for (std::size_t i = 0; i < records.count; ++i) {
      unsigned char* const place = records.bytes + i * records.size + m_Offset;
      std::int32_t reference = 0;
      std::memcpy(&reference, place, sizeof reference);
      m_References.Translate(reference);
      std::memcpy(place, &reference, sizeof reference);
    }
  }

  std::size_t m_Offset;
  std::size_t m_Size;
  References m_References;
  Hdf5ColumnReader m_Column;
  std::vector<unsigned char> m_Values;
};

// A field that is the handle of something that the block keeps.
class HandleReader : public FieldReader {
 public:
  void Read(const Records& records) override {
    for (std::size_t i = 0; i < records.count; ++i) {
      const auto handle = static_cast<std::uint32_t>(StoreNext());
      std::memcpy(records.bytes + i * records.size + m_Offset, &handle, sizeof handle);
    }
  }

 protected:
  explicit HandleReader(std::size_t offset) : m_Offset(offset) {}
  // Handle 0 is the empty content.
  virtual std::uint64_t StoreNext() = 0;

 private:
  std::size_t m_Offset;
};

class TextReader : public HandleReader {
 public:
  TextReader(const Source& source, const Hdf5Field& field)
      : HandleReader(field.offset),
        m_Block(source.block),
        m_Column(source.group, field.name, source.rows) {}

 private:
  std::uint64_t StoreNext() override {
    const std::string text = m_Column.Read();
    return text.empty() ? 0 : m_Block.SetString(text);
  }

  FED_DataBlock& m_Block;
  Hdf5TextReader m_Column;
};

template <class Value>
class ListReader : public HandleReader {
 public:
  ListReader(const Source& source, const Hdf5Field& field)
      : HandleReader(field.offset),
        m_Block(source.block),
        m_IsSet(field.isSet),
        m_References(source.maps, field.idType),
        m_Group(OpenGroup(source.group, field.name)),
        m_Offsets(m_Group, hdf5::kOffsets, H5T_NATIVE_UINT64, 1, source.columnBytes),
        m_Values(m_Group, hdf5::kValues, field.valueType, 1, source.columnBytes) {
    m_Offsets.RequireRows(source.rows + 1);
    m_Offsets.Read(&m_End, 1);
    if (m_End != 0) m_Offsets.Complain("does not begin with 0");
  }

 private:
  std::uint64_t StoreNext() override {
    const std::uint64_t begin = m_End;
    m_Offsets.Read(&m_End, 1);
    if (m_End < begin || m_End - begin > m_Values.GetLeft()) {
      m_Offsets.Complain("leads beyond the values");
    }
    m_List.resize(static_cast<std::size_t>(m_End - begin));
    m_Values.Read(m_List.data(), m_List.size());
    return m_List.empty() ? 0 : Store(m_List);
  }

  std::uint64_t Store(const std::vector<double>& list) {
    return m_Block.SetDoubleList(list.data(), list.size());
  }
  std::uint64_t Store(std::vector<std::int32_t>& list) {
    if (m_References.Move()) {
      for (std::int32_t& reference : list) m_References.Translate(reference);
      if (m_IsSet) std::sort(list.begin(), list.end());
    }
    return m_Block.SetIntList(list.data(), list.size());
  }

  FED_DataBlock& m_Block;
  bool m_IsSet;
  References m_References;
  Hdf5Handle m_Group;
  Hdf5ColumnReader m_Offsets;
  Hdf5ColumnReader m_Values;
  std::uint64_t m_End = 0;
  std::vector<Value> m_List;
};

std::unique_ptr<FieldReader> MakeReader(const Source& source, const Hdf5Field& field) {
  switch (field.form) {
    case Hdf5Field::TEXTS:
      return std::make_unique<TextReader>(source, field);
    case Hdf5Field::INTEGER_LISTS:
      return std::make_unique<ListReader<std::int32_t>>(source, field);
    case Hdf5Field::DOUBLE_LISTS:
      return std::make_unique<ListReader<double>>(source, field);
    default:
      return std::make_unique<NumberReader>(source, field);
  }
}

// The indices of the records in the target.
class IndexReader {
 public:
  IndexReader(hid_t group, const Hdf5Catalogue::Block& source, const Hdf5IdMaps& maps)
      : m_Type(RecordIdTypeOf(source.key)),
        m_NeedsIds(source.key.Has(FED_DataDescriptor::ONF)),
        m_Maps(maps),
        m_References(maps, m_Type),
        m_Column(group, hdf5::kIndex, H5T_NATIVE_INT32) {
    m_Column.RequireRows(source.records);
  }

  void Read(std::vector<std::int32_t>& indices) {
    m_Column.Read(indices.data(), indices.size());
    for (const std::int32_t index : indices) {
      if (index <= m_Last) m_Column.Complain("is not in ascending order from 0 on");
      m_Last = index;
    }
    if (!m_References.Move()) return;
    for (std::int32_t& index : indices) {
      if (m_NeedsIds || m_Maps.Knows(m_Type, index)) m_References.Translate(index);
    }
  }

 private:
  FED_IdType m_Type;
  bool m_NeedsIds;  // else records without one keep their index
  const Hdf5IdMaps& m_Maps;
  References m_References;
  Hdf5ColumnReader m_Column;
  std::int32_t m_Last = -1;
};

void WriteRecords(FED_DataBlock& block, const std::vector<std::int32_t>& indices,
                  const unsigned char* records) {
  for (std::size_t first = 0; first < indices.size();) {
    std::size_t end = first + 1;
    while (end < indices.size() && indices[end] - 1 == indices[end - 1]) ++end;
    QeltaBulkAccess::WriteRun(block, static_cast<std::size_t>(indices[first]), end - first,
                              records + first * block.GetRecordSize());
    first = end;
  }
}

}  // namespace

void ReadHdf5Block(hid_t group, const Hdf5Catalogue::Block& source, const Hdf5IdMaps& maps,
                   FED_DataBlock& block, const std::function<void(std::size_t count)>& onRecords) {
  const std::vector<Hdf5Field> fields = FieldsOf(*source.kind);
  const auto rows = static_cast<std::size_t>(source.records);
  IndexReader indexReader(group, source, maps);
  const Source fieldSource{group, rows, ChunkBytesFor(fields.size()), maps, block};
  std::vector<std::unique_ptr<FieldReader>> readers;
  readers.reserve(fields.size());
  for (const Hdf5Field& field : fields) readers.push_back(MakeReader(fieldSource, field));
  const std::size_t size = block.GetRecordSize();
  const std::size_t batch = std::max<std::size_t>(kBatchBytes / std::max<std::size_t>(size, 16), 1);
  std::vector<std::int32_t> indices;
  std::vector<unsigned char> records;
  for (std::size_t done = 0; done < rows; done += indices.size()) {
    indices.resize(std::min(batch, rows - done));
    records.resize(indices.size() * size);
    indexReader.Read(indices);
    for (const auto& reader : readers) reader->Read({records.data(), size, indices.size()});
    WriteRecords(block, indices, records.data());
    onRecords(indices.size());
  }
}

int ReadHdf5Properties(hid_t group) {
  return ReadInteger(group, hdf5::kProperties, std::numeric_limits<int>::min(),
                     std::numeric_limits<int>::max());
}

}  // namespace qelta
