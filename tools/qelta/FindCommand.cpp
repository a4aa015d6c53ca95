#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Selection.h"

namespace qelta {
namespace {

int Find(Selection& selection) {
  const std::vector<FED_DataDescriptor> found = selection.Find();
  for (const FED_DataDescriptor& key : found) Console::Print(key.ToString() + "\n");
  return found.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddFindCommand(CLI::App& app, Action& action) {
  const auto selection = std::make_shared<Selection>();
  CLI::App* const command =
      app.add_subcommand("find", "Print the keys of the selected blocks, one a line");
  selection->AddTo(*command, false);
  command->footer(
      "Examples:\n"
      "  qelta find job.frd\n"
      "  qelta find run.db -w LABEL=DISP -w INCREMENT=max/LOADCASE");
  command->callback([&action, selection] { action = [selection] { return Find(*selection); }; });
}

}  // namespace qelta
