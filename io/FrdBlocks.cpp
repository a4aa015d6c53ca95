#include "FrdBlocks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "FrdKeys.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

constexpr std::size_t kElementBatch = 4096;

std::int64_t CountHint(const FrdTable& table) { return table.count.value_or(0); }

bool IsSameValue(const std::optional<double>& a, const std::optional<double>& b) {
  return a && b && (*a == *b || (std::isnan(*a) && std::isnan(*b)));
}

}  // namespace

// Makes the key one that no block has yet: the second block of a key, and every further one, has
// "#2" and so on behind its label. False when a block of this key holds the frame value already.
bool FrdBlocks::ClaimKey(FED_DataDescriptor& key, std::optional<double> frameValue) {
  const std::string label = key.Has(Key::LABEL) ? key.GetString(Key::LABEL) : std::string();
  for (int i = 2;; ++i) {
    const auto [place, isNew] = m_Keys.try_emplace(key, frameValue);
    if (isNew) return true;
    if (IsSameValue(place->second, frameValue)) return false;
    key.SetString(Key::LABEL, label + "#" + std::to_string(i));
  }
}

std::size_t FrdBlocks::Open(FED_DataDescriptor key, const std::string& format,
                            const FrdTable& table) {
  ClaimKey(key, std::nullopt);
  return m_Sink.OpenBlock(key, format, CountHint(table));
}

void FrdBlocks::OpenPartOf(const FED_DataDescriptor& key, const FrdFieldPart& part,
                           const FrdTable& table) {
  m_Parts.push_back({Open(key, part.format, table), part.first, part.count});
}

void FrdBlocks::CloseParts() {
  for (const OpenPart& part : m_Parts) m_Sink.CloseBlock(part.block);
  m_Parts.clear();
}

void FrdBlocks::OnTableCut() {
  for (const OpenPart& part : m_Parts) m_Sink.DropBlock(part.block);
  m_Parts.clear();
}

void FrdBlocks::OnModel(const std::string& name) {
  Key key(ONF_TEXT_NOTE);
  key.SetString(Key::LABEL, "HEADER");
  m_Header = Open(key, {}, {});
  WriteHeaderLine(name);
}

void FrdBlocks::OnUserHeader(const std::string& text) { WriteHeaderLine(text); }

void FrdBlocks::WriteHeaderLine(const std::string& text) {
  const std::int32_t handle = m_Sink.StoreText(m_Header, text);
  m_Sink.WriteRecords(m_Header, 1, &m_HeaderLines, &handle);
  ++m_HeaderLines;
}

void FrdBlocks::OnMaterial(std::int32_t number, const std::string& name) {
  if (!name.empty()) m_MaterialIndices[number] = m_Sink.IndexOfName(ID_TYPE_MATERIAL, name);
}

void FrdBlocks::OnEnd(bool /*complete*/) {
  if (m_Header != kNoBlock) m_Sink.CloseBlock(m_Header);
  m_Header = kNoBlock;
}

void FrdBlocks::OnNodesBegin(const FrdTable& table) {
  const FrdFieldPart coordinates{ONF_NODE_COORDINATES, {}, 0, 3};
  OpenPartOf(Key(coordinates.kind), coordinates, table);
}

void FrdBlocks::OnNodes(const FrdRecords& nodes) { WriteParts(nodes); }

void FrdBlocks::OnNodesEnd() { CloseParts(); }

void FrdBlocks::OnDatasetBegin(const FrdDataset& dataset) {
  for (const FrdFieldPart& part : MapFrdDataset(dataset)) {
    OpenPartOf(MakeFrdPartKey(dataset, part), part, dataset.table);
  }
}

void FrdBlocks::OnRecords(const FrdRecords& records) { WriteParts(records); }

void FrdBlocks::WriteParts(const FrdRecords& records) {
  TranslateNodes(records);
  for (const OpenPart& part : m_Parts) WritePart(part, records);
}

// A frame has its values from its first dataset that is whole.
void FrdBlocks::OnDatasetEnd(const FrdDataset& dataset) {
  CloseParts();
  WriteFrameValues(dataset);
}

// The reader numbers nodes as they come, so an index that is new is the next one.
void FrdBlocks::TranslateNodes(const FrdRecords& records) {
  m_Indices.resize(records.count);
  for (std::size_t i = 0; i < records.count; ++i) {
    const auto index = static_cast<std::size_t>(records.indices[i]);
    if (index == m_NodeIndices.size()) {
      m_NodeIndices.push_back(m_Sink.IndexOfId(ID_TYPE_NODE, records.ids[i]));
    }
    m_Indices[i] = m_NodeIndices[index];
  }
}

void FrdBlocks::WritePart(const OpenPart& part, const FrdRecords& records) {
  const double* values = records.values;
  if (part.count != records.valueCount) {
    m_Values.resize(records.count * part.count);
    for (std::size_t i = 0; i < records.count; ++i) {
      std::copy_n(records.values + i * records.valueCount + part.first, part.count,
                  m_Values.data() + i * part.count);
    }
    values = m_Values.data();
  }
  m_Sink.WriteRecords(part.block, records.count, m_Indices.data(), values);
}

void FrdBlocks::WriteFrameValues(const FrdDataset& dataset) {
  const FrdFrame& frame = dataset.frame;
  if (frame.value) WriteFrameValue(frame, GetFrdValueKind(dataset), *frame.value, 0);
  if (!frame.mode || (!frame.eigenvalue && !frame.generalisedMass)) return;
  const std::int32_t mode = m_Sink.IndexOfId(ID_TYPE_MODE, *frame.mode);
  if (frame.eigenvalue) WriteFrameValue(frame, ONF_EIGENVALUE, *frame.eigenvalue, mode);
  if (frame.generalisedMass) {
    WriteFrameValue(frame, ONF_GENERALISED_MASS, *frame.generalisedMass, mode);
  }
}

// Every dataset of a frame repeats the frame's values; one block is enough.
void FrdBlocks::WriteFrameValue(const FrdFrame& frame, FED_OnfId kind, double value,
                                std::int32_t index) {
  Key key = MakeFrdFrameKey(frame);
  key.SetInteger(Key::ONF, kind);
  if (!ClaimKey(key, value)) return;
  const std::size_t block = m_Sink.OpenBlock(key, {}, 1);
  m_Sink.WriteRecords(block, 1, &index, &value);
  m_Sink.CloseBlock(block);
}

void FrdBlocks::OnElementsBegin(const FrdTable& table) {
  ClearElements();
  OpenPartOf(Key(ONF_ELEMENT_TOPOLOGY), {}, table);
  OpenPartOf(Key(ONF_ELEMENT_ATTRIBUTES), {}, table);
}

void FrdBlocks::OnElement(const FrdElement& element) {
  const auto nodeCount = static_cast<std::size_t>(element.type->nodeCount);
  std::array<std::int32_t, FrdElementType::kMaxNodes> nodes{};
  for (std::size_t i = 0; i < nodeCount; ++i) {
    const std::int32_t index = element.nodeIndices[element.type->fileNode[i]];
    nodes[i] = m_NodeIndices[static_cast<std::size_t>(index)];
  }
  m_Topologies.push_back(element.type->vtkCell);
  m_Topologies.push_back(m_Sink.StoreIntList(m_Parts[0].block, nodes.data(), nodeCount));
  m_Attributes.push_back(GroupIndex(element.group));
  m_Attributes.push_back(MaterialIndex(element));
  m_Indices.push_back(m_Sink.IndexOfId(ID_TYPE_ELEMENT, element.id));
  if (m_Indices.size() >= kElementBatch) FlushElements();
}

void FrdBlocks::OnElementsEnd() {
  FlushElements();
  CloseParts();
}

void FrdBlocks::FlushElements() {
  m_Sink.WriteRecords(m_Parts[0].block, m_Indices.size(), m_Indices.data(), m_Topologies.data());
  m_Sink.WriteRecords(m_Parts[1].block, m_Indices.size(), m_Indices.data(), m_Attributes.data());
  ClearElements();
}

void FrdBlocks::ClearElements() {
  m_Indices.clear();
  m_Topologies.clear();
  m_Attributes.clear();
}

std::int32_t FrdBlocks::GroupIndex(std::int32_t group) {
  const auto [place, isNew] = m_GroupIndices.try_emplace(group, 0);
  if (isNew) {
    place->second = m_Sink.IndexOfName(ID_TYPE_ELEMENT_GROUP, "GROUP_" + std::to_string(group));
  }
  return place->second;
}

std::int32_t FrdBlocks::MaterialIndex(const FrdElement& element) {
  if (!element.materialName.empty()) {
    return m_Sink.IndexOfName(ID_TYPE_MATERIAL, element.materialName);
  }
  const auto [place, isNew] = m_MaterialIndices.try_emplace(element.material, 0);
  if (isNew) {
    place->second =
        m_Sink.IndexOfName(ID_TYPE_MATERIAL, "MATERIAL_" + std::to_string(element.material));
  }
  return place->second;
}

}  // namespace qelta
