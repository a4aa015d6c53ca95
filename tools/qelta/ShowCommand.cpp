#include <memory>
#include <string>
#include <vector>

#include "BlockRows.h"
#include "Commands.h"
#include "ExitCode.h"
#include "NumberRanges.h"
#include "OptionChecks.h"
#include "RowOutput.h"
#include "Selection.h"

namespace qelta {
namespace {

struct Options {
  Selection selection;
  RowChoice choice;
  std::optional<int> digits;
  OutputFormat format = OutputFormat::Table;
};

int Show(Options& options) {
  if (!options.choice.ids.empty()) ParseRanges("--id", options.choice.ids);
  if (!options.choice.rows.empty()) ParseRanges("--rows", options.choice.rows);
  const std::vector<FED_DataDescriptor> keys = options.selection.Find();
  const auto output = RowOutput::Make(options.format, options.digits);
  if (keys.empty()) {
    output->End();
    return EXIT_NOTHING_FOUND;
  }
  const FED_Database& database = options.selection.GetSource().Load(keys);
  RequireFields(options.choice.fields, database, keys);
  std::size_t count = 0;
  for (const FED_DataDescriptor& key : keys) {
    count += BlockRows(database.GetDataBlock(key), database.GetIdMapsPool(), options.choice,
                       options.format)
                 .Print(*output);
  }
  output->End();
  return count == 0 ? EXIT_NOTHING_FOUND : EXIT_DONE;
}

}  // namespace

void AddShowCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand("show", "Print the records of the selected blocks");
  options->selection.AddTo(*command);
  command
      ->add_option("--id", options->choice.ids,
                   "Only the records of these ids (nodes, elements\n"
                   "...), or indices where there are no ids")
      ->type_name("9,18,20..29");
  command
      ->add_option("--name", options->choice.names, "Only the record of this name; may be repeated")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("NAME");
  command->add_option("--rows", options->choice.rows, "Only the records at these indices, from 0")
      ->excludes("--id")
      ->excludes("--name")
      ->type_name("0..9");
  command
      ->add_option("--fields", options->choice.fields,
                   "Only these fields or components, such as\nSTRESS.xx")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("FIELD,...");
  command->add_option("--head", options->choice.head, "At most this many records of each block")
      ->check(WholeNumber(0, std::numeric_limits<int>::max()))
      ->type_name("N");
  command->add_option("--digits", options->digits, "Digits of numbers in a table, 6 as a rule")
      ->check(WholeNumber(1, kAllDigits))
      ->type_name("N");
  RowOutput::AddFormatOption(*command, options->format);
  command->footer(
      "With csv, json and jsonl the columns are index, id and one for each component;\n"
      "several blocks are separated by a blank line, or told apart by their descriptor.\n"
      "\n"
      "Examples:\n"
      "  qelta show job.frd -w LABEL=DISP -w INCREMENT=max --id 9,18\n"
      "  qelta show run.db -w ONF=node_group --name TOP\n"
      "  qelta show run.db -w LABEL=STRESS --fields STRESS.xx,STRESS.xy --format csv");
  command->callback([&action, options] { action = [options] { return Show(*options); }; });
}

}  // namespace qelta
