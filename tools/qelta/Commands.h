#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace qelta {

/// What the chosen subcommand does; its result is the exit code.
using Action = std::function<int()>;

// Each adds one subcommand to the application. When it is chosen, it sets `action`, which must
// outlive the application.
void AddInfoCommand(CLI::App& app, Action& action);
void AddLsCommand(CLI::App& app, Action& action);
void AddFindCommand(CLI::App& app, Action& action);
void AddShowCommand(CLI::App& app, Action& action);
void AddStatsCommand(CLI::App& app, Action& action);
void AddPlotCommand(CLI::App& app, Action& action);
void AddDiffCommand(CLI::App& app, Action& action);
void AddImportCommand(CLI::App& app, Action& action);
void AddCopyCommand(CLI::App& app, Action& action);
void AddExportCommand(CLI::App& app, Action& action);
void AddReportCommand(CLI::App& app, Action& action);
void AddRmCommand(CLI::App& app, Action& action);
void AddVerifyCommand(CLI::App& app, Action& action);
void AddSalvageCommand(CLI::App& app, Action& action);
void AddCompactCommand(CLI::App& app, Action& action);
void AddBackupCommand(CLI::App& app, Action& action);
void AddCompletionCommand(CLI::App& app, Action& action);
void AddHelpCommand(CLI::App& app, Action& action);

}  // namespace qelta
