#include <QeltaBlockCopy.h>

#include <map>
#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "Selection.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  std::string target;
  std::vector<std::string> changes;
  QeltaConflict conflict = QeltaConflict::Fail;
  bool isDryRun = false;
};

int Copy(Options& options) {
  const QeltaKeyChanges changes = ParseChanges(options.changes);
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  if (keys.empty()) return EXIT_NOTHING_FOUND;
  const FED_Database& source = options.selection.GetSource().Load(keys);
  TargetDatabase target(options.target, options.isDryRun);
  QeltaBlockCopy copy(source, target.Get(), keys, changes, options.conflict);
  const auto& jobs = copy.GetJobs();
  if (options.isDryRun) {
    for (const auto& job : jobs) Console::Print(job.second.ToString() + "\n");
  } else {
    Progress progress("copying", options.selection.GetOptions().showProgress, "blocks");
    copy.CopyIds();
    for (std::size_t i = 0; i < jobs.size(); ++i) {
      progress.Show(i, jobs.size());
      copy.CopyBlock(i);
    }
    target.Save();
  }
  Console::Print((options.isDryRun ? "would copy " : "copied ") + CountText(jobs.size(), "block") +
                 ", " + std::to_string(copy.GetReplacedCount()) + " of them replaced, " +
                 std::to_string(copy.GetSkippedCount()) + " skipped\n");
  return EXIT_DONE;
}

}  // namespace

void AddCopyCommand(CLI::App& app, Action& action) {
  static const std::map<std::string, QeltaConflict> kConflicts = {
      {"fail", QeltaConflict::Fail},
      {"skip", QeltaConflict::Skip},
      {"replace", QeltaConflict::Replace}};
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("copy", "Copy blocks into a database, by ids and names");
  options->selection.AddTo(*command);
  command->add_option("TARGET", options->target, "Database directory, made when it is not there")
      ->required();
  AddSetOption(*command, options->changes);
  command
      ->add_option("--on-conflict", options->conflict,
                   "What to do about blocks that TARGET has:\nfail (as a rule), skip or replace")
      ->transform(Choice(kConflicts))
      ->type_name("WHAT");
  command->add_flag("-n,--dry-run", options->isDryRun,
                    "Only print the keys of what would be copied");
  command->footer(
      "All blocks are stored at once, in one checkpoint, or none is. The two sides may\n"
      "number nodes, elements and so on differently.\n"
      "\n"
      "Examples:\n"
      "  qelta copy run.db best.db --latest --on-conflict replace\n"
      "  qelta copy job.frd run.db -w LABEL=DISP --set ITERATION=12");
  command->callback([&action, options] { action = [options] { return Copy(*options); }; });
}

}  // namespace qelta
