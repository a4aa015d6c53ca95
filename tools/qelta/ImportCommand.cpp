#include <FED_Failure.h>
#include <FrdSource.h>
#include <FrdSummary.h>
#include <QeltaCsvImport.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <set>

#include "Commands.h"
#include "Console.h"
#include "Databases.h"
#include "ExitCode.h"
#include "FollowedImport.h"
#include "Progress.h"
#include "Selection.h"
#include "TargetDatabase.h"
#include "Terminal.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

struct Options {
  std::string file;
  std::string target;
  Selection selection;
  std::vector<std::string> changes;
  std::optional<int> step;
  bool onlyLatest = false;
  bool isCsv = false;
  bool isDryRun = false;
  bool follows = false;
  std::optional<double> timeout;
  std::uint64_t cacheMegabytes = 0;
  FrdReadOptions reading;
  bool showProgress = true;

  // What only a file of results has.
  bool ChoosesResults() const {
    return selection.IsGiven() || step || onlyLatest || follows || timeout;
  }

  std::uint64_t CacheBytes() const { return cacheMegabytes << 20; }
};

bool HasEnding(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() &&
         text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

// What belongs to no step or frame, the mesh above all, is always wanted.
bool IsInStep(const Key& key, const Options& options) {
  return !options.step || !key.Has(Key::LOADCASE) || key.GetInteger(Key::LOADCASE) == *options.step;
}

bool IsInFrame(const Key& key, int frame) {
  return !key.Has(Key::SUBSTEP) || key.GetInteger(Key::SUBSTEP) == frame;
}

// Extremes are known when the whole file is: it is read once more for them.
std::vector<Key> SelectKeys(const Options& options, const QeltaPatternText& pattern) {
  std::vector<Key> keys;
  int latest = std::numeric_limits<int>::min();
  for (const auto& block :
       SummarizeFrd(std::filesystem::u8path(options.file), options.reading).blocks) {
    if (!IsInStep(block.key, options)) continue;
    keys.push_back(block.key);
    if (block.key.Has(Key::SUBSTEP)) latest = std::max(latest, block.key.GetInteger(Key::SUBSTEP));
  }
  if (options.onlyLatest) {
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [latest](const Key& key) { return !IsInFrame(key, latest); }),
               keys.end());
  }
  return pattern.Select(std::move(keys));
}

FrdImportChoice MakeChoice(const Options& options, const QeltaPatternText& pattern,
                           const QeltaKeyChanges& changes) {
  FrdImportChoice choice;
  choice.changes = changes;
  if (pattern.HasExtremes() || options.onlyLatest) {
    const std::vector<Key> keys = SelectKeys(options, pattern);
    choice.accepts = [wanted = std::set<Key>(keys.begin(), keys.end())](const Key& key) {
      return wanted.count(key) > 0;
    };
  } else {
    choice.accepts = [&options, pattern](const Key& key) {
      return IsInStep(key, options) && pattern.Accepts(key);
    };
  }
  return choice;
}

int PrintPlan(const Options& options, const QeltaPatternText& pattern,
              const QeltaKeyChanges& changes) {
  const std::vector<Key> keys = SelectKeys(options, pattern);
  for (Key key : keys) {
    changes.ApplyTo(key);
    Console::Print(key.ToString() + "\n");
  }
  Console::Print("would import " + CountText(keys.size(), "block") + "\n");
  return keys.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

int ImportResults(Options& options, const QeltaKeyChanges& changes) {
  const QeltaPatternText pattern = options.selection.GetPattern();
  if (options.follows && (pattern.HasExtremes() || options.onlyLatest || options.isDryRun)) {
    throw CLI::ValidationError("--follow",
                               "What is the latest, the highest or the lowest, and "
                               "what would be imported, is not known yet.");
  }
  if (options.isDryRun) return PrintPlan(options, pattern, changes);
  if (options.follows) WaitForFile(options.file, options.timeout);
  FrdImportChoice choice = MakeChoice(options, pattern, changes);
  std::uint64_t blocks = 0;
  choice.accepts = [&blocks, accepts = choice.accepts](const Key& key) {
    const bool isAccepted = accepts(key);
    blocks += isAccepted ? 1u : 0u;
    return isAccepted;
  };
  const FrdSource check(
      std::filesystem::u8path(options.file));  // a file that is not there makes no database
  const auto target = OpenTarget(options.target, false, options.CacheBytes());
  Progress progress("importing " + options.file, options.showProgress);
  options.reading.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
    progress.Show(done, total);
  };
  FollowedImport following(options.file, *target, options.timeout);
  if (options.follows) following.Join(options.reading, choice);
  const bool isComplete =
      ImportFrd(std::filesystem::u8path(options.file), *target, options.reading, choice);
  SaveDatabase(*target);
  Console::Print("imported " + CountText(blocks, "block") +
                 (isComplete ? "" : "; the file has no end record yet") + "\n");
  return blocks == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

int ImportTable(const Options& options, const QeltaKeyChanges& changes) {
  const bool isStream = options.file == "-";
  Key key;
  key.SetString(Key::LABEL,
                isStream ? "TABLE" : std::filesystem::u8path(options.file).stem().u8string());
  changes.ApplyTo(key);
  std::ifstream file;
  if (!isStream) {
    file.open(std::filesystem::u8path(options.file), std::ios::binary);
    if (!file || IsDatabase(options.file)) {
      throw FED_Failure("", "Cannot open " + options.file + ". Check the path.", "");
    }
  }
  const auto target = OpenTarget(options.target, options.isDryRun, options.CacheBytes());
  const std::uint64_t rows = ImportCsv(isStream ? std::cin : file, options.file, *target, key);
  if (!options.isDryRun) SaveDatabase(*target);
  Console::Print((options.isDryRun ? "would import " : "imported ") + CountText(rows, "record") +
                 " as " + key.ToString() + "\n");
  return EXIT_DONE;
}

int Import(Options& options) {
  const QeltaKeyChanges changes = ParseChanges(options.changes);
  if (options.isCsv || HasEnding(options.file, ".csv")) {
    if (options.ChoosesResults()) {
      throw CLI::ValidationError("import",
                                 "a table has no steps and no blocks to choose from; "
                                 "leave --where, --step, --latest and --follow out.");
    }
    return ImportTable(options, changes);
  }
  if (options.file == "-") {
    if (Terminal::kInputFile == nullptr) {
      throw CLI::ValidationError(
          "import", "only tables come from the standard input on this system; name the file.");
    }
    options.file = Terminal::kInputFile;
  }
  return ImportResults(options, changes);
}

}  // namespace

void AddImportCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("import", "Read a result file or a table into a database");
  command
      ->add_option("FILE", options->file,
                   "CalculiX result file (.frd), or table with a\nheader line (.csv); - is the "
                   "standard input")
      ->required();
  command->add_option("DB", options->target, "Database directory, made when it is not there")
      ->required();
  options->selection.AddWhereTo(*command);
  command
      ->add_option("--step", options->step, "Of the results only those of this step, and the\nmesh")
      ->type_name("N");
  command->add_flag("--latest", options->onlyLatest,
                    "Of the results only those of the last frame,\nand the mesh");
  AddSetOption(*command, options->changes);
  command->add_flag("--follow", options->follows,
                    "Keep up with a running solver until the end\nrecord; save what is whole");
  command
      ->add_option("--timeout", options->timeout,
                   "With --follow: end when the file has not grown\nfor so long")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("SECONDS");
  Selection::AddRunningTo(*command, options->reading.acceptRunningJob);
  command->add_flag("--csv", options->isCsv, "FILE is a table, whatever its name");
  command->add_flag("-n,--dry-run", options->isDryRun,
                    "Only print the keys of what would be imported");
  command->add_option("--cache", options->cacheMegabytes, "Memory for blocks, in MiB")
      ->check(CLI::Range(1, 1 << 20).description(""))
      ->type_name("MIB");
  Selection::AddProgressTo(*command, options->showProgress);
  command->footer(
      "Blocks that DB has under the same keys are replaced: importing again stores\n"
      "nothing twice. Everything is stored in one checkpoint at the end, with --follow\n"
      "in several.\n"
      "\n"
      "A table becomes a custom block; its LABEL is the name of the file unless --set\n"
      "tells another. Columns 'index' and 'id' say where a row goes: to a record index,\n"
      "or, with --set ID_TYPE=0 (node), 1 (element) ..., to the record of that id.\n"
      "NAME.x, NAME.y, NAME.z make a vector, NAME.xx, .yy, .zz, .xy, .yz, .zx a tensor.\n"
      "\n"
      "Examples:\n"
      "  qelta import job.frd run.db\n"
      "  qelta import job.frd run.db --latest --set ITERATION=12\n"
      "  qelta import job.frd run.db --follow\n"
      "  qelta import loads.csv run.db --set LABEL=LOADS --set ID_TYPE=0");
  command->callback([&action, options] { action = [options] { return Import(*options); }; });
}

}  // namespace qelta
