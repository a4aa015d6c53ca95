#include "Selection.h"

#include <filesystem>
#include <system_error>

namespace qelta {

void Selection::AddTo(CLI::App& command, bool needsRecords) {
  m_Options.needsRecords = needsRecords;
  AddSourceTo(command, m_Name, needsRecords);
  AddPatternTo(command);
  AddRunningTo(command, m_Options.acceptRunningJob);
  AddProgressTo(command, m_Options.showProgress);
}

void Selection::AddPatternTo(CLI::App& command) {
  AddWhereTo(command);
  command.add_flag("--latest", m_Latest, "The same as -w ITERATION=max");
}

void Selection::AddWhereTo(CLI::App& command) {
  command
      .add_option("-w,--where", m_Where,
                  "Select blocks: LABEL=DISP, STATE=2..5,\n"
                  "LABEL~'STR*', ONF=velocity, INCREMENT=max;\n"
                  "may be repeated, all must hold. See\n"
                  "'qelta help pattern'")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("FIELD=VALUE");
}

void Selection::AddSourceTo(CLI::App& command, std::string& name, bool needsRecords) {
  const std::string source = "Database directory or CalculiX result file (.frd)";
  command.add_option("SOURCE", name, source + (needsRecords ? "" : ";\n- is the standard input"))
      ->required();
}

void Selection::AddRunningTo(CLI::App& command, bool& acceptRunningJob) {
  command.add_flag("--running", acceptRunningJob, "Accept a file that a running job still writes");
}

void Selection::AddProgressTo(CLI::App& command, bool& showProgress) {
  command.add_flag_callback(
      "--no-progress", [&showProgress] { showProgress = false; },
      "Show no progress on the terminal");
}

QeltaPatternText Selection::GetPattern() const {
  return ParseOption("--where", [this] {
    QeltaPatternText pattern(m_Where);
    if (m_Latest) pattern.Add("ITERATION=max");
    return pattern;
  });
}

ResultSource& Selection::GetSource() {
  if (!m_Source) {
    GetPattern();
    m_Source = ResultSource::Open(m_Name, m_Options);
  }
  return *m_Source;
}

void Selection::RequireOther(const std::string& output) const {
  const auto isSource = [this](const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::equivalent(path, std::filesystem::u8path(GetName()), error);
  };
  const auto path = std::filesystem::u8path(output);
  if (!isSource(path) && !isSource(path.parent_path())) return;
  throw CLI::ValidationError("--output", "'" + output +
                                             "' is the source itself, or lies in it. Choose "
                                             "another name.");
}

std::vector<FED_DataDescriptor> Selection::Find() {
  return GetPattern().Select(GetSource().GetKeys());
}

void AddSetOption(CLI::App& command, std::vector<std::string>& texts) {
  command
      .add_option("--set", texts,
                  "Store under a changed key; FIELD=! leaves\n"
                  "the field out, quotes as for -w. May be\nrepeated")
      ->expected(1)
      ->allow_extra_args(false)
      ->take_all()
      ->type_name("FIELD=VALUE");
}

QeltaKeyChanges ParseChanges(const std::vector<std::string>& texts) {
  return ParseOption("--set", [&texts] { return QeltaKeyChanges(texts); });
}

}  // namespace qelta
