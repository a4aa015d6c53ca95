#include "Hdf5BlockWriter.h"

#include <BlockMetaData.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Hdf5Attributes.h"
#include "Hdf5Fields.h"
#include "Hdf5Names.h"

namespace qelta {
namespace {

// What a field of consecutive records becomes.
class FieldWriter {
 public:
  FieldWriter() = default;
  virtual ~FieldWriter() = default;
  FieldWriter(const FieldWriter&) = delete;
  FieldWriter& operator=(const FieldWriter&) = delete;

  virtual void Append(const unsigned char* records, std::size_t count) = 0;
  /// Gives what was written, for its attributes.
  virtual Hdf5Handle Close() = 0;
};

struct Target {
  hid_t group;
  const FED_DataBlock& block;
  const Hdf5Layout& layout;
};

std::uint64_t HandleAt(const unsigned char* place) {
  std::int32_t handle = 0;
  std::memcpy(&handle, place, sizeof handle);
  return static_cast<std::uint64_t>(std::int64_t{handle});
}

class NumberWriter : public FieldWriter {
 public:
  NumberWriter(const Target& target, const Hdf5Field& field)
      : m_Offset(field.offset),
        m_Step(target.block.GetRecordSize()),
        m_Column(target.group, field.name, field.valueType, target.layout, field.width) {}

  void Append(const unsigned char* records, std::size_t count) override {
    m_Column.Append(records + m_Offset, count, m_Step);
  }
  Hdf5Handle Close() override { return m_Column.Close(); }

 private:
  std::size_t m_Offset;
  std::size_t m_Step;
  Hdf5Column m_Column;
};

void GetList(const FED_DataBlock& block, std::uint64_t handle, std::vector<std::int32_t>& list) {
  list.resize(block.GetIntListLen(handle));
  block.GetIntList(handle, list.data());
}

void GetList(const FED_DataBlock& block, std::uint64_t handle, std::vector<double>& list) {
  list.resize(block.GetDoubleListLen(handle));
  block.GetDoubleList(handle, list.data());
}

template <class Value>
class ListWriter : public FieldWriter {
 public:
  ListWriter(const Target& target, const Hdf5Field& field)
      : m_Block(target.block),
        m_Offset(field.offset),
        m_Group(MakeGroup(target.group, field.name)),
        m_Offsets(m_Group, hdf5::kOffsets, H5T_NATIVE_UINT64, target.layout),
        m_Values(m_Group, hdf5::kValues, field.valueType, target.layout) {
    m_Offsets.Append(&m_End, 1);
  }

  void Append(const unsigned char* records, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) {
      GetList(m_Block, HandleAt(records + i * m_Block.GetRecordSize() + m_Offset), m_List);
      m_Values.Append(m_List.data(), m_List.size());
      m_End += m_List.size();
      m_Offsets.Append(&m_End, 1);
    }
  }
  Hdf5Handle Close() override {
    m_Offsets.Close();
    m_Values.Close();
    return std::move(m_Group);
  }

 private:
  const FED_DataBlock& m_Block;
  std::size_t m_Offset;
  Hdf5Handle m_Group;
  Hdf5Column m_Offsets;
  Hdf5Column m_Values;
  std::uint64_t m_End = 0;
  std::vector<Value> m_List;
};

// Calls visit(text) for the field of consecutive records.
template <class Visit>
void VisitTexts(const FED_DataBlock& block, std::size_t offset, const unsigned char* records,
                std::size_t count, Visit visit) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    block.GetString(HandleAt(records + i * block.GetRecordSize() + offset), text);
    visit(text);
  }
}

bool HasNul(const FED_DataBlock& block, std::size_t offset) {
  bool hasNul = false;
  VisitRecords(block, [&](std::size_t, std::size_t count, const unsigned char* records) {
    VisitTexts(block, offset, records, count, [&hasNul](const std::string& text) {
      hasNul = hasNul || text.find('\0') != std::string::npos;
    });
  });
  return hasNul;
}

class TextWriter : public FieldWriter {
 public:
  TextWriter(const Target& target, const Hdf5Field& field)
      : m_Block(target.block),
        m_Offset(field.offset),
        m_Column(target.group, field.name, HasNul(target.block, field.offset), target.layout) {}

  void Append(const unsigned char* records, std::size_t count) override {
    VisitTexts(m_Block, m_Offset, records, count,
               [this](const std::string& text) { m_Column.Append(text); });
  }
  Hdf5Handle Close() override { return m_Column.Close(); }

 private:
  const FED_DataBlock& m_Block;
  std::size_t m_Offset;
  Hdf5TextColumn m_Column;
};

std::unique_ptr<FieldWriter> MakeWriter(const Target& target, const Hdf5Field& field) {
  switch (field.form) {
    case Hdf5Field::TEXTS:
      return std::make_unique<TextWriter>(target, field);
    case Hdf5Field::INTEGER_LISTS:
      return std::make_unique<ListWriter<std::int32_t>>(target, field);
    case Hdf5Field::DOUBLE_LISTS:
      return std::make_unique<ListWriter<double>>(target, field);
    default:
      return std::make_unique<NumberWriter>(target, field);
  }
}

void Describe(hid_t group, const FED_DataBlock& block, std::size_t recordCount) {
  const FED_OnfMetaData& kind = MetaDataOf(block);
  if (!kind.name.empty()) WriteAttribute(group, hdf5::kKind, kind.name);
  if (!kind.unit.empty()) WriteAttribute(group, hdf5::kQuantity, kind.unit);
  WriteAttribute(group, hdf5::kRecordFormat, block.GetFormat());
  WriteAttribute(group, hdf5::kProperties, std::int64_t{block.GetProperties()});
  WriteAttribute(group, hdf5::kRecords, static_cast<std::int64_t>(recordCount));
  WriteAttribute(group, hdf5::kIdType, FED_ID_TYPE_INFO[RecordIdTypeOf(block)].name);
}

void Describe(hid_t object, const Hdf5Field& field) {
  if (field.idType != ID_TYPE_RECORD_INDEX) {
    WriteAttribute(object, hdf5::kIdType, FED_ID_TYPE_INFO[field.idType].name);
  }
  if (!field.components.empty()) WriteAttribute(object, hdf5::kComponents, field.components);
}

}  // namespace

void WriteHdf5Block(hid_t group, const FED_DataBlock& block, Hdf5RecordIds& ids, int deflateLevel,
                    const std::function<void(std::size_t count)>& onRecords) {
  const std::vector<Hdf5Field> fields = FieldsOf(MetaDataOf(block));
  Hdf5Layout layout;
  layout.deflateLevel = deflateLevel;
  Describe(group, block, ids.Write(group, block, layout));
  layout.chunkBytes = ChunkBytesFor(fields.size());
  std::vector<std::unique_ptr<FieldWriter>> writers;
  writers.reserve(fields.size());
  for (const Hdf5Field& field : fields) {
    writers.push_back(MakeWriter({group, block, layout}, field));
  }
  VisitRecords(block, [&](std::size_t, std::size_t count, const unsigned char* records) {
    for (const auto& writer : writers) writer->Append(records, count);
    onRecords(count);
  });
  for (std::size_t i = 0; i < fields.size(); ++i) Describe(writers[i]->Close(), fields[i]);
}

}  // namespace qelta
