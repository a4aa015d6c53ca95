#include <QeltaNames.h>

#include <memory>
#include <string>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "HelpTexts.h"
#include "ManualPage.h"

namespace qelta {
namespace {

CLI::App& RequireCommand(CLI::App& app, const std::string& name) {
  std::vector<std::string> names = {"pattern"};
  for (CLI::App* command : app.get_subcommands({})) {
    names.push_back(command->get_name());
    if (command->get_name() == name) return *command;
  }
  throw CLI::ValidationError("help",
                             "There is no help about '" + name + "'." + Suggest(name, names));
}

std::string Help(CLI::App& app, const std::string& topic, bool isManual) {
  if (topic == "pattern") return isManual ? PatternManualPage() : kPatternHelp;
  if (topic.empty()) return isManual ? ManualPage(app) : app.help("", CLI::AppFormatMode::All);
  CLI::App& command = RequireCommand(app, topic);
  return isManual ? ManualPage(app, command) : command.help("qelta");
}

}  // namespace

void AddHelpCommand(CLI::App& app, Action& action) {
  const auto topic = std::make_shared<std::string>();
  const auto isManual = std::make_shared<bool>(false);
  CLI::App* const command =
      app.add_subcommand("help", "Explain a command, or how to select blocks");
  command->add_option("TOPIC", *topic, "A command, or 'pattern'");
  command->add_flag("--man", *isManual, "As source of a manual page");
  command->footer(
      "Examples:\n"
      "  qelta help pattern\n"
      "  qelta help show");
  command->callback([&app, &action, topic, isManual] {
    action = [&app, topic, isManual] {
      Console::Print(topic->empty() && !*isManual ? app.help() : Help(app, *topic, *isManual));
      return EXIT_DONE;
    };
  });
}

}  // namespace qelta
