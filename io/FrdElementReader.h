#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FrdEvents.h"
#include "FrdIdIndex.h"
#include "FrdSource.h"

namespace qelta {

/// Reads element tables.
class FrdElementReader {
 public:
  /// `nodes` must know every node of an element. Both arguments must outlive the reader.
  FrdElementReader(FrdSource& source, const FrdIdIndex& nodes);

  void Read(const FrdTable& table, FrdVisitor& visitor);

 private:
  void ReadText(bool isShort, FrdVisitor& visitor);
  void ReadTextHead(std::string_view line, std::size_t idWidth, FrdElement& element);
  void ReadMaterial(std::string_view column, FrdElement& element);
  void ReadTextNodes(const FrdElementType& type, std::size_t width, std::size_t perLine);
  void ReadBinary(std::size_t elementCount, FrdVisitor& visitor);

  const FrdElementType& RequireType(std::int32_t number);
  std::int32_t RequireNode(std::int32_t id);
  void Deliver(FrdElement& element, FrdVisitor& visitor);

  FrdSource& m_Source;
  const FrdIdIndex& m_Nodes;
  FrdIdIndex m_Elements;
  FrdSeenIndices m_Seen;
  std::array<std::int32_t, FrdElementType::kMaxNodes> m_NodeIndices{};
};

}  // namespace qelta
