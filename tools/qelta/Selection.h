#pragma once

#include <FED_DataDescriptor.h>
#include <FrdReader.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace qelta {

/// Which blocks of which file a command is about; read from its command line.
struct Selection {
  std::string file;
  std::vector<std::string> where;
  bool acceptRunningJob = false;

  /// Gives `command` the file and the options; this object must outlive the parsing.
  void AddTo(CLI::App& command);

  FrdReadOptions ReadOptions() const;

  /// The keys of the selected blocks, in the order of the file; reads the file once.
  std::vector<FED_DataDescriptor> Find() const;
};

}  // namespace qelta
