#include "FrdElementReader.h"

#include <FED_Message.h>

#include <algorithm>
#include <cstring>

#include "FrdColumns.h"
#include "FrdTableLines.h"

namespace qelta {

FrdElementReader::FrdElementReader(FrdSource& source, const FrdIdIndex& nodes)
    : m_Source(source), m_Nodes(nodes) {}

void FrdElementReader::Read(const FrdTable& table, FrdVisitor& visitor) {
  m_Seen.Clear();
  if (IsFrdText(table.encoding)) {
    ReadText(table.encoding == FrdEncoding::ShortText, visitor);
  } else {
    ReadBinary(RequireFrdCount(m_Source, table), visitor);
  }
}

void FrdElementReader::ReadText(bool isShort, FrdVisitor& visitor) {
  const std::size_t width = isShort ? 5 : 10;
  const std::size_t nodesPerLine = isShort ? 15 : 10;
  std::string_view line;
  while (NextFrdTableLine(m_Source, line)) {
    FrdElement element{};
    ReadTextHead(line, width, element);
    ReadTextNodes(*element.type, width, nodesPerLine);
    Deliver(element, visitor);
  }
}

void FrdElementReader::ReadTextHead(std::string_view line, std::size_t idWidth,
                                    FrdElement& element) {
  const std::size_t first = 4 + idWidth;
  element.id = RequireFrdId(m_Source, FrdColumn(line, 4, idWidth));
  element.type = &RequireType(RequireFrdId(m_Source, FrdColumn(line, first, 5)));
  const std::string_view group = FrdColumn(line, first + 5, 5);
  if (!FrdIsBlank(group) && !ParseFrdInteger(group, element.group)) {
    m_Source.ThrowDamage("310000000401", "the group '" + std::string(group) + "' is not a number");
  }
  ReadMaterial(FrdColumn(line, first + 10, 5), element);
  RequireFrdLineEnd(m_Source, line, first + 14);
}

// Old writers put the beginning of the material's name where its number belongs.
void FrdElementReader::ReadMaterial(std::string_view column, FrdElement& element) {
  if (FrdIsBlank(column) || ParseFrdInteger(column, element.material)) return;
  element.material = 0;
  element.materialName = FrdTrim(column);
}

void FrdElementReader::ReadTextNodes(const FrdElementType& type, std::size_t width,
                                     std::size_t perLine) {
  const auto nodeCount = static_cast<std::size_t>(type.nodeCount);
  for (std::size_t done = 0; done < nodeCount;) {
    const std::size_t count = std::min(perLine, nodeCount - done);
    const std::string_view line = RequireFrdLine(m_Source, " -2");
    for (std::size_t i = 0; i < count; ++i) {
      const std::string_view column = FrdColumn(line, 4 + i * width, width);
      m_NodeIndices[done + i] = RequireNode(RequireFrdId(m_Source, column));
    }
    RequireFrdLineEnd(m_Source, line, 3 + count * width);
    done += count;
  }
}

void FrdElementReader::ReadBinary(std::size_t elementCount, FrdVisitor& visitor) {
  std::array<std::int32_t, FrdElementType::kMaxNodes> words{};
  const auto readWords = [&](std::size_t count) {
    const std::size_t size = count * sizeof(std::int32_t);
    std::memcpy(words.data(), RequireFrdBytes(m_Source, size), size);
  };
  for (std::size_t i = 0; i < elementCount; ++i) {
    readWords(4);
    FrdElement element{};
    element.id = RequireFrdId(m_Source, words[0]);
    element.type = &RequireType(words[1]);
    element.group = words[2];
    element.material = words[3];
    readWords(static_cast<std::size_t>(element.type->nodeCount));
    std::transform(words.begin(), words.begin() + element.type->nodeCount, m_NodeIndices.begin(),
                   [this](std::int32_t id) { return RequireNode(id); });
    Deliver(element, visitor);
  }
}

const FrdElementType& FrdElementReader::RequireType(std::int32_t number) {
  const FrdElementType* const type = FindFrdElementType(number);
  if (type == nullptr) {
    m_Source.ThrowDamage("310000000402",
                         FED_MESSAGE("element type %d is unknown (1 to 12 are known)", number));
  }
  return *type;
}

std::int32_t FrdElementReader::RequireNode(std::int32_t id) {
  const std::int32_t index = m_Nodes.Find(id);
  if (index == FrdIdIndex::kUnknown) {
    m_Source.ThrowDamage("310000000403",
                         FED_MESSAGE("the element's node %d is in no node table", id));
  }
  return index;
}

void FrdElementReader::Deliver(FrdElement& element, FrdVisitor& visitor) {
  element.index = m_Elements.FindOrAdd(element.id);
  if (!m_Seen.Mark(element.index)) {
    m_Source.ThrowDamage("310000000404",
                         FED_MESSAGE("element %d stands twice in the table", element.id));
  }
  element.nodeIndices = m_NodeIndices.data();
  visitor.OnElement(element);
}

}  // namespace qelta
