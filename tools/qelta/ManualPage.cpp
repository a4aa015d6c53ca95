#include "ManualPage.h"

#include <sstream>

#include "HelpTexts.h"

namespace qelta {
namespace {

// A line of text as it is: what man takes for a request or an escape is made harmless.
std::string Line(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\\') {
      line += "\\e";
    } else if (c == '-') {
      line += "\\-";
    } else if (c == '\'') {
      line += "\\(aq";
    } else {
      line += c;
    }
  }
  return (!line.empty() && line[0] == '.' ? "\\&" : "") + line + "\n";
}

// Paragraphs; indented lines stay lines.
std::string Paragraphs(const std::string& text) {
  std::istringstream lines(text);
  std::string page;
  bool isVerbatim = false;
  for (std::string line; std::getline(lines, line);) {
    const bool isIndented = line.rfind("  ", 0) == 0;
    if (isIndented != isVerbatim) page += isIndented ? ".PP\n.nf\n" : ".fi\n";
    isVerbatim = isIndented;
    if (line == "Examples:") {
      page += ".SH EXAMPLES\n";
    } else {
      page += line.empty() ? ".PP\n" : Line(line);
    }
  }
  return page + (isVerbatim ? ".fi\n" : "");
}

std::string Head(const std::string& name, const std::string& section, const std::string& summary) {
  return ".TH " + name + " " + section + " \"\" \"qelta " QELTA_VERSION "\"\n.SH NAME\n" +
         Line(name + " - " + summary);
}

std::string NameOf(const CLI::Option& option) {
  std::string name;
  for (const std::string& one : option.get_snames()) name += (name.empty() ? "-" : ", -") + one;
  for (const std::string& one : option.get_lnames()) name += (name.empty() ? "--" : ", --") + one;
  if (name.empty()) return option.get_name(true);
  return name + (option.get_expected_max() == 0 ? "" : " " + option.get_type_name());
}

std::string OptionsOf(const CLI::App& command) {
  std::string page = ".SH OPTIONS\n";
  for (const CLI::Option* option : command.get_options()) {
    std::string description = option->get_description();
    for (char& c : description) c = c == '\n' ? ' ' : c;
    page += ".TP\n.B " + Line(NameOf(*option)) + Line(description);
  }
  return page;
}

std::string SynopsisOf(const CLI::App& command) {
  std::string line = "qelta " + command.get_name() + " [OPTIONS]";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name = option->get_name(true);
    line += option->get_required() ? " " + name : " [" + name + "]";
  }
  return ".SH SYNOPSIS\n.B " + Line(line);
}

std::string Ending(const std::string& others) {
  std::string exits = kExitHelp;
  for (char& c : exits) c = c == '\n' ? ' ' : c;
  return ".SH EXIT STATUS\n" + Line(exits.substr(exits.find(':') + 2)) + ".SH SEE ALSO\n" + others +
         "\n";
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string page = Head("qelta", "1", app.get_description());
  page += ".SH SYNOPSIS\n.B qelta\nCOMMAND [OPTIONS]\n.SH COMMANDS\n";
  std::string others = "qelta\\-pattern(7)";
  for (const CLI::App* command : app.get_subcommands({})) {
    page += ".TP\n.B " + Line(command->get_name()) + Line(command->get_description());
    others += ", qelta\\-" + command->get_name() + "(1)";
  }
  return page + ".SH DESCRIPTION\n" + Paragraphs(kGeneralHelp) + OptionsOf(app) + Ending(others);
}

std::string ManualPage(const CLI::App& /*app*/, const CLI::App& command) {
  const std::string footer = command.get_footer();
  const std::size_t examples = std::min(footer.find("Examples:"), footer.size());
  return Head("qelta-" + command.get_name(), "1", command.get_description()) + SynopsisOf(command) +
         ".SH DESCRIPTION\n" + Line(command.get_description() + ".") +
         (examples == 0 ? "" : ".PP\n" + Paragraphs(footer.substr(0, examples))) +
         OptionsOf(command) + Paragraphs(footer.substr(examples)) +
         Ending("qelta(1), qelta\\-pattern(7)");
}

std::string PatternManualPage() {
  const std::string text = kPatternHelp;
  return Head("qelta-pattern", "7", "how qelta selects blocks") + ".SH DESCRIPTION\n" +
         Paragraphs(text.substr(text.find('\n') + 2)) + ".SH SEE ALSO\nqelta(1)\n";
}

}  // namespace qelta
