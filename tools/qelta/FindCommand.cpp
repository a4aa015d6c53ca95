#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Selection.h"

namespace qelta {
namespace {

int Find(const Selection& selection) {
  const std::vector<FED_DataDescriptor> found = selection.Find();
  for (const FED_DataDescriptor& key : found) Console::Print(key.ToString() + "\n");
  return found.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddFindCommand(CLI::App& app, Action& action) {
  const auto selection = std::make_shared<Selection>();
  CLI::App* const command =
      app.add_subcommand("find", "List the blocks of a result file that a selection picks");
  selection->AddTo(*command);
  command->callback([&action, selection] { action = [selection] { return Find(*selection); }; });
}

}  // namespace qelta
