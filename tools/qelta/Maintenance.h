#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "Console.h"
#include "Databases.h"
#include "Progress.h"
#include "RowOutput.h"
#include "TargetDatabase.h"

namespace qelta {

/// What verify, salvage, compact and backup have in common.
struct MaintenanceOptions {
  std::string name;
  std::string target;
  bool showProgress = true;
  OutputFormat format = OutputFormat::Table;

  static std::shared_ptr<MaintenanceOptions> AddTo(CLI::App& command);
};

/// Runs `work` with a DatabaseProgress. After a Ctrl-C it ends in peace, then Interrupted is
/// thrown.
template <class Work>
auto RunMaintenance(const std::string& what, const MaintenanceOptions& options, Work work) {
  Progress progress(what + " " + options.name, options.showProgress);
  auto result = work([&progress](std::uint64_t done, std::uint64_t total) {
    return progress.GoesOn(done, total);
  });
  Console::ThrowIfInterrupted();
  return result;
}

/// Runs `work`, which makes the target. Fails as a wrong command line does when that exists.
template <class Work>
auto MakeTarget(const MaintenanceOptions& options, Work work) {
  RequireTarget(options.target, true);
  return WithTarget(options.target, work);
}

/// The problems, and then "3 blocks, 12 MB: intact", or the other word. Formats other than a table
/// get the problems alone.
void PrintReport(const DatabaseReport& report, const std::string& well, const std::string& badly,
                 OutputFormat format = OutputFormat::Table);

}  // namespace qelta
