#include <algorithm>
#include <map>
#include <memory>
#include <optional>

#include "BlockColumns.h"
#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "JsonText.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  OutputFormat format = OutputFormat::Table;
  bool isLong = false;
  bool isReversed = false;
  bool onlyCount = false;
  std::string sortBy;
  std::string groupBy;
  std::vector<std::string> columns;
};

using Blocks = std::vector<QeltaBlockInfo>;

void Sort(Blocks& blocks, const Options& options) {
  if (!options.sortBy.empty()) {
    const BlockColumn column = BlockColumn::Parse("--sort", options.sortBy);
    std::stable_sort(blocks.begin(), blocks.end(),
                     [&column](const QeltaBlockInfo& a, const QeltaBlockInfo& b) {
                       return column.CellOf(a) < column.CellOf(b);
                     });
  }
  if (options.isReversed) std::reverse(blocks.begin(), blocks.end());
}

std::vector<BlockColumn> ChooseColumns(const Blocks& blocks, const Options& options) {
  std::vector<BlockColumn> columns;
  for (const std::string& name : options.columns) {
    columns.push_back(BlockColumn::Parse("--columns", name));
  }
  return columns.empty() ? BlockColumn::DefaultsFor(blocks, options.isLong) : columns;
}

void PrintRows(const Blocks& blocks, const Options& options) {
  const std::vector<BlockColumn> columns = ChooseColumns(blocks, options);
  const auto output = RowOutput::Make(options.format);
  std::vector<OutputColumn> titles;
  titles.reserve(columns.size());
  for (const BlockColumn& column : columns) titles.push_back(column.GetTitle());
  output->Begin(titles);
  for (const QeltaBlockInfo& block : blocks) {
    std::vector<OutputCell> cells;
    for (const BlockColumn& column : columns) {
      const bool isForPeople = options.format == OutputFormat::Table;
      cells.push_back(isForPeople ? column.ShortCellOf(block) : column.CellOf(block));
    }
    output->Add(std::move(cells));
  }
  output->End();
}

nlohmann::ordered_json ToObject(const QeltaBlockInfo& block) {
  nlohmann::ordered_json object;
  object["descriptor"] = block.key.ToString();
  object["fields"] = nlohmann::ordered_json::object();
  for (const BlockColumn& column : BlockColumn::Fields()) {
    const OutputCell cell = column.CellOf(block);
    if (cell) object["fields"][column.GetTitle().name] = ToJson(*cell);
  }
  object["onf"] = nullptr;
  if (block.key.Has(FED_DataDescriptor::ONF)) object["onf"] = static_cast<int>(block.kind->onfId);
  object["kind"] = block.KindName();
  object["records"] = block.records;
  object["bytes"] = block.bytes;
  object["format"] = block.kind->format;
  return object;
}

void PrintObjects(const Blocks& blocks, bool isArray) {
  const char* before = isArray ? "[\n" : "";
  for (const QeltaBlockInfo& block : blocks) {
    Console::Print(before + ToLine(ToObject(block)) + (isArray ? "" : "\n"));
    if (isArray) before = ",\n";
  }
  if (isArray) Console::Print(blocks.empty() ? "[]\n" : "\n]\n");
}

void PrintGroups(const Blocks& blocks, const Options& options) {
  struct Group {
    std::int64_t blocks = 0, records = 0, bytes = 0;
  };
  const BlockColumn column = BlockColumn::Parse("--group-by", options.groupBy);
  std::map<OutputCell, Group> groups;
  for (const QeltaBlockInfo& block : blocks) {
    Group& group = groups[column.CellOf(block)];
    ++group.blocks;
    group.records += static_cast<std::int64_t>(block.records);
    group.bytes += static_cast<std::int64_t>(block.bytes);
  }
  const auto output = RowOutput::Make(options.format);
  output->Begin({column.GetTitle(), {"blocks"}, {"records"}, {"bytes"}});
  for (const auto& [value, group] : groups) {
    output->Add({value, group.blocks, group.records, group.bytes});
  }
  output->End();
}

// A wrong name shows before a long file is read.
void CheckColumns(const Options& options) {
  if (!options.sortBy.empty()) BlockColumn::Parse("--sort", options.sortBy);
  if (!options.groupBy.empty()) BlockColumn::Parse("--group-by", options.groupBy);
  for (const std::string& name : options.columns) BlockColumn::Parse("--columns", name);
}

int List(Options& options) {
  CheckColumns(options);
  Blocks blocks = options.selection.GetSource().Describe(options.selection.Find());
  Sort(blocks, options);
  const bool isJson =
      options.format == OutputFormat::Json || options.format == OutputFormat::JsonLines;
  if (options.onlyCount) {
    Console::Print(std::to_string(blocks.size()) + "\n");
  } else if (!options.groupBy.empty()) {
    PrintGroups(blocks, options);
  } else if (isJson && options.columns.empty()) {
    PrintObjects(blocks, options.format == OutputFormat::Json);
  } else if (!blocks.empty() || options.format != OutputFormat::Table) {
    PrintRows(blocks, options);
  }
  return blocks.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddLsCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("ls", "List blocks");
  options->selection.AddTo(*command, false);
  command->add_flag("-l,--long", options->isLong, "Also number, format and size of each block");
  command->add_option("--sort", options->sortBy, "Sort by a field, or by kind, records, bytes ...")
      ->type_name("COLUMN");
  command->add_flag("-r,--reverse", options->isReversed, "In reverse order");
  command->add_option("--group-by", options->groupBy, "Only sums for each value of a column")
      ->type_name("COLUMN");
  command->add_flag("--count", options->onlyCount, "Only the number of blocks");
  command
      ->add_option("--columns", options->columns,
                   "These columns: fields, and descriptor, onf,\n"
                   "kind, records, bytes, format")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("COLUMN,...");
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "Bytes are those of the records; texts and lists of a block are not counted.\n"
      "\n"
      "Examples:\n"
      "  qelta ls job.frd\n"
      "  qelta ls -l run.db -w LABEL~'STR*' --sort bytes --reverse\n"
      "  qelta ls run.db --group-by kind\n"
      "  qelta ls run.db --format jsonl");
  command->callback([&action, options] { action = [options] { return List(*options); }; });
}

}  // namespace qelta
