#include <FED_IntSetIntvl.h>
#include <FED_OnfInfoPool.h>
#include <QeltaBulkAccess.h>
#include <QeltaNames.h>
#include <QeltaRecordRows.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "NumberRanges.h"
#include "OptionChecks.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  std::string ids;
  std::vector<std::string> names;
  std::string rows;
  std::vector<std::string> fields;
  std::size_t head = std::numeric_limits<std::size_t>::max();
  std::optional<int> digits;
  OutputFormat format = OutputFormat::Table;
};

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

// The rows of some blocks, on their way to the output.
class Rows {
 public:
  Rows(const FED_DataBlock& block, const FED_IdMapsPool& maps, const Options& options,
       RowOutput& output)
      : m_Block(block), m_Rows(block, maps), m_Options(options), m_Output(output) {
    ChooseCells();
  }

  // Returns the number of rows.
  std::size_t Print() {
    if (m_Cells.empty()) return 0;
    m_Output.Begin(Columns(), m_Block.GetDescriptor().ToString() + "\n" + KindText(m_Block));
    if (!m_Options.ids.empty() || !m_Options.names.empty()) {
      AddByKeys();
    } else {
      AddByIndices();
    }
    return m_Count;
  }

 private:
  bool IsTable() const { return m_Options.format == OutputFormat::Table; }
  bool IsFull() const { return m_Count >= m_Options.head; }

  void ChooseCells() {
    m_Titles = m_Rows.Titles();
    for (std::size_t i = 0; i < m_Titles.size(); ++i) {
      const auto isChosen = [&](const std::string& name) { return Means(name, m_Titles[i]); };
      const std::vector<std::string>& names = m_Options.fields;
      if (names.empty() || std::any_of(names.begin(), names.end(), isChosen)) m_Cells.push_back(i);
    }
  }

  std::vector<OutputColumn> Columns() const {
    std::vector<OutputColumn> columns;
    if (IsTable()) {
      columns.push_back({m_Rows.KeyTitle()});
    } else {
      if (m_Options.format != OutputFormat::Csv) columns.push_back({"descriptor"});
      columns.push_back({"index"});
      columns.push_back({"id"});
    }
    const std::vector<Table::Align> aligns = Aligns();
    for (const std::size_t i : m_Cells) columns.push_back({m_Titles[i], aligns[i]});
    return columns;
  }

  // Texts and lists begin at the left.
  std::vector<Table::Align> Aligns() const {
    std::vector<Table::Align> aligns;
    for (const BlockDataType type : m_Block.GetDataTypes()) {
      const bool isText = type == BLOCK_DATA_STRING || type == BLOCK_DATA_INT_SET ||
                          type == BLOCK_DATA_INT_LIST || type == BLOCK_DATA_DOUBLE_LIST;
      const std::size_t cells = type == BLOCK_DATA_VECTOR ? 3 : type == BLOCK_DATA_TENSOR ? 6 : 1;
      aligns.insert(aligns.end(), cells, isText ? Table::Align::Left : Table::Align::Right);
    }
    return aligns;
  }

  void AddByKeys() {
    for (const NumberRange& range : ParseRanges("--id", m_Options.ids)) {
      if (range.first == range.last) {
        AddById(range.first);
      } else {
        AddIf([&](std::size_t index) { return HasIdIn(range, index); });
      }
    }
    for (const std::string& name : m_Options.names) {
      const auto index = m_Rows.IndexOfName(name);
      if (index && !IsFull()) AddRow(*index);
      if (!index) ComplainAbout("'" + name + "'");
    }
  }

  void AddById(int id) {
    if (IsFull()) return;
    const auto index = m_Rows.IndexOfId(id);
    if (index) AddRow(*index);
    if (!index) ComplainAbout(std::to_string(id));
  }

  bool HasIdIn(const NumberRange& range, std::size_t index) const {
    const QeltaScalar key = m_Rows.Key(index);
    const auto* const id = std::get_if<std::int64_t>(&key);
    return id != nullptr && range.Contains(*id);
  }

  void ComplainAbout(const std::string& key) const {
    Console::Complain(m_Block.GetDescriptor().ToString() + " has no record of " +
                      m_Rows.KeyTitle() + " " + key);
  }

  void AddByIndices() {
    if (m_Options.rows.empty()) {
      AddIf([](std::size_t /*index*/) { return true; });
      return;
    }
    for (const NumberRange& range : ParseRanges("--rows", m_Options.rows)) {
      AddIf(
          [&range](std::size_t index) { return range.Contains(static_cast<std::int64_t>(index)); });
    }
  }

  template <class Test>
  void AddIf(Test test) {
    FED_IntSetIntvl<int> present;
    QeltaBulkAccess::PresentRuns(m_Block, present);
    for (const auto& run : present) {
      for (std::int64_t i = run.lo; i <= run.hi && !IsFull(); ++i) {
        if (test(static_cast<std::size_t>(i))) AddRow(static_cast<std::size_t>(i));
      }
    }
  }

  void AddRow(std::size_t index) {
    const auto place = static_cast<int>(index);
    if (m_Shown.Contains(place)) return;
    m_Shown.Insert(place);
    const std::vector<QeltaCell> cells = m_Rows.Cells(index);
    std::vector<OutputCell> row;
    if (!IsTable()) {
      if (m_Options.format != OutputFormat::Csv)
        row.emplace_back(m_Block.GetDescriptor().ToString());
      row.emplace_back(static_cast<std::int64_t>(index));
    }
    row.push_back(
        std::visit([](auto value) { return QeltaCell(std::move(value)); }, m_Rows.Key(index)));
    for (const std::size_t i : m_Cells) row.emplace_back(cells[i]);
    m_Output.Add(std::move(row));
    ++m_Count;
  }

  const FED_DataBlock& m_Block;
  QeltaRecordRows m_Rows;
  const Options& m_Options;
  RowOutput& m_Output;
  std::vector<std::string> m_Titles;
  std::vector<std::size_t> m_Cells;
  FED_IntSetIntvl<int> m_Shown;  // ranges may overlap
  std::size_t m_Count = 0;
};

// Blocks that lack a field are left out, but some block must have it.
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

int Show(Options& options) {
  if (!options.ids.empty()) ParseRanges("--id", options.ids);
  if (!options.rows.empty()) ParseRanges("--rows", options.rows);
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  const auto output = RowOutput::Make(options.format, options.digits);
  if (keys.empty()) {
    output->End();
    return EXIT_NOTHING_FOUND;
  }
  const FED_Database& database = options.selection.GetSource().Load(keys);
  RequireFields(options.fields, database, keys);
  std::size_t count = 0;
  for (const FED_DataDescriptor& key : keys) {
    count += Rows(database.GetDataBlock(key), database.GetIdMapsPool(), options, *output).Print();
  }
  output->End();
  return count == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddShowCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("show", "Print the records of the selected blocks");
  options->selection.AddTo(*command);
  command
      ->add_option("--id", options->ids,
                   "Only the records of these ids (nodes, elements\n"
                   "...), or indices where there are no ids")
      ->type_name("9,18,20..29");
  command->add_option("--name", options->names, "Only the record of this name; may be repeated")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("NAME");
  command->add_option("--rows", options->rows, "Only the records at these indices, from 0")
      ->excludes("--id")
      ->excludes("--name")
      ->type_name("0..9");
  command
      ->add_option("--fields", options->fields,
                   "Only these fields or components, such as\nSTRESS.xx")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("FIELD,...");
  command->add_option("--head", options->head, "At most this many records of each block")
      ->check(WholeNumber(0, std::numeric_limits<int>::max()))
      ->type_name("N");
  command->add_option("--digits", options->digits, "Digits of numbers in a table, 6 as a rule")
      ->check(WholeNumber(1, kAllDigits))
      ->type_name("N");
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "With csv, json and jsonl the columns are index, id and one for each component;\n"
      "several blocks are separated by a blank line, or told apart by their descriptor.\n"
      "\n"
      "Examples:\n"
      "  qelta show job.frd -w LABEL=DISP -w INCREMENT=max --id 9,18\n"
      "  qelta show run.db -w ONF=node_group --name TOP\n"
      "  qelta show run.db -w LABEL=STRESS --fields STRESS.xx,STRESS.xy --format csv");
  command->callback([&action, options] { action = [options] { return Show(*options); }; });
}

}  // namespace qelta
