#include <QeltaNames.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "ExportJob.h"
#include "OptionChecks.h"

namespace qelta {
namespace {

struct Format {
  const char* name;
  std::vector<std::string> endings;  // of files
  bool compresses;                   // may be compressed
  bool deforms;                      // may be deformed
  std::string (*write)(ExportJob& job);
};

const std::vector<Format>& Formats() {
  static const std::vector<Format> kFormats = {
      {"vtu", {".vtu"}, true, true, ExportVtuFile},
      {"pvd", {".pvd"}, true, true, ExportVtuCollection},
      {"hdf5", {".h5", ".hdf5"}, true, false, ExportHdf5File},
      {"csv", {".csv"}, false, false, ExportCsvRows},
      {"jsonl", {".jsonl"}, false, false, ExportJsonRows}};
  return kFormats;
}

template <class Test>
const Format* FindFormat(Test test) {
  const auto found = std::find_if(Formats().begin(), Formats().end(), test);
  return found == Formats().end() ? nullptr : &*found;
}

std::vector<std::string> Names() {
  std::vector<std::string> names;
  for (const Format& format : Formats()) names.emplace_back(format.name);
  return names;
}

// "vtu|pvd": what the completion of shells is made of.
std::string TypeName() {
  std::string text;
  for (const Format& format : Formats())
    text += (text.empty() ? "" : "|") + std::string(format.name);
  return text;
}

const Format& FormatOf(const std::string& name, const std::string& output) {
  const Format* const named = FindFormat([&](const Format& one) { return one.name == name; });
  if (named != nullptr) return *named;
  const std::string ending = std::filesystem::u8path(output).extension().u8string();
  const Format* const format = FindFormat([&](const Format& one) {
    const auto isIt = [&](const std::string& known) { return IsSameName(known, ending); };
    return std::any_of(one.endings.begin(), one.endings.end(), isIt);
  });
  if (format != nullptr) return *format;
  throw CLI::ValidationError("--output", "the ending of '" + output +
                                             "' names no format; let it end in one of " +
                                             Join(Names()) + ", or say --format");
}

struct Options {
  ExportJob job;
  std::string format;
};

void RefuseUnless(bool isPossible, const std::string& option, const Format& format) {
  if (isPossible) return;
  throw CLI::ValidationError(option, std::string("it means nothing for ") + format.name);
}

int Export(Options& options) {
  ExportJob& job = options.job;
  const Format& format = FormatOf(options.format, job.output);
  RefuseUnless(format.compresses || !job.compresses, "--compress", format);
  RefuseUnless(format.deforms || !job.deformation, "--deformed", format);
  if (job.deformation && !std::isfinite(*job.deformation)) {
    throw CLI::ValidationError("--deformed", "the scale is not finite");
  }
  job.selection.RequireOther(job.output);
  job.keys = job.selection.Find();
  if (job.keys.empty()) return EXIT_NOTHING_FOUND;
  Console::Print(format.write(job));
  return EXIT_DONE;
}

}  // namespace

void AddExportCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  ExportJob& job = options->job;
  CLI::App* const command =
      app.add_subcommand("export", "Write blocks to files for ParaView and other programs");
  job.selection.AddTo(*command);
  command->add_option("-o,--output", job.output, "The file to write; its ending tells the format")
      ->required()
      ->type_name("OUT");
  command->add_option("--format", options->format, "The format, whatever the ending is")
      ->check(OneOf(Names()))
      ->type_name(TypeName());
  command->add_flag("--compress", job.compresses,
                    "Compress vtu and hdf5 files: smaller, but slower");
  command
      ->add_option("--deformed", job.deformation,
                   "Move the nodes in vtu files by so many times\ntheir displacement or mode shape")
      ->type_name("SCALE");
  command->footer(
      "vtu    one step of one mesh, for ParaView: values at nodes and elements, their\n"
      "       ids, groups and materials. A missing value is NaN.\n"
      "pvd    all steps: vtu files in the folder NAME_vtu, and their times in NAME.pvd\n"
      "hdf5   everything, for h5py and others; 'import' brings it back as it was\n"
      "csv    the rows of one block, as 'show' gives them; with -o FOLDER/ a file for\n"
      "       each block\n"
      "jsonl  the rows of all blocks, an object a line that names its block\n"
      "\n"
      "The mesh that values belong to need not be selected. A file appears when it is\n"
      "whole, and replaces one of that name.\n"
      "\n"
      "Examples:\n"
      "  qelta export job.frd -o job.pvd\n"
      "  qelta export run.db -w STATE=3 --deformed 20 -o mode3.vtu\n"
      "  qelta export run.db -o run.h5\n"
      "  qelta export run.db -w LABEL=STRESS -w INCREMENT=max -o stress.csv\n"
      "  qelta export run.db --latest --format csv -o tables/");
  command->callback([&action, options] { action = [options] { return Export(*options); }; });
}

}  // namespace qelta
