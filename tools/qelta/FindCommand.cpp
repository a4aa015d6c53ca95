#include <memory>

#include "Commands.h"
#include "ExitCode.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  OutputFormat format = OutputFormat::Table;
};

int Find(Options& options) {
  const std::vector<FED_DataDescriptor> found = options.selection.Find();
  std::vector<std::string> keys;
  keys.reserve(found.size());
  for (const FED_DataDescriptor& key : found) keys.push_back(key.ToString());
  PrintLines("descriptor", keys, options.format);
  return found.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddFindCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("find", "Print the keys of the selected blocks, one a line");
  options->selection.AddTo(*command, false);
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "Examples:\n"
      "  qelta find job.frd\n"
      "  qelta find run.db -w LABEL=DISP -w INCREMENT=max/LOADCASE");
  command->callback([&action, options] { action = [options] { return Find(*options); }; });
}

}  // namespace qelta
