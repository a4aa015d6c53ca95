#include "BlockColumns.h"

#include <QeltaFieldText.h>
#include <QeltaNames.h>

#include <algorithm>

#include "Progress.h"

namespace qelta {

using Key = FED_DataDescriptor;

namespace {

std::int64_t Signed(std::uint64_t number) { return static_cast<std::int64_t>(number); }

OutputCell NumberOf(const QeltaBlockInfo& block) {
  if (!block.key.Has(Key::ONF)) return {};
  return std::int64_t{block.kind->onfId};
}

}  // namespace

struct BlockColumn::Property {
  const char* name;
  Table::Align align;
  OutputCell (*cell)(const QeltaBlockInfo&);
};

const BlockColumn::Property BlockColumn::kProperties[] = {
    {"descriptor", Table::Align::Left,
     [](const QeltaBlockInfo& block) -> OutputCell { return block.key.ToString(); }},
    {"onf", Table::Align::Right, NumberOf},
    {"kind", Table::Align::Left,
     [](const QeltaBlockInfo& block) -> OutputCell { return block.KindName(); }},
    {"format", Table::Align::Left,
     [](const QeltaBlockInfo& block) -> OutputCell { return block.kind->format; }},
    {"records", Table::Align::Right,
     [](const QeltaBlockInfo& block) -> OutputCell { return Signed(block.records); }},
    {"bytes", Table::Align::Right,
     [](const QeltaBlockInfo& block) -> OutputCell { return Signed(block.bytes); }},
};

BlockColumn BlockColumn::Parse(const std::string& option, const std::string& name) {
  std::vector<std::string> names;
  for (const Property& property : kProperties) {
    names.emplace_back(property.name);
    if (name == property.name) return BlockColumn(&property);
  }
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    names.push_back(Key::RD_NAME_TYPE_ITEMS[i].name);
    if (IsSameName(names.back(), name)) return BlockColumn(Key::CastIndex(i));
  }
  for (const Property& property : kProperties) {
    if (IsSameName(property.name, name)) return BlockColumn(&property);
  }
  const std::string like = SuggestLike(name, names);
  throw CLI::ValidationError(option,
                             "There is no column '" + name + "'." +
                                 (like.empty() ? " Columns are " + Join(names) + "." : like));
}

std::vector<BlockColumn> BlockColumn::Fields() {
  std::vector<BlockColumn> fields;
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i)
    fields.push_back(BlockColumn(Key::CastIndex(i)));
  return fields;
}

std::vector<BlockColumn> BlockColumn::DefaultsFor(const std::vector<QeltaBlockInfo>& blocks,
                                                  bool isLong) {
  std::vector<BlockColumn> columns;
  const auto add = [&columns](const char* name) { columns.push_back(Parse("", name)); };
  if (isLong) add("onf");
  if (isLong) columns.back().m_IsDispensable = true;
  add("kind");
  for (const BlockColumn& field : Fields()) {
    const bool isUsed = std::any_of(blocks.begin(), blocks.end(), [&](const auto& block) {
      return block.key.Has(field.m_Field);
    });
    if (!isUsed || field.m_Field == Key::ONF) continue;
    columns.push_back(field);
    columns.back().m_IsDispensable = isLong && field.m_Field == Key::ANALYSIS;
  }
  add("records");
  if (isLong) add("bytes");
  if (isLong) add("format");
  if (isLong) columns.back().m_IsDispensable = true;
  return columns;
}

OutputColumn BlockColumn::GetTitle() const {
  if (m_Property != nullptr) {
    return {m_Property->name, m_Property->align, m_IsDispensable};
  }
  const Key::NameAndType& field = Key::RD_NAME_TYPE_ITEMS[m_Field];
  const bool isText = field.type == Key::STRING_FIELD;
  return {field.name, isText ? Table::Align::Left : Table::Align::Right, m_IsDispensable};
}

OutputCell BlockColumn::CellOf(const QeltaBlockInfo& block) const {
  if (m_Property != nullptr) return m_Property->cell(block);
  if (!block.key.Has(m_Field)) return {};
  if (Key::RD_NAME_TYPE_ITEMS[m_Field].type == Key::STRING_FIELD)
    return block.key.GetString(m_Field);
  return std::int64_t{block.key.GetInteger(m_Field)};
}

OutputCell BlockColumn::ShortCellOf(const QeltaBlockInfo& block) const {
  const std::string name = GetTitle().name;
  if (name == "bytes") return BytesText(static_cast<double>(block.bytes));
  if (name == "format") return ShortFormat(block.kind->format);
  return CellOf(block);
}

std::string ShortFormat(const std::string& format) {
  std::string text;
  for (std::size_t begin = 0, end = 0; begin < format.size(); begin = end) {
    end = std::min(format.find_first_not_of(format[begin], begin), format.size());
    const std::size_t count = end - begin;
    text += count < 4 ? format.substr(begin, count) : std::to_string(count) + format[begin];
  }
  return text;
}

}  // namespace qelta
