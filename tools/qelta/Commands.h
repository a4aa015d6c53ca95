#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace qelta {

/// What the chosen subcommand does; its result is the exit code.
using Action = std::function<int()>;

// Each adds one subcommand to the application. When it is chosen, it sets `action`, which must
// outlive the application.
void AddInfoCommand(CLI::App& app, Action& action);
void AddFindCommand(CLI::App& app, Action& action);
void AddShowCommand(CLI::App& app, Action& action);

}  // namespace qelta
