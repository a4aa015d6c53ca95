#include <FED_Failure.h>
#include <FrdSource.h>
#include <FrdSummary.h>
#include <QeltaCsvImport.h>
#ifdef QELTA_HDF5
#include <QeltaHdf5.h>
#endif

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
#include "OptionChecks.h"
#include "Progress.h"
#include "Selection.h"
#include "TargetDatabase.h"

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

  std::filesystem::path Path() const { return PathOfSource(file); }
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

bool IsOfStep(const Key& key, const Options& options) {
  return !options.step ||
         (key.Has(Key::LOADCASE) && key.GetInteger(Key::LOADCASE) == *options.step);
}

bool IsInFrame(const Key& key, int frame) {
  return !key.Has(Key::SUBSTEP) || key.GetInteger(Key::SUBSTEP) == frame;
}

// Of all keys of a file; none without the step.
std::vector<Key> SelectKeys(std::vector<Key> keys, const Options& options,
                            const QeltaPatternText& pattern) {
  const auto drop = [&keys](auto isUnwanted) {
    keys.erase(std::remove_if(keys.begin(), keys.end(), isUnwanted), keys.end());
  };
  drop([&options](const Key& key) { return !IsInStep(key, options); });
  if (std::none_of(keys.begin(), keys.end(),
                   [&options](const Key& key) { return IsOfStep(key, options); })) {
    return {};
  }
  if (options.onlyLatest) {
    int latest = std::numeric_limits<int>::min();
    for (const Key& key : keys) {
      if (key.Has(Key::SUBSTEP)) latest = std::max(latest, key.GetInteger(Key::SUBSTEP));
    }
    drop([latest](const Key& key) { return !IsInFrame(key, latest); });
  }
  return pattern.Select(std::move(keys));
}

// Extremes are known when the whole file is: it is read once more for them.
std::vector<Key> SelectKeys(const Options& options, const QeltaPatternText& pattern) {
  std::vector<Key> keys;
  for (const auto& block : SummarizeFrd(options.Path(), options.reading).blocks) {
    keys.push_back(block.key);
  }
  return SelectKeys(std::move(keys), options, pattern);
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

int PrintPlan(const std::vector<Key>& keys, const QeltaKeyChanges& changes) {
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
  if (options.isDryRun) return PrintPlan(SelectKeys(options, pattern), changes);
  if (options.follows) WaitForFile(options.file, options.timeout);
  FrdImportChoice choice = MakeChoice(options, pattern, changes);
  std::uint64_t blocks = 0;
  bool hasStep = false;
  choice.accepts = [&, accepts = choice.accepts](const Key& key) {
    hasStep = hasStep || IsOfStep(key, options);
    const bool isAccepted = accepts(key);
    blocks += isAccepted ? 1u : 0u;
    return isAccepted;
  };
  const FrdSource check(options.Path());  // a file that is not there makes no database
  TargetDatabase target(options.target, false, options.CacheBytes());
  Progress progress("importing " + options.file, options.showProgress);
  options.reading.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
    progress.Show(done, total);
  };
  FollowedImport following(options.file, target, options.timeout);
  if (options.follows) following.Join(options.reading, choice);
  choice.onTable = [&, tell = choice.onTable](bool isOpen) {
    if (tell && hasStep && blocks > 0) tell(isOpen);
  };
  const bool isComplete = ImportFrd(options.Path(), target.Get(), options.reading, choice);
  if (!hasStep) blocks = 0;
  if (blocks > 0) target.Save();
  Console::Print("imported " + CountText(blocks, "block") +
                 (isComplete ? "" : "; the file has no end record yet") + "\n");
  return blocks == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

bool IsHdf5(const std::string& name) {
#ifdef QELTA_HDF5
  if (QeltaHdf5File::IsOne(name)) return true;
#endif
  return HasEnding(name, ".h5") || HasEnding(name, ".hdf5");
}

int ImportHdf5(const Options& options, const QeltaKeyChanges& changes) {
  if (options.follows || options.timeout || options.reading.acceptRunningJob) {
    throw CLI::ValidationError("import",
                               "no running job writes an HDF5 file; leave --follow, --timeout and "
                               "--running out.");
  }
#ifdef QELTA_HDF5
  const QeltaHdf5File file(options.file);
  const std::vector<Key> keys = SelectKeys(file.GetKeys(), options, options.selection.GetPattern());
  if (options.isDryRun) return PrintPlan(keys, changes);
  if (keys.empty()) {
    Console::Print("imported 0 blocks\n");
    return EXIT_NOTHING_FOUND;
  }
  TargetDatabase target(options.target, false, options.CacheBytes());
  Progress progress("importing " + options.file, options.showProgress);
  file.Import(keys, changes, target.Get(),
              [&progress](std::uint64_t done, std::uint64_t total) { progress.Show(done, total); });
  target.Save();
  Console::Print("imported " + CountText(keys.size(), "block") + "\n");
  return EXIT_DONE;
#else
  static_cast<void>(changes);
  throw FED_Failure("", "Cannot read " + options.file + ": this qelta was built without HDF5.", "");
#endif
}

QeltaCsvImport ReadTable(const std::string& name) {
  if (name == "-") return QeltaCsvImport(std::cin, name);
  std::ifstream file(std::filesystem::u8path(name), std::ios::binary);
  if (!file || IsDatabase(name)) {
    throw FED_Failure("", "Cannot open " + name + ". Check the path.", "");
  }
  return QeltaCsvImport(file, name);
}

int ImportTable(const Options& options, const QeltaKeyChanges& changes) {
  Key key;
  key.SetString(Key::LABEL, options.file == "-"
                                ? "TABLE"
                                : std::filesystem::u8path(options.file).stem().u8string());
  changes.ApplyTo(key);
  ParseOption("--set", [&key] { QeltaCsvImport::RequireKey(key); });
  const QeltaCsvImport table = ReadTable(options.file);
  RequireTarget(options.target, false);
  // Whether the rows have places of their own shows in an empty database, too.
  TargetDatabase target(options.isDryRun ? "" : options.target, options.isDryRun,
                        options.CacheBytes());
  const std::uint64_t rows = table.Store(target.Get(), key);
  if (!options.isDryRun) target.Save();
  Console::Print((options.isDryRun ? "would import " : "imported ") + CountText(rows, "record") +
                 " as " + key.ToString() + "\n");
  return EXIT_DONE;
}

void RequireSinglePass(const Options& options) {
  if (options.file != "-") return;
  const bool isTwice = options.onlyLatest || options.selection.GetPattern().HasExtremes();
  if (options.follows || (isTwice && !options.isDryRun)) ThrowReadOnce();
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
  if (IsHdf5(options.file)) return ImportHdf5(options, changes);
  RequireSinglePass(options);
  return ImportResults(options, changes);
}

}  // namespace

void AddImportCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("import", "Read a result file or a table into a database");
  command
      ->add_option("FILE", options->file,
                   "CalculiX result file (.frd), HDF5 file of qelta\n(.h5), or table with a header "
                   "line (.csv); - is\nthe standard input")
      ->required();
  command->add_option("DB", options->target, "Database directory, made when it is not there")
      ->required();
  options->selection.AddWhereTo(*command);
  command
      ->add_option("--step", options->step, "Of the results only those of this step, and the\nmesh")
      ->check(WholeNumber(0, std::numeric_limits<int>::max()))
      ->type_name("N");
  command->add_flag("--latest", options->onlyLatest,
                    "Of the results only those of the last frame,\nand the mesh");
  AddSetOption(*command, options->changes);
  CLI::Option* const follow =
      command->add_flag("--follow", options->follows,
                        "Keep up with a running solver until the end\nrecord; save what is whole");
  command
      ->add_option("--timeout", options->timeout,
                   "With --follow: end when the file has not grown\nfor so long")
      ->needs(follow)
      ->check(PlainNumber(false))
      ->type_name("SECONDS");
  Selection::AddRunningTo(*command, options->reading.acceptRunningJob);
  command->add_flag("--csv", options->isCsv, "FILE is a table, whatever its name");
  command->add_flag("-n,--dry-run", options->isDryRun,
                    "Only print the keys of what would be imported");
  command->add_option("--cache", options->cacheMegabytes, "Memory for blocks, in MiB")
      ->check(WholeNumber(1, 1 << 20))
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
      "The titles themselves are not kept: the fields are FIELD_1, FIELD_2 and so on.\n"
      "\n"
      "An HDF5 file is one that a database was exported to; nothing is lost on the way\n"
      "there and back. Where DB numbers nodes, elements and so on otherwise, records go\n"
      "by id or name.\n"
      "\n"
      "Examples:\n"
      "  qelta import job.frd run.db\n"
      "  qelta import job.frd run.db --latest --set ITERATION=12\n"
      "  qelta import job.frd run.db --follow\n"
      "  qelta import best.h5 run.db --where ITERATION=max\n"
      "  qelta import loads.csv run.db --set LABEL=LOADS --set ID_TYPE=0");
  command->callback([&action, options] { action = [options] { return Import(*options); }; });
}

}  // namespace qelta
