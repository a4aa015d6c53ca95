#include <FED_MemoryDatabase.h>
#include <FED_OnfInfoPool.h>
#include <FrdImport.h>
#include <QeltaRecordRows.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Selection.h"
#include "Table.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  std::vector<std::int32_t> ids;
  std::size_t head = std::numeric_limits<std::size_t>::max();
};

std::string KindText(const FED_DataBlock& block) {
  const FED_DataDescriptor& key = block.GetDescriptor();
  if (!key.Has(FED_DataDescriptor::ONF)) return "custom records, format " + block.GetFormat();
  const int onf = key.GetInteger(FED_DataDescriptor::ONF);
  const FED_OnfMetaData& kind = FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf));
  return kind.title + (kind.unit.empty() ? "" : " [" + kind.unit + "]");
}

std::vector<std::size_t> ChooseRows(const FED_DataBlock& block, const QeltaRecordRows& rows,
                                    const Options& options) {
  std::vector<std::size_t> indices;
  if (options.ids.empty()) {
    for (const std::size_t index : block) {
      if (indices.size() == options.head) break;
      indices.push_back(index);
    }
    return indices;
  }
  for (const std::int32_t id : options.ids) {
    if (indices.size() == options.head) break;
    if (const auto index = rows.IndexOfId(id)) {
      indices.push_back(*index);
    } else {
      Console::Complain(block.GetDescriptor().ToString() + " has no record of " + rows.KeyTitle() +
                        " " + std::to_string(id));
    }
  }
  return indices;
}

// The key, then the cells of each field; texts and lists begin at the left.
std::vector<Table::Align> AlignmentsOf(const FED_DataBlock& block) {
  std::vector<Table::Align> columns{Table::Align::Right};
  for (const BlockDataType type : block.GetDataTypes()) {
    const bool isText = type == BLOCK_DATA_STRING || type == BLOCK_DATA_INT_SET ||
                        type == BLOCK_DATA_INT_LIST || type == BLOCK_DATA_DOUBLE_LIST;
    const std::size_t cells = type == BLOCK_DATA_VECTOR ? 3 : type == BLOCK_DATA_TENSOR ? 6 : 1;
    columns.insert(columns.end(), cells, isText ? Table::Align::Left : Table::Align::Right);
  }
  return columns;
}

// Returns the number of rows printed.
std::size_t ShowBlock(const FED_DataBlock& block, const FED_IdMapsPool& maps,
                      const Options& options) {
  QeltaRecordRows rows(block, maps);
  const std::vector<std::size_t> indices = ChooseRows(block, rows, options);
  std::vector<std::string> titles = rows.Titles();
  titles.insert(titles.begin(), rows.KeyTitle());
  Table table(AlignmentsOf(block));
  table.Add(std::move(titles));
  for (const std::size_t index : indices) {
    std::vector<std::string> cells = rows.Cells(index);
    cells.insert(cells.begin(), rows.Key(index));
    table.Add(std::move(cells));
  }
  Console::Print(block.GetDescriptor().ToString() + "\n" + KindText(block) + "\n" +
                 table.ToString());
  return indices.size();
}

int Show(const Options& options) {
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  FED_MemoryDatabase database;
  database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
  ImportFrdBlocks(options.selection.file, database, keys, options.selection.ReadOptions());
  std::size_t rows = 0;
  for (const FED_DataDescriptor& key : keys) {
    if (&key != &keys.front()) Console::Print("\n");
    rows += ShowBlock(database.GetDataBlock(key), database.GetIdMapsPool(), options);
  }
  return rows == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddShowCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("show", "Print the records of the blocks that a selection picks");
  options->selection.AddTo(*command);
  command
      ->add_option("--id", options->ids,
                   "Only the records of these ids (nodes, elements ...),\n"
                   "or record indices where there are no ids")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("ID,ID...");
  command->add_option("--head", options->head, "At most this many records of each block")
      ->type_name("N");
  command->callback([&action, options] { action = [options] { return Show(*options); }; });
}

}  // namespace qelta
