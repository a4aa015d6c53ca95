#include <memory>

#include "Commands.h"
#include "Databases.h"
#include "ExitCode.h"
#include "Maintenance.h"

namespace qelta {

void AddSalvageCommand(CLI::App& app, Action& action) {
  CLI::App* const command =
      app.add_subcommand("salvage", "Copy what is intact in a damaged database");
  const auto options = MaintenanceOptions::AddTo(*command);
  command->add_option("TARGET", options->target, "Directory of the new database")->required();
  command->footer(
      "Prints a line for each loss; exit code 1 when there is one. The damaged database\n"
      "stays as it is.\n"
      "\n"
      "Examples:\n"
      "  qelta salvage run.db rescued.db");
  command->callback([&action, options] {
    action = [options] {
      const DatabaseReport report =
          RunMaintenance("salvaging", *options, [&](const auto& progress) {
            return MakeTarget(*options, [&] {
              return SalvageDatabase(options->name, options->target, progress);
            });
          });
      PrintReport(report, "all salvaged", "salvaged with losses");
      return report.problems.empty() ? EXIT_DONE : EXIT_NOTHING_FOUND;
    };
  });
}

}  // namespace qelta
