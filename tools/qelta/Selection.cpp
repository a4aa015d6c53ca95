#include "Selection.h"

#include <FED_DataDescriptorPattern.h>
#include <FED_Exception.h>
#include <FrdSummary.h>
#include <QeltaPatternText.h>

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

FED_DataDescriptorPattern ParsePattern(const std::vector<std::string>& where) {
  try {
    return ParsePatternTexts(where);
  } catch (const FED_Exception& failure) {
    throw CLI::ValidationError("--where", failure.what());
  }
}

}  // namespace

void Selection::AddTo(CLI::App& command) {
  command.add_option("FILE", file, "CalculiX result file (.frd)")->required();
  command.add_option("-w,--where", where, kPatternHelp)
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("FIELD=VALUE");
  command.add_flag("--running", acceptRunningJob, "Accept a file that a running job still writes");
}

FrdReadOptions Selection::ReadOptions() const {
  FrdReadOptions options;
  options.acceptRunningJob = acceptRunningJob;
  return options;
}

std::vector<FED_DataDescriptor> Selection::Find() const {
  const FED_DataDescriptorPattern pattern = ParsePattern(where);
  std::vector<FED_DataDescriptor> keys;
  for (const auto& block : SummarizeFrd(file, ReadOptions()).blocks) keys.push_back(block.key);
  return pattern.Match(keys);
}

}  // namespace qelta
