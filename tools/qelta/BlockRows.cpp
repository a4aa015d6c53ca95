#include "BlockRows.h"

#include <FED_OnfInfoPool.h>
#include <QeltaBulkAccess.h>
#include <QeltaNames.h>

#include <algorithm>
#include <set>

#include "Console.h"

namespace qelta {
namespace {

std::string KindText(const FED_DataBlock& block) {
  const FED_DataDescriptor& key = block.GetDescriptor();
  if (!key.Has(FED_DataDescriptor::ONF)) return "custom records, format " + block.GetFormat();
  const int onf = key.GetInteger(FED_DataDescriptor::ONF);
  const FED_OnfMetaData& kind = FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf));
  return kind.title + (kind.unit.empty() ? "" : " [" + kind.unit + "]");
}

// Whether a name that the user gives means a column: STRESS and STRESS.xx mean STRESS.xx.
bool Means(const std::string& name, const std::string& title) {
  return IsSameName(name, title) || IsSameName(name, title.substr(0, title.find('.')));
}

}  // namespace

void RequireFields(const std::vector<std::string>& names, const FED_Database& database,
                   const std::vector<FED_DataDescriptor>& keys) {
  if (names.empty()) return;
  std::set<std::string> titles;
  for (const FED_DataDescriptor& key : keys) {
    const QeltaRecordRows rows(database.GetDataBlock(key), database.GetIdMapsPool());
    for (const std::string& title : rows.Titles()) titles.insert(title);
  }
  for (const std::string& name : names) {
    const auto isMeant = [&name](const std::string& title) { return Means(name, title); };
    if (std::any_of(titles.begin(), titles.end(), isMeant)) continue;
    throw CLI::ValidationError("--fields", "No selected block has a field '" + name + "'." +
                                               Suggest(name, {titles.begin(), titles.end()}));
  }
}

BlockRows::BlockRows(const FED_DataBlock& block, const FED_IdMapsPool& maps,
                     const RowChoice& choice, OutputFormat format)
    : m_Block(block),
      m_Rows(block, maps),
      m_Choice(choice),
      m_Format(format),
      m_Descriptor(block.GetDescriptor().ToString()) {
  ChooseCells();
}

std::size_t BlockRows::Print(RowOutput& output) {
  if (m_Cells.empty() && !m_Choice.fields.empty()) return 0;
  output.Begin(Columns(), m_Descriptor + "\n" + KindText(m_Block));
  if (!m_Choice.ids.empty() || !m_Choice.names.empty()) {
    AddByKeys(output);
  } else {
    AddByIndices(output);
  }
  return m_Count;
}

void BlockRows::ChooseCells() {
  m_Titles = m_Rows.Titles();
  for (std::size_t i = 0; i < m_Titles.size(); ++i) {
    const auto isChosen = [&](const std::string& name) { return Means(name, m_Titles[i]); };
    const std::vector<std::string>& names = m_Choice.fields;
    if (names.empty() || std::any_of(names.begin(), names.end(), isChosen)) m_Cells.push_back(i);
  }
}

std::vector<OutputColumn> BlockRows::Columns() const {
  std::vector<OutputColumn> columns;
  if (IsTable()) {
    columns.push_back({m_Rows.KeyTitle()});
  } else {
    if (m_Format != OutputFormat::Csv) columns.push_back({"descriptor"});
    columns.push_back({"index"});
    columns.push_back({"id"});
  }
  const std::vector<Table::Align> aligns = Aligns();
  for (const std::size_t i : m_Cells) columns.push_back({m_Titles[i], aligns[i]});
  return columns;
}

// Texts and lists begin at the left.
std::vector<Table::Align> BlockRows::Aligns() const {
  std::vector<Table::Align> aligns;
  for (const BlockDataType type : m_Block.GetDataTypes()) {
    const bool isText = type == BLOCK_DATA_STRING || type == BLOCK_DATA_INT_SET ||
                        type == BLOCK_DATA_INT_LIST || type == BLOCK_DATA_DOUBLE_LIST;
    const std::size_t cells = type == BLOCK_DATA_VECTOR ? 3 : type == BLOCK_DATA_TENSOR ? 6 : 1;
    aligns.insert(aligns.end(), cells, isText ? Table::Align::Left : Table::Align::Right);
  }
  return aligns;
}

void BlockRows::AddByKeys(RowOutput& output) {
  for (const NumberRange& range : ParseRanges("--id", m_Choice.ids)) {
    if (range.first == range.last) {
      AddById(range.first, output);
    } else {
      AddIf([&](std::size_t index) { return HasIdIn(range, index); }, output);
    }
  }
  for (const std::string& name : m_Choice.names) {
    const auto index = m_Rows.IndexOfName(name);
    if (index && !IsFull()) AddRow(*index, output);
    if (!index) ComplainAbout("'" + name + "'");
  }
}

void BlockRows::AddById(int id, RowOutput& output) {
  if (IsFull()) return;
  const auto index = m_Rows.IndexOfId(id);
  if (index) AddRow(*index, output);
  if (!index) ComplainAbout(std::to_string(id));
}

bool BlockRows::HasIdIn(const NumberRange& range, std::size_t index) const {
  const QeltaScalar key = m_Rows.Key(index);
  const auto* const id = std::get_if<std::int64_t>(&key);
  return id != nullptr && range.Contains(*id);
}

void BlockRows::ComplainAbout(const std::string& key) const {
  Console::Complain(m_Descriptor + " has no record of " + m_Rows.KeyTitle() + " " + key);
}

void BlockRows::AddByIndices(RowOutput& output) {
  if (m_Choice.rows.empty()) {
    AddIf([](std::size_t /*index*/) { return true; }, output);
    return;
  }
  for (const NumberRange& range : ParseRanges("--rows", m_Choice.rows)) {
    AddIf([&range](std::size_t index) { return range.Contains(static_cast<std::int64_t>(index)); },
          output);
  }
}

template <class Test>
void BlockRows::AddIf(Test test, RowOutput& output) {
  FED_IntSetIntvl<int> present;
  QeltaBulkAccess::PresentRuns(m_Block, present);
  for (const auto& run : present) {
    for (std::int64_t i = run.lo; i <= run.hi && !IsFull(); ++i) {
      if (test(static_cast<std::size_t>(i))) AddRow(static_cast<std::size_t>(i), output);
    }
  }
}

void BlockRows::AddRow(std::size_t index, RowOutput& output) {
  const auto place = static_cast<int>(index);
  if (m_Shown.Contains(place)) return;
  m_Shown.Insert(place);
  const std::vector<QeltaCell> cells = m_Rows.Cells(index);
  std::vector<OutputCell> row;
  if (!IsTable()) {
    if (m_Format != OutputFormat::Csv) row.emplace_back(m_Descriptor);
    row.emplace_back(static_cast<std::int64_t>(index));
  }
  row.push_back(
      std::visit([](auto value) { return QeltaCell(std::move(value)); }, m_Rows.Key(index)));
  for (const std::size_t i : m_Cells) row.emplace_back(cells[i]);
  output.Add(std::move(row));
  ++m_Count;
}

}  // namespace qelta
