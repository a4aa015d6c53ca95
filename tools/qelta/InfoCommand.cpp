#include <FED_IdMapsPool.h>
#include <FED_Message.h>
#include <FED_OnfMetaData.h>
#include <FrdSummary.h>
#include <QeltaBlockListing.h>
#include <QeltaKeyValues.h>
#include <QeltaNames.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "BlockColumns.h"
#include "Commands.h"
#include "Console.h"
#include "Databases.h"
#include "ExitCode.h"
#include "InfoObject.h"
#include "JsonText.h"
#include "KindRows.h"
#include "Progress.h"
#include "RowOutput.h"
#include "Selection.h"
#include "Table.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

constexpr std::size_t kLongList = 200;

struct Options {
  std::string file;
  OutputFormat format = OutputFormat::Table;
  bool acceptRunningJob = false;
  bool showProgress = true;
};

std::string Number(std::uint64_t number) { return std::to_string(number); }

std::string Count(std::uint64_t number, const char* what) {
  return Number(number) + " " + what + (number == 1 ? "" : "s");
}

// The beginning and the end of a list that is longer than `limit`: "1, 3, 5, ..., 99".
std::string Shorten(const std::string& list, std::size_t limit) {
  const std::size_t last = list.rfind(", ");
  if (list.size() <= limit || last == std::string::npos) return list;
  const std::string end = ", ..." + list.substr(last);
  const std::size_t cut = list.rfind(", ", limit - std::min(limit, end.size()));
  return cut == std::string::npos ? list : list.substr(0, cut) + end;
}

std::string Mesh(const FrdFileSummary& summary) {
  std::vector<std::string> types;
  std::uint64_t elements = 0;
  for (const auto& [type, count] : summary.elements) {
    types.push_back(Number(count) + " " + type);
    elements += count;
  }
  return Count(summary.nodes, "node") + ", " + Count(elements, "element") +
         (types.empty() ? "" : " (" + Join(types) + ")");
}

std::string Header(const FrdFileSummary& summary, const char* key) {
  const auto found = summary.headers.find(key);
  return found == summary.headers.end() ? std::string() : found->second;
}

std::string Origin(const FrdFileSummary& summary) {
  std::string text;
  for (const char* key : {"PGM", "VERSION", "DATE", "TIME"}) {
    const std::string part = Header(summary, key);
    if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
  }
  return text;
}

std::string FileState(const FrdFileSummary& summary) {
  return std::string(summary.isBinary ? "binary" : "text") +
         (summary.isComplete ? ", complete"
                             : ", no end record: the solver is still running or was stopped");
}

void PrintFile(const Options& options, const FrdFileSummary& summary) {
  Table table({Table::Align::Left, Table::Align::Left});
  const auto add = [&table](const char* name, const std::string& text) {
    if (!text.empty()) table.Add({name, text});
  };
  add("file", FileState(summary));
  add("model", summary.model);
  add("heading", summary.heading);
  add("written by", Origin(summary));
  add("materials", Shorten(Join(summary.materials), kLongList));
  add("mesh", Mesh(summary));
  if (summary.nodesWithoutCoordinates > 0) {
    add("note",
        Count(summary.nodesWithoutCoordinates, "node") + " with results but without coordinates");
  }
  Console::PrintBold(options.file + "\n");
  table.Print();
}

std::string ValueRange(const FrdStepSummary& step) {
  const bool isFrequency = step.analysis == FRD_MODAL || step.analysis == FRD_STEADY_STATE;
  const char* const name = isFrequency                     ? "frequency"
                           : step.analysis == FRD_BUCKLING ? "factor"
                           : step.analysis == FRD_OTHER    ? "value"
                                                           : "time";
  const std::string lowest = FED_MESSAGE("%s %g", name, step.lowestValue);
  return step.lowestValue < step.highestValue ? lowest + FED_MESSAGE("..%g", step.highestValue)
                                              : lowest;
}

std::string Cell(const FED_IntSetIntvl<int>& set) {
  constexpr std::size_t kLongCell = 20;
  return Shorten(ToText(set), kLongCell);
}

void PrintSteps(const std::vector<FrdStepSummary>& steps) {
  if (steps.empty()) return;
  Table table({Table::Align::Right, Table::Align::Left, Table::Align::Left, Table::Align::Left,
               Table::Align::Left, Table::Align::Left});
  table.AddTitles({"step", "analysis", "frames", "increments", "modes", "values"});
  for (const FrdStepSummary& step : steps) {
    table.Add({step.step ? std::to_string(*step.step) : "", GetFrdAnalysisName(step.analysis),
               Cell(step.frames), Cell(step.increments), Cell(step.modes), ValueRange(step)});
  }
  Console::PrintBold("\nSteps\n");
  table.Print();
}

void PrintBlocks(const std::vector<QeltaBlockInfo>& blocks) {
  Table table({Table::Align::Right, Table::Align::Left, Table::Align::Left, Table::Align::Left,
               Table::Align::Right, Table::Align::Right});
  table.AddTitles({"ONF", "kind", "label", "format", "blocks", "records"});
  for (const KindRow& row : GroupByKind(blocks)) {
    table.Add({row.onf == 0 ? "" : std::to_string(row.onf), row.kind, row.label,
               ShortFormat(row.format), Number(row.blocks), Number(row.records)});
  }
  Console::PrintBold("\n" + Count(blocks.size(), "block") + "\n");
  if (!blocks.empty()) table.Print();
}

void PrintFields(const std::vector<QeltaBlockInfo>& blocks) {
  std::vector<Key> keys;
  keys.reserve(blocks.size());
  for (const QeltaBlockInfo& block : blocks) keys.push_back(block.key);
  Table table({Table::Align::Left, Table::Align::Left});
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const std::string values = Shorten(DescribeValues(keys, Key::CastIndex(i)), kLongList);
    if (!values.empty()) table.Add({Key::RD_NAME_TYPE_ITEMS[i].name, values});
  }
  if (table.IsEmpty()) return;
  Console::PrintBold("\nValues of the descriptor fields\n");
  table.Print();
}

void PrintIds(const FED_IdMapsPool& maps) {
  Table table({Table::Align::Left, Table::Align::Right});
  for (const auto& [name, count] : CountIds(maps)) table.Add({name, Number(count)});
  if (table.IsEmpty()) return;
  Console::PrintBold("\nEntities with ids\n");
  table.Print();
}

// The kinds of blocks for a spreadsheet, or all that is known for a program.
void PrintObject(const nlohmann::ordered_json& object, const std::vector<QeltaBlockInfo>& blocks,
                 OutputFormat format) {
  if (format != OutputFormat::Csv) {
    Console::Print(ToLine(object) + "\n");
    return;
  }
  const auto output = RowOutput::Make(format);
  output->Begin({{"onf"}, {"kind"}, {"label"}, {"format"}, {"blocks"}, {"records"}});
  for (const KindRow& row : GroupByKind(blocks)) {
    const auto number = [](std::uint64_t value) { return static_cast<std::int64_t>(value); };
    output->Add({row.onf == 0 ? OutputCell() : std::int64_t{row.onf}, row.kind, row.label,
                 row.format, number(row.blocks), number(row.records)});
  }
  output->End();
}

void PrintDatabase(const Options& options) {
  const auto database = OpenDatabase(options.file, FED_DatabaseDefs::READ_ONLY);
  const auto blocks = DescribeBlocks(*database, database->FindBlocks({}));
  if (options.format != OutputFormat::Table) {
    return PrintObject(ToObject(options.file, database->GetIdMapsPool(), blocks), blocks,
                       options.format);
  }
  std::uint64_t bytes = 0;
  for (const QeltaBlockInfo& block : blocks) bytes += block.bytes;
  Console::PrintBold(options.file + "\n");
  Console::Print("  database, " + BytesText(static_cast<double>(bytes)) + " of records\n");
  PrintIds(database->GetIdMapsPool());
  PrintBlocks(blocks);
  PrintFields(blocks);
}

void PrintResultFile(const Options& options) {
  Progress progress("reading " + options.file, options.showProgress);
  FrdReadOptions reading;
  reading.acceptRunningJob = options.acceptRunningJob;
  reading.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
    progress.Show(done, total);
  };
  const FrdFileSummary summary = SummarizeFrd(PathOfSource(options.file), reading);
  std::vector<QeltaBlockInfo> blocks;
  for (const auto& block : summary.blocks) blocks.push_back(DescribeBlock(block));
  if (options.format != OutputFormat::Table) {
    return PrintObject(ToObject(options.file, summary, blocks), blocks, options.format);
  }
  PrintFile(options, summary);
  PrintSteps(summary.steps);
  PrintBlocks(blocks);
  PrintFields(blocks);
}

int Info(const Options& options) {
  if (IsDatabase(options.file)) {
    PrintDatabase(options);
  } else {
    PrintResultFile(options);
  }
  return EXIT_DONE;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("info", "Show what a source holds");
  Selection::AddSourceTo(*command, options->file, false);
  Selection::AddRunningTo(*command, options->acceptRunningJob);
  Selection::AddProgressTo(*command, options->showProgress);
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "json and jsonl give all in one object on one line, csv the kinds of blocks.\n"
      "\n"
      "Examples:\n"
      "  qelta info job.frd\n"
      "  qelta info run.db");
  command->callback([&action, options] { action = [options] { return Info(*options); }; });
}

}  // namespace qelta
