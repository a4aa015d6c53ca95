#include <memory>

#include "Commands.h"
#include "Databases.h"
#include "ExitCode.h"
#include "Maintenance.h"

namespace qelta {

void AddCompactCommand(CLI::App& app, Action& action) {
  CLI::App* const command =
      app.add_subcommand("compact", "Give back the room that a database no longer needs");
  const auto options = MaintenanceOptions::AddTo(*command);
  command->footer(
      "Writes the content anew without gaps, and needs room for all of it until it is\n"
      "done.\n"
      "\n"
      "Examples:\n"
      "  qelta compact run.db");
  command->callback([&action, options] {
    action = [options] {
      RunMaintenance("compacting", *options, [&](const auto& progress) {
        CompactDatabase(options->name, progress);
        return 0;
      });
      return EXIT_DONE;
    };
  });
}

}  // namespace qelta
