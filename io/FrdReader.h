#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "FrdElementReader.h"
#include "FrdEvents.h"
#include "FrdIdIndex.h"
#include "FrdRecordReader.h"
#include "FrdSource.h"

namespace qelta {

struct FrdReadOptions {
  /// Accept a file whose last table is cut short, as that of a running job is.
  bool acceptRunningJob = false;
  std::size_t chunkBytes = FrdSource::kDefaultChunk;
  /// Called after each chunk; what it throws ends the reading.
  FrdSource::Progress onProgress;
  /// Asked where the file ends without an end record; true: there may be more by now, read on.
  std::function<bool()> waitForMore;
};

/// Reads a CalculiX result file (.frd, text or binary) once, from its start to its end.
///
/// Memory is bounded by a chunk of the file, a batch of records and a table of the node and element
/// ids. Damage is a failure that names the file, the line (or the byte, in a binary file) and the
/// cause; tables that ended before it were delivered in full. A file that ends between two tables
/// without an end record is accepted, and OnEnd says so.
class FrdReader {
 public:
  /// Opens the file.
  explicit FrdReader(const std::filesystem::path& path, const FrdReadOptions& options = {});

  /// To be called once. Failures of the visitor pass through.
  void Read(FrdVisitor& visitor);

 private:
  void ReadAll();
  void ReadModel();
  bool ReadEntry(std::string_view line);
  void ReadUserHeader(std::string_view line);
  void ReadNodes(std::string_view line);
  void ReadElements(std::string_view line);
  void ReadDataset(std::string_view line);
  void ReadFieldHead(FrdDataset& dataset);
  bool NextEntry(std::string_view& line);
  void RequireNoMeshYet();
  void RequireNothingLeft();
  void HandleCut();

  FrdSource m_Source;
  bool m_AcceptRunningJob;
  FrdVisitor* m_Visitor = nullptr;
  FrdIdIndex m_NodeIndex;
  FrdRecordReader m_RecordReader;
  FrdElementReader m_ElementReader;
  FrdFrame m_Frame;              // what the lines before a dataset told about it
  bool m_HasParameters = false;  // there were such lines
  bool m_IsInTable = false;
  bool m_IsComplete = false;
};

}  // namespace qelta
