#include <memory>

#include "Commands.h"
#include "Console.h"
#include "Databases.h"
#include "ExitCode.h"
#include "Selection.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

struct Options {
  std::string name;
  Selection selection;
  bool isAll = false;
  bool isSure = false;
  bool isDryRun = false;
};

void RequireSelection(const Options& options) {
  if (options.selection.IsGiven() == options.isAll) {
    throw CLI::ValidationError("rm", "Say which blocks: either with --where, or --all.");
  }
}

bool IsAgreed(const Options& options, std::size_t count) {
  if (options.isSure) return true;
  if (!Console::CanAsk()) {
    throw CLI::ValidationError("rm", "Nobody can be asked here; --yes deletes without asking.");
  }
  return Console::AskYes("Delete " + CountText(count, "block") + " of " + options.name + "?");
}

int Remove(const Options& options) {
  RequireSelection(options);
  const QeltaPatternText pattern = options.selection.GetPattern();
  const auto database = options.isDryRun ? OpenDatabase(options.name, FED_DatabaseDefs::READ_ONLY)
                                         : OpenExistingDatabase(options.name);
  const std::vector<FED_DataDescriptor> keys = pattern.Select(*database);
  if (keys.empty()) return EXIT_NOTHING_FOUND;
  if (options.isDryRun) {
    for (const FED_DataDescriptor& key : keys) Console::Print(key.ToString() + "\n");
    Console::Print("would delete " + CountText(keys.size(), "block") + "\n");
    return EXIT_DONE;
  }
  if (!IsAgreed(options, keys.size())) return EXIT_NOTHING_FOUND;
  for (const FED_DataDescriptor& key : keys) database->DeleteDataBlock(key);
  SaveDatabase(*database);
  Console::Print("deleted " + CountText(keys.size(), "block") + "\n");
  return EXIT_DONE;
}

}  // namespace

void AddRmCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("rm", "Delete the selected blocks of a database");
  command->add_option("DB", options->name, "Database directory")->required();
  options->selection.AddPatternTo(*command);
  command->add_flag("--all", options->isAll, "Delete all blocks");
  command->add_flag("-y,--yes", options->isSure, "Do not ask");
  command->add_flag("-n,--dry-run", options->isDryRun,
                    "Only print the keys of what would be deleted");
  command->footer(
      "Asks on a terminal; elsewhere --yes is needed. All blocks go at once, in one\n"
      "checkpoint. The room they took is used again; 'qelta compact' gives it back.\n"
      "\n"
      "Examples:\n"
      "  qelta rm run.db -w ITERATION=..10 --dry-run\n"
      "  qelta rm run.db -w ITERATION=..10 --yes");
  command->callback([&action, options] { action = [options] { return Remove(*options); }; });
}

}  // namespace qelta
