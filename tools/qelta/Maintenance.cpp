#include "Maintenance.h"

#include "Selection.h"

namespace qelta {

std::shared_ptr<MaintenanceOptions> MaintenanceOptions::AddTo(CLI::App& command) {
  auto options = std::make_shared<MaintenanceOptions>();
  command.add_option("DB", options->name, "Database directory")->required();
  Selection::AddProgressTo(command, options->showProgress);
  return options;
}

void PrintReport(const DatabaseReport& report, const std::string& well, const std::string& badly,
                 OutputFormat format) {
  PrintLines("problem", report.problems, format);
  if (format != OutputFormat::Table) return;
  Console::Print(CountText(report.blocks, "block") + ", " +
                 BytesText(static_cast<double>(report.bytes)) + ": " +
                 (report.problems.empty() ? well : badly) + "\n");
}

}  // namespace qelta
