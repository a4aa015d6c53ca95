#include <FED_Message.h>
#include <FED_OnfInfoPool.h>
#include <FrdSummary.h>
#include <QeltaKeyValues.h>
#include <QeltaNames.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Table.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Block = QeltaCountingSink::Block;

constexpr std::size_t kLongList = 200;

struct Options {
  std::string file;
  bool acceptRunningJob = false;
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

// Four equal fields and more are counted: "I|60d".
std::string ShortFormat(const std::string& format) {
  std::string text;
  for (std::size_t begin = 0, end = 0; begin < format.size(); begin = end) {
    end = std::min(format.find_first_not_of(format[begin], begin), format.size());
    const std::size_t count = end - begin;
    text += count < 4 ? format.substr(begin, count) : Number(count) + format[begin];
  }
  return text;
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
  Console::Print(options.file + "\n" + table.ToString());
}

const char* AnalysisName(FrdAnalysis analysis) {
  switch (analysis) {
    case FRD_STATIC:
      return "static";
    case FRD_TIME_STEP:
      return "time steps";
    case FRD_MODAL:
      return "modal";
    case FRD_OTHER:
      return "other";
    case FRD_BUCKLING:
      return "buckling";
    case FRD_STEADY_STATE:
      return "steady state";
  }
  return "";
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
  table.Add({"step", "analysis", "frames", "increments", "modes", "values"});
  for (const FrdStepSummary& step : steps) {
    table.Add({step.step ? std::to_string(*step.step) : "", AnalysisName(step.analysis),
               Cell(step.frames), Cell(step.increments), Cell(step.modes), ValueRange(step)});
  }
  Console::Print("\nSteps\n" + table.ToString());
}

struct KindRow {
  int onf;
  std::string kind;
  std::string label;
  std::string format;
  std::uint64_t blocks;
  std::uint64_t records;
};

KindRow MakeRow(const Block& block) {
  KindRow row{0, "(custom)", {}, block.format, 1, block.recordCount};
  if (block.key.Has(Key::ONF)) {
    const FED_OnfMetaData& kind =
        FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(block.key.GetInteger(Key::ONF)));
    row.onf = kind.onfId;
    row.kind = kind.name;
    row.format = kind.format;
  }
  if (block.key.Has(Key::LABEL)) row.label = block.key.GetString(Key::LABEL);
  return row;
}

std::vector<KindRow> GroupByKind(const std::vector<Block>& blocks) {
  std::vector<KindRow> rows;
  for (const Block& block : blocks) {
    const KindRow row = MakeRow(block);
    const auto known = std::find_if(rows.begin(), rows.end(), [&row](const KindRow& other) {
      return other.kind == row.kind && other.label == row.label && other.format == row.format;
    });
    if (known == rows.end()) {
      rows.push_back(row);
    } else {
      known->blocks += row.blocks;
      known->records += row.records;
    }
  }
  std::stable_sort(rows.begin(), rows.end(),
                   [](const KindRow& a, const KindRow& b) { return a.onf < b.onf; });
  return rows;
}

void PrintBlocks(const std::vector<Block>& blocks) {
  Table table({Table::Align::Right, Table::Align::Left, Table::Align::Left, Table::Align::Left,
               Table::Align::Right, Table::Align::Right});
  table.Add({"ONF", "kind", "label", "format", "blocks", "records"});
  for (const KindRow& row : GroupByKind(blocks)) {
    table.Add({row.onf == 0 ? "" : std::to_string(row.onf), row.kind, row.label,
               ShortFormat(row.format), Number(row.blocks), Number(row.records)});
  }
  Console::Print("\n" + Count(blocks.size(), "block") + "\n" + table.ToString());
}

void PrintFields(const std::vector<Block>& blocks) {
  std::vector<Key> keys;
  keys.reserve(blocks.size());
  for (const Block& block : blocks) keys.push_back(block.key);
  Table table({Table::Align::Left, Table::Align::Left});
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const std::string values = Shorten(DescribeValues(keys, Key::CastIndex(i)), kLongList);
    if (!values.empty()) table.Add({Key::RD_NAME_TYPE_ITEMS[i].name, values});
  }
  Console::Print("\nValues of the descriptor fields\n" + table.ToString());
}

int Info(const Options& options) {
  FrdReadOptions reading;
  reading.acceptRunningJob = options.acceptRunningJob;
  const FrdFileSummary summary = SummarizeFrd(options.file, reading);
  PrintFile(options, summary);
  PrintSteps(summary.steps);
  PrintBlocks(summary.blocks);
  PrintFields(summary.blocks);
  return EXIT_DONE;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("info", "Show what a result file holds");
  command->add_option("FILE", options->file, "CalculiX result file (.frd)")->required();
  command->add_flag("--running", options->acceptRunningJob,
                    "Accept a file that a running job still writes");
  command->callback([&action, options] { action = [options] { return Info(*options); }; });
}

}  // namespace qelta
