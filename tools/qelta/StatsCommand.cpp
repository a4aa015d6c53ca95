#include <QeltaBlockStatistics.h>
#include <QeltaRecordRows.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <tuple>

#include "BlockColumns.h"
#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Progress.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  OutputFormat format = OutputFormat::Table;
  std::string by;
};

// Statistics whose records are known by their ids, so that those of several blocks can be joined.
struct Row {
  QeltaStatistics values;
  QeltaScalar lowestId;
  QeltaScalar highestId;

  void Join(const Row& other) {
    if (other.values.count == 0) {
      values.notANumber += other.values.notANumber;
      return;
    }
    if (values.count == 0 || other.values.lowest < values.lowest) {
      values.lowest = other.values.lowest;
      lowestId = other.lowestId;
    }
    if (values.count == 0 || other.values.highest > values.highest) {
      values.highest = other.values.highest;
      highestId = other.highestId;
    }
    const auto count = static_cast<double>(values.count);
    const auto more = static_cast<double>(other.values.count);
    values.mean = (values.mean * count + other.values.mean * more) / (count + more);
    values.norm = std::hypot(values.norm, other.values.norm);
    values.count += other.values.count;
    values.notANumber += other.values.notANumber;
  }
};

std::vector<Row> RowsOf(const FED_DataBlock& block, const FED_IdMapsPool& maps) {
  const QeltaRecordRows records(block, maps);
  std::vector<Row> rows;
  for (QeltaStatistics& one : ComputeStatistics(block)) {
    Row row{std::move(one), {}, {}};
    if (row.values.count > 0) {
      row.lowestId = records.Key(row.values.lowestAt);
      row.highestId = records.Key(row.values.highestAt);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

QeltaCell CellOf(const QeltaScalar& scalar) {
  return std::visit([](auto value) { return QeltaCell(std::move(value)); }, scalar);
}

void AddColumns(std::vector<OutputColumn>& columns, const std::string& id, OutputFormat format) {
  const bool isTable = format == OutputFormat::Table;
  for (const std::string& name : {std::string("min"), id, std::string("max"), id}) {
    columns.push_back({name});
  }
  if (!isTable) {
    columns[columns.size() - 3].name = "min_id";
    columns[columns.size() - 1].name = "max_id";
  }
  for (const char* name : {"mean", "norm", "count"}) columns.push_back({name});
  if (!isTable) columns.push_back({"nan"});
}

void AddCells(std::vector<OutputCell>& cells, const Row& row, OutputFormat format) {
  const QeltaStatistics& values = row.values;
  if (values.count > 0) {
    cells.insert(cells.end(), {values.lowest, CellOf(row.lowestId), values.highest,
                               CellOf(row.highestId), values.mean, values.norm});
  } else {
    cells.resize(cells.size() + 6);
  }
  cells.emplace_back(static_cast<std::int64_t>(values.count));
  if (format != OutputFormat::Table) {
    cells.emplace_back(static_cast<std::int64_t>(values.notANumber));
  }
}

class Statistics {
 public:
  Statistics(Options& options, const std::vector<FED_DataDescriptor>& keys)
      : m_Options(options),
        m_Keys(keys),
        m_Database(options.selection.GetSource().Load(keys)),
        m_Output(RowOutput::Make(options.format)) {}

  // Returns the number of rows.
  std::size_t Print() {
    if (m_Options.by.empty()) {
      PrintEach();
    } else {
      PrintJoined(BlockColumn::Parse("--by", m_Options.by));
    }
    m_Output->End();
    return m_Count;
  }

 private:
  template <class Visit>
  void ForEachBlock(Visit visit) {
    Progress progress("reading blocks", m_Options.selection.GetOptions().showProgress, "blocks");
    for (std::size_t i = 0; i < m_Keys.size(); ++i) {
      progress.Show(i, m_Keys.size());
      visit(m_Keys[i], m_Database.GetDataBlock(m_Keys[i]));
    }
  }

  void PrintEach() {
    const bool isTable = m_Options.format == OutputFormat::Table;
    bool hasBegun = false;
    ForEachBlock([&](const FED_DataDescriptor& key, const FED_DataBlock& block) {
      const std::vector<Row> rows = RowsOf(block, m_Database.GetIdMapsPool());
      const QeltaRecordRows records(block, m_Database.GetIdMapsPool());
      if (rows.empty()) return;
      if (isTable || !hasBegun) {
        std::vector<OutputColumn> columns;
        if (!isTable) columns.push_back({"descriptor"});
        columns.push_back({"component", Table::Align::Left});
        AddColumns(columns, records.KeyTitle(), m_Options.format);
        m_Output->Begin(std::move(columns), key.ToString());
        hasBegun = true;
      }
      for (const Row& row : rows) {
        std::vector<OutputCell> cells;
        if (!isTable) cells.emplace_back(key.ToString());
        cells.emplace_back(row.values.title);
        AddCells(cells, row, m_Options.format);
        m_Output->Add(std::move(cells));
        ++m_Count;
      }
    });
  }

  // One row for each value of a column, label and component, over all blocks that have these.
  void PrintJoined(const BlockColumn& column) {
    const BlockColumn label = BlockColumn::Parse("--by", "LABEL");
    const bool isByLabel = column.GetTitle().name == label.GetTitle().name;
    using Group = std::tuple<OutputCell, OutputCell, std::string>;
    std::vector<std::pair<Group, Row>> groups;
    std::map<Group, std::size_t> places;
    ForEachBlock([&](const FED_DataDescriptor& key, const FED_DataBlock& block) {
      const QeltaBlockInfo info = DescribeBlock(key, block);
      for (const Row& row : RowsOf(block, m_Database.GetIdMapsPool())) {
        const Group group{column.CellOf(info), label.CellOf(info), row.values.title};
        const auto [place, isNew] = places.try_emplace(group, groups.size());
        if (isNew) {
          groups.emplace_back(group, row);
        } else {
          groups[place->second].second.Join(row);
        }
      }
    });
    std::stable_sort(groups.begin(), groups.end(), [](const auto& a, const auto& b) {
      return std::get<0>(a.first) < std::get<0>(b.first);
    });
    std::vector<OutputColumn> columns = {column.GetTitle()};
    if (!isByLabel) columns.push_back(label.GetTitle());
    columns.push_back({"component", Table::Align::Left});
    AddColumns(columns, "id", m_Options.format);
    m_Output->Begin(std::move(columns));
    for (const auto& [group, row] : groups) {
      std::vector<OutputCell> cells = {std::get<0>(group)};
      if (!isByLabel) cells.push_back(std::get<1>(group));
      cells.emplace_back(std::get<2>(group));
      AddCells(cells, row, m_Options.format);
      m_Output->Add(std::move(cells));
      ++m_Count;
    }
  }

  Options& m_Options;
  const std::vector<FED_DataDescriptor>& m_Keys;
  const FED_Database& m_Database;
  std::unique_ptr<RowOutput> m_Output;
  std::size_t m_Count = 0;
};

int PrintStatistics(Options& options) {
  if (!options.by.empty()) BlockColumn::Parse("--by", options.by);
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  if (keys.empty()) {
    RowOutput::Make(options.format)->End();
    return EXIT_NOTHING_FOUND;
  }
  return Statistics(options, keys).Print() == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddStatsCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("stats", "Minimum, maximum, mean and norm of numbers");
  options->selection.AddTo(*command);
  command
      ->add_option(
          "--by", options->by,
          "Join the blocks with the same value of this\ncolumn: a row for each value and component")
      ->type_name("COLUMN");
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "Beside each minimum and maximum stands the id of its first record. The norm is\n"
      "the root of the sum of squares. Vectors also have a row for their magnitude.\n"
      "Stress tensors have the components xx, yy, zz, xy, yz, zx in this order and rows\n"
      "for the von Mises stress, sqrt(((xx-yy)^2 + (yy-zz)^2 + (zz-xx)^2)/2 + 3(xy^2 +\n"
      "yz^2 + zx^2)), and the principal values, of which principal1 is the greatest.\n"
      "Values that are no numbers are left out and counted under nan.\n"
      "\n"
      "Examples:\n"
      "  qelta stats job.frd -w LABEL=STRESS -w INCREMENT=max\n"
      "  qelta stats run.db -w LABEL=DISP --by ITERATION --format csv");
  command->callback(
      [&action, options] { action = [options] { return PrintStatistics(*options); }; });
}

}  // namespace qelta
