#pragma once

#include <FED_DataDescriptor.h>
#include <FED_Exception.h>
#include <QeltaFieldText.h>
#include <QeltaPatternText.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "ResultSource.h"

namespace qelta {

/// Which blocks of which source a command is about; read from its command line.
class Selection {
 public:
  /// Gives `command` the source and the options; this object must outlive the parsing. A command
  /// that needs no records can read the standard input.
  void AddTo(CLI::App& command, bool needsRecords = true);

  /// The options that select, without the source; --where alone.
  void AddPatternTo(CLI::App& command);
  void AddWhereTo(CLI::App& command);
  static void AddSourceTo(CLI::App& command, std::string& name, bool needsRecords);
  static void AddRunningTo(CLI::App& command, bool& acceptRunningJob);
  static void AddProgressTo(CLI::App& command, bool& showProgress);

  /// The command line asks for some blocks, not for all.
  bool IsGiven() const { return !m_Where.empty() || m_Latest; }

  /// Fails as a wrong command line does.
  QeltaPatternText GetPattern() const;

  const std::string& GetName() const { return m_Name; }
  const SourceOptions& GetOptions() const { return m_Options; }

  /// The source, opened by the first call; the command line is checked before.
  ResultSource& GetSource();

  /// Fails as a wrong command line does when the output of a command is its source, or would lie in
  /// it.
  void RequireOther(const std::string& output) const;

  /// The keys of the selected blocks, in the order of the source.
  std::vector<FED_DataDescriptor> Find();

  /// A database with the blocks of these keys, and with all that `others` accepts.
  template <class Test>
  const FED_Database& Load(std::vector<FED_DataDescriptor> keys, Test others) {
    for (const FED_DataDescriptor& key : GetSource().GetKeys()) {
      if (others(key)) keys.push_back(key);
    }
    return GetSource().Load(keys);
  }

 private:
  std::string m_Name;
  std::vector<std::string> m_Where;
  bool m_Latest = false;
  SourceOptions m_Options;
  std::unique_ptr<ResultSource> m_Source;
};

/// The option --set of a command.
void AddSetOption(CLI::App& command, std::vector<std::string>& texts);
/// Its changes; fails as a wrong command line does.
QeltaKeyChanges ParseChanges(const std::vector<std::string>& texts);

/// Runs `parse`; its failures become those of the command line.
template <class Parse>
auto ParseOption(const std::string& option, Parse parse) {
  try {
    return parse();
  } catch (const FED_Exception& failure) {
    throw CLI::ValidationError(option, failure.what());
  }
}

}  // namespace qelta
