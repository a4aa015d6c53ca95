#pragma once

#include <FED_DataDescriptor.h>
#include <FED_OnfId.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FrdEvents.h"
#include "FrdFieldMap.h"
#include "QeltaBlockSink.h"

namespace qelta {

/// Turns what a reader finds into blocks, by the rules of docs/frd-mapping.md.
///
/// The record index of a node or element is what the sink says for its id. Memory: a table of node
/// indices, and one key for each block.
class FrdBlocks : public FrdVisitor {
 public:
  /// The sink must outlive this object.
  explicit FrdBlocks(QeltaBlockSink& sink) : m_Sink(sink) {}

  void OnModel(const std::string& name) override;
  void OnUserHeader(const std::string& text) override;
  void OnMaterial(std::int32_t number, const std::string& name) override;
  void OnNodesBegin(const FrdTable& table) override;
  void OnNodes(const FrdRecords& nodes) override;
  void OnNodesEnd() override;
  void OnElementsBegin(const FrdTable& table) override;
  void OnElement(const FrdElement& element) override;
  void OnElementsEnd() override;
  void OnDatasetBegin(const FrdDataset& dataset) override;
  void OnRecords(const FrdRecords& records) override;
  void OnDatasetEnd(const FrdDataset& dataset) override;
  void OnTableCut() override;
  void OnEnd(bool complete) override;

 private:
  struct OpenPart {
    std::size_t block;
    std::size_t first;  // column of the records that are delivered
    std::size_t count;  // columns
  };
  static constexpr std::size_t kNoBlock = static_cast<std::size_t>(-1);

  bool ClaimKey(FED_DataDescriptor& key, std::optional<double> frameValue);
  std::size_t Open(FED_DataDescriptor key, const std::string& format, const FrdTable& table);
  void OpenPartOf(const FED_DataDescriptor& key, const FrdFieldPart& part, const FrdTable& table);
  void CloseParts();

  void WriteHeaderLine(const std::string& text);
  void WriteFrameValues(const FrdDataset& dataset);
  void WriteFrameValue(const FrdFrame& frame, FED_OnfId kind, double value, std::int32_t index);

  void TranslateNodes(const FrdRecords& records);
  void WriteParts(const FrdRecords& records);
  void WritePart(const OpenPart& part, const FrdRecords& records);

  std::int32_t GroupIndex(std::int32_t group);
  std::int32_t MaterialIndex(const FrdElement& element);
  void FlushElements();
  void ClearElements();

  QeltaBlockSink& m_Sink;
  std::map<FED_DataDescriptor, std::optional<double>> m_Keys;  // of all blocks; their frame value
  std::vector<OpenPart> m_Parts;                               // of the table that is being read
  std::size_t m_Header = kNoBlock;
  std::int32_t m_HeaderLines = 0;
  std::map<std::int32_t, std::int32_t> m_GroupIndices;  // of the sink, by number in the file
  std::map<std::int32_t, std::int32_t> m_MaterialIndices;

  std::vector<std::int32_t> m_NodeIndices;  // of the sink, by index of the reader
  std::vector<std::int32_t> m_Indices;      // of the records in hand
  std::vector<double> m_Values;             // likewise

  std::vector<std::int32_t> m_Topologies;  // two words an element
  std::vector<std::int32_t> m_Attributes;  // likewise
};

}  // namespace qelta
