#include <QeltaOutputFile.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "OptionChecks.h"
#include "Progress.h"
#include "ReportPage.h"
#include "ReportTemplate.h"
#include "Selection.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

constexpr double kMostMegabytes = 1e9;

struct Options {
  Selection selection;
  std::string output;
  double megabytes = 64;
};

// The meshes, and what says when something happened.
bool IsBackground(const Key& key) {
  constexpr FED_OnfId kKinds[] = {ONF_NODE_COORDINATES, ONF_ELEMENT_TOPOLOGY, ONF_FRAME_TIME,
                                  ONF_FRAME_FREQUENCY, ONF_BUCKLING_FACTOR};
  return key.Has(Key::ONF) && std::find(std::begin(kKinds), std::end(kKinds),
                                        key.GetInteger(Key::ONF)) != std::end(kKinds);
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  char text[sizeof "2000-01-01 00:00"];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", std::localtime(&now));
  return text;
}

ReportTexts MakeTexts(const Selection& selection, std::size_t chosen, std::size_t all) {
  auto path = std::filesystem::u8path(selection.GetName());
  if (!path.has_filename()) path = path.parent_path();
  const std::string blocks = chosen == all
                                 ? CountText(all, "block")
                                 : std::to_string(chosen) + " of " + CountText(all, "block");
  return {path.filename().u8string(), selection.GetName() + ", " + blocks,
          "Made with qelta " QELTA_VERSION " on " + Today() + "."};
}

int Report(Options& options) {
  if (ReportTemplate().empty()) {
    throw CLI::ValidationError(
        "report", "This build of qelta has no report: npm was not there when it was built.");
  }
  Selection& selection = options.selection;
  selection.RequireOther(options.output);
  const std::vector<Key> keys = selection.Find();
  if (keys.empty()) return EXIT_NOTHING_FOUND;
  ResultSource& source = selection.GetSource();
  const FED_Database& database = selection.Load(keys, IsBackground);
  ReportPage page(database, source.Describe(keys),
                  MakeTexts(selection, keys.size(), source.GetKeys().size()),
                  selection.GetOptions().showProgress);
  const Console::InterruptGuard guard;
  QeltaOutputFile file(options.output);
  page.Write(file, static_cast<std::uint64_t>(std::min(options.megabytes, kMostMegabytes) * 1e6));
  const auto bytes = static_cast<double>(file.GetPosition());
  Console::ThrowIfInterrupted();
  file.Commit();
  for (const std::string& note : page.GetNotes()) Console::Complain(note);
  Console::Print("wrote " + options.output + ": " + CountText(keys.size(), "block") + ", " +
                 BytesText(bytes) + "\n");
  return EXIT_DONE;
}

}  // namespace

void AddReportCommand(CLI::App& app, Action& action) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command =
      app.add_subcommand("report", "Write a page for the browser: mesh, charts, blocks");
  options->selection.AddTo(*command);
  command->add_option("-o,--output", options->output, "The page to write")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--max-size", options->megabytes,
                   "Size of the page in MB, 64 as a rule; steps\n"
                   "that have no room are left out evenly")
      ->check(PlainNumber(false))
      ->type_name("MB");
  command->footer(
      "The page is one file that needs no network. It shows the surface of the mesh,\n"
      "coloured and deformed by the fields of every step, charts of what changes from\n"
      "step to step, and all selected blocks.\n"
      "\n"
      "Examples:\n"
      "  qelta report run.db -o report.html\n"
      "  qelta report job.frd -o last.html -w INCREMENT=max/LOADCASE\n"
      "  qelta report run.db -o stress.html -w LABEL=STRESS,DISP --max-size 20");
  command->callback([&action, options] { action = [options] { return Report(*options); }; });
}

}  // namespace qelta
