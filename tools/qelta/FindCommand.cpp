#include <FED_DataDescriptorPattern.h>
#include <FED_Exception.h>
#include <FrdSummary.h>
#include <QeltaPatternText.h>

#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"

namespace qelta {
namespace {

constexpr const char* kPatternHelp =
    "Select by a field; all selections must hold:\n"
    "LABEL=DISP     this text or number\n"
    "STATE=5..      at least (..9 at most)\n"
    "INCREMENT=max  the highest (or min) of all\n"
    "               that the others select\n"
    "LAYER=?        present (! missing)\n"
    "ONF=velocity   a kind by name or number\n"
    "ONF=@nodal     a category of kinds";

struct Options {
  std::string file;
  std::vector<std::string> where;
  bool acceptRunningJob = false;
};

FED_DataDescriptorPattern ParsePattern(const std::vector<std::string>& where) {
  try {
    return ParsePatternTexts(where);
  } catch (const FED_Exception& failure) {
    throw CLI::ValidationError("--where", failure.what());
  }
}

int Find(const Options& options) {
  const FED_DataDescriptorPattern pattern = ParsePattern(options.where);
  FrdReadOptions reading;
  reading.acceptRunningJob = options.acceptRunningJob;
  std::vector<FED_DataDescriptor> keys;
  for (const auto& block : SummarizeFrd(options.file, reading).blocks) keys.push_back(block.key);
  const std::vector<FED_DataDescriptor> found = pattern.Match(keys);
  for (const FED_DataDescriptor& key : found) Console::Print(key.ToString() + "\n");
  return found.empty() ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddFindCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("find", "List the blocks of a result file that a selection picks");
  command->add_option("FILE", options->file, "CalculiX result file (.frd)")->required();
  command->add_option("-w,--where", options->where, kPatternHelp)
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("FIELD=VALUE");
  command->add_flag("--running", options->acceptRunningJob,
                    "Accept a file that a running job still writes");
  command->callback([&action, options] { action = [options] { return Find(*options); }; });
}

}  // namespace qelta
