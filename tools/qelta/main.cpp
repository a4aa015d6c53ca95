#include <FED_Exception.h>
#include <FED_LogMacros.h>
#include <QeltaBlockCopy.h>
#include <QeltaNames.h>
#include <QeltaSelectingSink.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "Databases.h"
#include "ExitCode.h"
#include "HelpTexts.h"
#include "Terminal.h"

namespace {

using namespace qelta;

constexpr void (*kCommands[])(CLI::App&, Action&) = {
    AddInfoCommand,   AddLsCommand,         AddFindCommand,   AddShowCommand,    AddStatsCommand,
    AddPlotCommand,   AddDiffCommand,       AddImportCommand, AddCopyCommand,    AddExportCommand,
    AddReportCommand, AddRmCommand,         AddVerifyCommand, AddSalvageCommand, AddCompactCommand,
    AddBackupCommand, AddCompletionCommand, AddHelpCommand};

// What is wrong with the command, if that is what is wrong.
std::string CommandComplaint(const CLI::App& app) {
  if (!app.get_subcommands().empty()) return {};
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  const std::string list = "the commands are " + Join(names) + ".";
  const std::vector<std::string> words = app.remaining();
  if (words.empty()) return "A command is missing; " + list;
  if (words[0][0] == '-') return {};
  return "There is no command '" + words[0] + "'; " + list + SuggestLike(words[0], names);
}

// An empty value is a variable of a script that was never set: it must not mean "everything".
void RefuseEmptyValues(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    for (CLI::Option* option : command->get_options()) {
      option->check(CLI::Validator(
          [](std::string& value) { return std::string(value.empty() ? "the value is empty" : ""); },
          ""));
    }
  }
}

int Usage(const CLI::App& app, const CLI::ParseError& error) {
  const std::string complaint = CommandComplaint(app);
  Console::Complain((complaint.empty() ? error.what() : complaint) + " (qelta --help says more)");
  return EXIT_USAGE;
}

int Run(int argc, char** argv, Action& action) {
  CLI::App app("Looks into the results of solvers and optimisers.", "qelta");
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", "qelta " QELTA_VERSION "\n", "Print the version and exit");
  app.footer(
      std::string("'qelta COMMAND --help' explains a command, 'qelta help pattern' how to select\n"
                  "blocks.\n\n") +
      kExitHelp);
  app.allow_windows_style_options(false);  // "/name" is a path, on all systems
  for (const auto add : kCommands) add(app, action);
  RefuseEmptyValues(app);
  try {
    std::vector<std::string> words = Terminal::GetArguments(argc, argv);
    std::reverse(words.begin(), words.end());  // the order that the parser takes them in
    app.parse(std::move(words));
    if (!action) throw CLI::RequiredError("A subcommand");
  } catch (const CLI::CallForVersion& version) {
    Console::Print(version.what());
    return EXIT_DONE;
  } catch (const CLI::Success&) {
    Console::Print(app.help());
    return EXIT_DONE;
  } catch (const CLI::ParseError& error) {
    return Usage(app, error);
  }
  return action();
}

// What the library says on the side, such as that it does not know a kind of block. Told only after
// a command that did its work: one that failed says why in one line.
using Notes = std::vector<std::string>;

void TakeNote(void* notes, FED_LogMacros::LogMsgType type, const char*, int, const char*,
              const char* text) {
  if (type == FED_LogMacros::LOG_CONTINUED) static_cast<Notes*>(notes)->emplace_back(text);
}

// What asks for something that cannot be is the caller's fault wherever it is noticed.
int ExitCodeOf(const FED_Exception& failure) {
  static constexpr const char* kRequests[] = {
      QeltaSelectingSink::kCollisionId, QeltaKeyChanges::kCollisionId, QeltaBlockCopy::kConflictId};
  const bool isRequest =
      std::count(std::begin(kRequests), std::end(kRequests), failure.GetMessageId()) > 0;
  return isRequest ? EXIT_USAGE : IsDeviceFailure(failure) ? EXIT_IO_FAILURE : EXIT_BAD_INPUT;
}

int RunGuarded(int argc, char** argv, Action& action) {
  Notes notes;
  try {
    Console::Prepare();
    FED_LogMacros::SetSink(TakeNote, &notes);
    const int code = Run(argc, argv, action);
    Console::Flush();
    for (const std::string& note : notes) Console::Complain(note);
    return code;
  } catch (const Console::PipeClosed&) {
    return EXIT_DONE;
  } catch (const Console::OutputFailure&) {
    Console::Complain("cannot write the output (is the device full?)");
    return EXIT_IO_FAILURE;
  } catch (const Console::Interrupted&) {
    return EXIT_INTERRUPTED;
  } catch (const CLI::Error& error) {
    Console::Complain(error.what());
    return EXIT_USAGE;
  } catch (const FED_Exception& failure) {
    Console::Complain(failure.what());
    return ExitCodeOf(failure);
  } catch (const std::bad_alloc&) {
    Console::Complain("out of memory");
    return EXIT_IO_FAILURE;
  } catch (const std::exception& error) {
    Console::Complain(error.what());
    return EXIT_IO_FAILURE;
  }
}

}  // namespace

int main(int argc, char** argv) {
  Action action;
  const int code = RunGuarded(argc, argv, action);
  // What was open for reading ends with the process: to take 100 000 blocks apart costs a third of
  // listing them. What was written to is closed by now.
  std::_Exit(code);
}
