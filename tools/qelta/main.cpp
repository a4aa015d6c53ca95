#include <FED_Exception.h>
#include <FrdSource.h>

#include <CLI/CLI.hpp>
#include <exception>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"

namespace {

using namespace qelta;

int Usage(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    Console::Print(app.help());
    return EXIT_DONE;
  }
  Console::Complain(std::string(error.what()) + " (qelta --help says more)");
  return EXIT_USAGE;
}

int Run(int argc, char** argv) {
  Action action;
  CLI::App app("Looks into the results of solvers and optimisers.", "qelta");
  app.footer(
      "Exit codes: 0 done, 1 nothing found, 2 usage, 3 damaged or unreadable input,\n"
      "4 input or output failure.");
  AddInfoCommand(app, action);
  AddFindCommand(app, action);
  try {
    app.parse(argc, argv);
    if (!action) throw CLI::RequiredError("A subcommand");
  } catch (const CLI::ParseError& error) {
    return Usage(app, error);
  }
  return action();
}

int RunGuarded(int argc, char** argv) {
  try {
    Console::Prepare();
    const int code = Run(argc, argv);
    Console::Flush();
    return code;
  } catch (const Console::PipeClosed&) {
    return EXIT_DONE;
  } catch (const Console::OutputFailure&) {
    Console::Complain("cannot write the output (is the device full?)");
    return EXIT_IO_FAILURE;
  } catch (const CLI::Error& error) {
    Console::Complain(error.what());
    return EXIT_USAGE;
  } catch (const FED_Exception& failure) {
    Console::Complain(failure.what());
    return failure.GetMessageId() == FrdSource::kReadErrorId ? EXIT_IO_FAILURE : EXIT_BAD_INPUT;
  } catch (const std::exception& error) {
    Console::Complain(error.what());
    return EXIT_IO_FAILURE;
  }
}

}  // namespace

int main(int argc, char** argv) { return RunGuarded(argc, argv); }
