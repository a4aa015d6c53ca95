#include <memory>

#include "Commands.h"
#include "Console.h"
#include "Databases.h"
#include "ExitCode.h"
#include "Maintenance.h"

namespace qelta {

void AddVerifyCommand(CLI::App& app, Action& action) {
  CLI::App* const command = app.add_subcommand("verify", "Check a database for damage");
  const auto options = MaintenanceOptions::AddTo(*command);
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "Reads everything and compares it with its checksums. Prints a line for each\n"
      "problem; exit code 3 when there is one. csv, json and jsonl give these lines\n"
      "alone.\n"
      "\n"
      "Examples:\n"
      "  qelta verify run.db");
  command->callback([&action, options] {
    action = [options] {
      const DatabaseReport report = RunMaintenance(
          "verifying", *options,
          [&](const auto& progress) { return VerifyDatabase(options->name, progress); });
      PrintReport(report, "intact", "damaged", options->format);
      return report.problems.empty() ? EXIT_DONE : EXIT_BAD_INPUT;
    };
  });
}

}  // namespace qelta
