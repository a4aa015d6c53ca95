#include <memory>

#include "Commands.h"
#include "Databases.h"
#include "ExitCode.h"
#include "Maintenance.h"

namespace qelta {

void AddBackupCommand(CLI::App& app, Action& action) {
  CLI::App* const command =
      app.add_subcommand("backup", "Copy the newest checkpoint of a database");
  const auto options = MaintenanceOptions::AddTo(*command);
  command->add_option("TARGET", options->target, "Directory of the new database")->required();
  command->footer(
      "A program that writes to the database may go on meanwhile.\n"
      "\n"
      "Examples:\n"
      "  qelta backup run.db saved.db");
  command->callback([&action, options] {
    action = [options] {
      RunMaintenance("backing up", *options, [&](const auto& progress) {
        return MakeTarget(*options, [&] {
          BackupDatabase(options->name, options->target, progress);
          return 0;
        });
      });
      return EXIT_DONE;
    };
  });
}

}  // namespace qelta
