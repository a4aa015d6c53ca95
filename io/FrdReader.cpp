#include "FrdReader.h"

#include <FED_Failure.h>

#include <algorithm>
#include <utility>

#include "FrdColumns.h"
#include "FrdHeaders.h"
#include "FrdTableLines.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaIo|FrdReader";

bool HasKey(std::string_view line, std::string_view key) {
  return line.substr(0, key.size()) == key;
}

// Text is in some 8-bit code; what is below the blank (but for the tab) belongs to no text.
bool IsPrintable(std::string_view line) {
  return std::all_of(line.begin(), line.end(),
                     [](char c) { return static_cast<unsigned char>(c) >= 32 || c == '\t'; });
}

}  // namespace

FrdReader::FrdReader(const std::filesystem::path& path, const FrdReadOptions& options)
    : m_Source(path, options.chunkBytes, options.onProgress, options.waitForMore),
      m_AcceptRunningJob(options.acceptRunningJob),
      m_RecordReader(m_Source, m_NodeIndex),
      m_ElementReader(m_Source, m_NodeIndex) {}

void FrdReader::Read(FrdVisitor& visitor) {
  m_Visitor = &visitor;
  try {
    ReadAll();
  } catch (const FrdCut&) {
    HandleCut();
  }
  visitor.OnEnd(m_IsComplete);
}

void FrdReader::ReadAll() {
  ReadModel();
  std::string_view line;
  while (NextEntry(line) && ReadEntry(line)) {
  }
}

void FrdReader::ReadModel() {
  std::string_view line;
  if (!m_Source.GetLine(line)) {
    FED_Failure::Throw(
        "310000000501", kLocation,
        "%s is empty. The solver has not written to it yet, or failed before it did.",
        m_Source.GetName().c_str());
  }
  if (!HasKey(line, "    1C") || !IsPrintable(line)) {
    m_Source.ThrowDamage("310000000502", "a result file begins with '    1C'");
  }
  m_Visitor->OnModel(std::string(FrdTrim(line.substr(6))));
}

// The next line that is not blank; false at the end of the file, which may come between tables.
bool FrdReader::NextEntry(std::string_view& line) {
  do {
    if (!m_Source.GetLine(line)) {
      if (m_HasParameters) throw FrdCut();
      return false;
    }
  } while (FrdIsBlank(line));
  if (!m_Source.IsLineComplete() && !HasKey(line, " 9999")) throw FrdCut();
  if (!IsPrintable(line)) {
    m_Source.ThrowDamage("310000000503", "a header line holds bytes that are no text");
  }
  return true;
}

// False at the end record.
bool FrdReader::ReadEntry(std::string_view line) {
  if (HasKey(line, "    1C")) {
    RequireNoMeshYet();
  } else if (HasKey(line, "    1U")) {
    ReadUserHeader(line);
  } else if (HasKey(line, "    1P")) {
    ParseFrdParameter(m_Source, line, m_Frame);
    m_HasParameters = true;
  } else if (HasKey(line, "    2C")) {
    ReadNodes(line);
  } else if (HasKey(line, "    3C")) {
    ReadElements(line);
  } else if (HasKey(line, "  100C")) {
    ReadDataset(line);
  } else if (HasKey(line, " 9999")) {
    RequireNothingLeft();
    return false;
  } else {
    m_Source.ThrowDamage("310000000504",
                         "'" + std::string(line.substr(0, 40)) + "' begins no known record");
  }
  return true;
}

void FrdReader::ReadUserHeader(std::string_view line) {
  if (!HasKey(line, "    1UMAT")) {
    m_Visitor->OnUserHeader(std::string(FrdTrim(line.substr(6))));
    return;
  }
  const std::int32_t number = RequireFrdId(m_Source, FrdColumn(line, 10, 5));
  m_Visitor->OnMaterial(number, std::string(FrdTrim(FrdColumn(line, 15, line.size()))));
}

// The solver's fluid writer begins with two model lines.
void FrdReader::RequireNoMeshYet() {
  if (m_NodeIndex.Count() > 0) {
    m_Source.ThrowDamage("310000000508", "a second result file begins inside this one");
  }
}

void FrdReader::ReadNodes(std::string_view line) {
  const FrdTable table = ParseFrdTableHead(m_Source, line);
  m_Visitor->OnNodesBegin(table);
  m_IsInTable = true;
  m_RecordReader.Read(table, 3, [this](const FrdRecords& nodes) { m_Visitor->OnNodes(nodes); });
  m_IsInTable = false;
  m_Visitor->OnNodesEnd();
}

void FrdReader::ReadElements(std::string_view line) {
  const FrdTable table = ParseFrdTableHead(m_Source, line);
  m_Visitor->OnElementsBegin(table);
  m_IsInTable = true;
  m_ElementReader.Read(table, *m_Visitor);
  m_IsInTable = false;
  m_Visitor->OnElementsEnd();
}

void FrdReader::ReadDataset(std::string_view line) {
  FrdDataset dataset;
  m_HasParameters = true;
  dataset.frame = std::exchange(m_Frame, FrdFrame());
  dataset.table = ParseFrdFrameHead(m_Source, line, dataset.frame);
  ReadFieldHead(dataset);
  m_Visitor->OnDatasetBegin(dataset);
  m_IsInTable = true;
  m_RecordReader.Read(dataset.table, dataset.components.size(),
                      [this](const FrdRecords& records) { m_Visitor->OnRecords(records); });
  m_IsInTable = m_HasParameters = false;
  m_Visitor->OnDatasetEnd(dataset);
}

void FrdReader::ReadFieldHead(FrdDataset& dataset) {
  FrdFieldHead head = ParseFrdFieldHead(m_Source, RequireFrdLine(m_Source, " -4"));
  dataset.name = std::move(head.name);
  for (std::int32_t i = 0; i < head.componentCount; ++i) {
    auto component = ParseFrdComponent(m_Source, RequireFrdLine(m_Source, " -5"));
    if (component) dataset.components.push_back(*std::move(component));
  }
  if (dataset.components.empty()) {
    m_Source.ThrowDamage("310000000505", "no component of the field is stored");
  }
}

void FrdReader::RequireNothingLeft() {
  m_IsComplete = true;
  m_Source.StopWaiting();
  std::string_view line;
  while (m_Source.GetLine(line)) {
    if (!FrdIsBlank(line)) {
      m_Source.ThrowDamage("310000000506", "something stands behind the end record '9999'");
    }
  }
}

void FrdReader::HandleCut() {
  if (!m_AcceptRunningJob) {
    FED_Failure::Throw(
        "310000000507", kLocation,
        "%s, %s: the file ends too early, in the middle of a table or header. If the "
        "job is still running, read it as such (--running); if not, copy "
        "the file again, or let the solver write it again.",
        m_Source.GetName().c_str(), m_Source.GetPlace().c_str());
  }
  if (m_IsInTable) m_Visitor->OnTableCut();
}

}  // namespace qelta
