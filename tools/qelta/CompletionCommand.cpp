#include <FED_DataDescriptor.h>

#include <algorithm>
#include <memory>
#include <string>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "OptionChecks.h"

namespace qelta {
namespace {

// "--where -w ...".
std::string OptionNames(const CLI::App& command) {
  std::string names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names += " --" + name;
    for (const std::string& name : option->get_snames()) names += " -" + name;
  }
  return names.empty() ? names : names.substr(1);
}

std::string FieldTexts() {
  std::string texts;
  for (const auto& field : FED_DataDescriptor::RD_NAME_TYPE_ITEMS) {
    texts += (texts.empty() ? "" : " ") + field.name + "=";
  }
  return texts;
}

std::string CommandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command : app.get_subcommands({})) {
    names += (names.empty() ? "" : " ") + command->get_name();
  }
  return names;
}

// The values of an option --format, which other commands have of their own.
std::string FormatNames(const CLI::App& command) {
  const CLI::Option* const option = command.get_option_no_throw("--format");
  std::string names = option == nullptr ? "" : option->get_type_name();
  if (names.find('|') == std::string::npos) return "table csv json jsonl";
  std::replace(names.begin(), names.end(), '|', ' ');
  return names;
}

// For "a b": "    a) options='...' ;;" and so on, one line a command.
std::string Cases(const CLI::App& app) {
  std::string lines;
  for (const CLI::App* command : app.get_subcommands({})) {
    lines += "    " + command->get_name() + ") options='" + OptionNames(*command) + "' formats='" +
             FormatNames(*command) + "' ;;\n";
  }
  return lines;
}

std::string BashScript(const CLI::App& app) {
  return "# Completion of qelta for bash; put this into ~/.bashrc:  eval \"$(qelta completion "
         "bash)\"\n"
         "_qelta() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} options='' "
         "formats=''\n"
         "  COMPREPLY=()\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W '" +
         CommandNames(app) +
         " --help --version' -- \"$word\"))\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]} in\n" +
         Cases(app) +
         "  esac\n"
         "  case $before in\n"
         "    -w | --where | --set)\n"
         "      compopt -o nospace 2>/dev/null\n"
         "      COMPREPLY=($(compgen -W '" +
         FieldTexts() +
         "' -- \"${word^^}\")) ;;\n"
         "    --format) COMPREPLY=($(compgen -W \"$formats\" -- \"$word\")) ;;\n"
         "    --on-conflict) COMPREPLY=($(compgen -W 'fail skip replace' -- \"$word\")) ;;\n"
         "    help) COMPREPLY=($(compgen -W 'pattern " +
         CommandNames(app) +
         "' -- \"$word\")) ;;\n"
         "    completion) COMPREPLY=($(compgen -W 'bash zsh' -- \"$word\")) ;;\n"
         "    *)\n"
         "      compopt -o filenames 2>/dev/null\n"
         "      case $word in\n"
         "        -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;\n"
         "        *) COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
         "      esac ;;\n"
         "  esac\n"
         "}\n"
         "complete -F _qelta qelta\n";
}

// A text in single quotes of the shell, on one line, without what _arguments takes for its own.
std::string ZshText(const std::string& text) {
  std::string quoted;
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else if (c == '[' || c == ']' || c == ':') {
      quoted += std::string("\\") + c;
    } else {
      quoted += c == '\n' ? ' ' : c;
    }
  }
  return quoted;
}

std::string ZshValues(const CLI::App& command, const CLI::Option& option) {
  const std::string name = option.get_name();
  if (name == "--where" || name == "--set") return "{compadd -S \"\" -- " + FieldTexts() + "}";
  if (name == "--format") return "(" + FormatNames(command) + ")";
  if (name == "--on-conflict") return "(fail skip replace)";
  return "";
}

void AppendOption(std::string& text, const std::string& name, const std::string& rest) {
  text.append(" '*").append(name).append(rest).append("'");
}

std::string ZshOptions(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options()) {
    std::string rest = "[" + ZshText(option->get_description()) + "]";
    if (option->get_expected_max() != 0) {
      rest += ":" + ZshText(option->get_type_name()) + ":" + ZshValues(command, *option);
    }
    for (const std::string& name : option->get_lnames()) AppendOption(text, "--" + name, rest);
    for (const std::string& name : option->get_snames()) AppendOption(text, "-" + name, rest);
  }
  return text;
}

std::string ZshArguments(const CLI::App& app, const std::string& command) {
  if (command == "help") return "command:(pattern " + CommandNames(app) + ")";
  if (command == "completion") return "shell:(bash zsh)";
  return "file:_files";
}

std::string ZshScript(const CLI::App& app) {
  std::string commands, cases;
  for (const CLI::App* command : app.get_subcommands({})) {
    const std::string name = command->get_name();
    commands.append(" '").append(name).append(":");
    commands.append(ZshText(command->get_description())).append("'");
    cases.append("    ").append(name).append(") _arguments").append(ZshOptions(*command));
    cases.append(" '*:").append(ZshArguments(app, name)).append("' ;;\n");
  }
  return "#compdef qelta\n"
         "# Completion of qelta for zsh; put this into ~/.zshrc:  source <(qelta completion zsh)\n"
         "_qelta() {\n"
         "  local -a commands=(" +
         commands +
         ")\n"
         "  if (( CURRENT == 2 )); then\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  local command=$words[2]\n"
         "  shift words\n"
         "  (( CURRENT-- ))\n"
         "  case $command in\n" +
         cases +
         "  esac\n"
         "}\n"
         "compdef _qelta qelta\n";
}

}  // namespace

void AddCompletionCommand(CLI::App& app, Action& action) {
  const auto shell = std::make_shared<std::string>();
  CLI::App* const command =
      app.add_subcommand("completion", "Print a script that completes commands in a shell");
  command->add_option("SHELL", *shell, "bash or zsh")->required()->check(OneOf({"bash", "zsh"}));
  command->footer(
      "Examples:\n"
      "  eval \"$(qelta completion bash)\"\n"
      "  source <(qelta completion zsh)");
  command->callback([&app, &action, shell] {
    action = [&app, shell] {
      Console::Print(*shell == "bash" ? BashScript(app) : ZshScript(app));
      return EXIT_DONE;
    };
  });
}

}  // namespace qelta
