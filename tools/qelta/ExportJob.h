#pragma once

#include <FED_DataDescriptor.h>

#include <optional>
#include <string>
#include <vector>

#include "Selection.h"

namespace qelta {

/// What `export` was asked for.
struct ExportJob {
  Selection selection;
  std::string output;
  bool compresses = false;
  std::optional<double> deformation;
  std::vector<FED_DataDescriptor> keys;  ///< of the selected blocks; never empty

  /// The database with these blocks, and with those that `others` accepts.
  template <class Test>
  const FED_Database& Load(Test others) {
    return selection.Load(keys, others);
  }
  const FED_Database& Load() { return selection.GetSource().Load(keys); }

  bool ShowsProgress() const { return selection.GetOptions().showProgress; }
};

// Each writes one format, whole or not at all, and says what it wrote. What a format cannot take
// fails as a wrong command line does.

std::string ExportVtuFile(ExportJob& job);
std::string ExportVtuCollection(ExportJob& job);
std::string ExportCsvRows(ExportJob& job);
std::string ExportJsonRows(ExportJob& job);
std::string ExportHdf5File(ExportJob& job);

}  // namespace qelta
