#include "QeltaMesh.h"

#include <FED_Failure.h>

#include <cstring>
#include <string>
#include <utility>

#include "FrdElementType.h"
#include "QeltaComponents.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

constexpr const char* kLocation = "|%P|QeltaIo|QeltaMesh";

std::int32_t ReadNumber(const unsigned char* place) {
  std::int32_t number;
  std::memcpy(&number, place, sizeof number);
  return number;
}

std::vector<Key> FindKind(const FED_Database& database, FED_OnfId kind) {
  FED_DataDescriptorPattern pattern;
  pattern.SetMatchExact(Key::ONF, kind);
  return database.FindBlocks(pattern);
}

// How many fields of a mesh's key say that it is the mesh of a block; -1 when one contradicts.
int Agreement(const Key& mesh, const Key& block) {
  int agreeing = 0;
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const Key::ResultIndex field = Key::CastIndex(i);
    if (field == Key::ONF || field == Key::LABEL || !mesh.Has(field)) continue;
    if (!block.Has(field) || mesh.GetInteger(field) != block.GetInteger(field)) return -1;
    ++agreeing;
  }
  return agreeing;
}

bool HasSameLabel(const Key& a, const Key& b) {
  return a.Has(Key::LABEL) == b.Has(Key::LABEL) &&
         (!a.Has(Key::LABEL) || a.GetInteger(Key::LABEL) == b.GetInteger(Key::LABEL));
}

std::string LabelOf(const Key& key) {
  return key.Has(Key::LABEL) ? key.GetString(Key::LABEL) : std::string();
}

constexpr std::int32_t kVtkWedge = 13;

void TurnWedge(std::vector<std::int64_t>& nodes) {
  std::swap(nodes[1], nodes[2]);
  std::swap(nodes[4], nodes[5]);
}

}  // namespace

const FED_DataBlock* FindBlockOfMesh(const FED_Database& database, const Key& mesh,
                                     FED_OnfId kind) {
  const FED_DataBlock* best = nullptr;
  int bestAgreement = -1;
  for (const Key& key : FindKind(database, kind)) {
    const int agreement = Agreement(key, mesh);
    if (!HasSameLabel(key, mesh) || agreement <= bestAgreement) continue;
    best = &database.GetDataBlock(key);
    bestAgreement = agreement;
  }
  return best;
}

QeltaMesh::QeltaMesh(const FED_Database& database, const Key& nodes)
    : m_Key(nodes),
      m_Coordinates(&database.GetDataBlock(nodes)),
      m_Topology(FindBlockOfMesh(database, nodes, ONF_ELEMENT_TOPOLOGY)),
      m_Nodes(*m_Coordinates) {
  if (m_Topology != nullptr) m_Cells = QeltaPositions(*m_Topology);
}

void QeltaMesh::VisitNodes(const NodeVisitor& visit) const {
  std::size_t position = 0;
  std::vector<double> coordinates;
  VisitRecords(*m_Coordinates, [&](std::size_t, std::size_t count, const unsigned char* records) {
    coordinates.resize(3 * count);
    std::memcpy(coordinates.data(), records, coordinates.size() * sizeof(double));
    visit(position, count, coordinates.data());
    position += count;
  });
}

void QeltaMesh::VisitCells(const CellVisitor& visit) const {
  if (m_Topology == nullptr) return;
  const std::size_t size = m_Topology->GetRecordSize();
  Cell cell;
  std::vector<std::int32_t> nodes;
  VisitRecords(*m_Topology, [&](std::size_t, std::size_t count, const unsigned char* records) {
    for (std::size_t i = 0; i < count; ++i, ++cell.position) {
      const unsigned char* const record = records + i * size;
      cell.vtkType = ReadNumber(record);
      const auto handle = static_cast<std::uint64_t>(ReadNumber(record + sizeof(std::int32_t)));
      nodes.resize(m_Topology->GetIntListLen(handle));
      if (!nodes.empty()) m_Topology->GetIntList(handle, nodes.data());
      ReadNodes(cell.position, nodes, cell);
      if (cell.vtkType == kVtkWedge && LooksInside(nodes)) TurnWedge(cell.nodes);
      visit(cell);
    }
  });
}

void QeltaMesh::ReadNodes(std::size_t position, const std::vector<std::int32_t>& indices,
                          Cell& cell) const {
  const FrdElementType* const type = FindFrdElementTypeOfVtkCell(cell.vtkType);
  if (type != nullptr && indices.size() != static_cast<std::size_t>(type->nodeCount)) {
    FED_Failure::Throw("310000001101", kLocation,
                       "Element with record %Iu of %s has %Iu nodes, a %s has %d; correct the "
                       "element table or leave the mesh out.",
                       static_cast<std::uint64_t>(m_Cells.IndexAt(position)),
                       m_Topology->GetDescriptor().ToString().c_str(),
                       static_cast<std::uint64_t>(indices.size()), type->name, type->nodeCount);
  }
  cell.nodes.clear();
  for (const std::int32_t index : indices) {
    const auto node = m_Nodes.Find(static_cast<std::size_t>(index));
    if (!node) {
      FED_Failure::Throw("310000001102", kLocation,
                         "Element with record %Iu of %s refers to node record %d, which %s does "
                         "not have; correct the element table or leave the mesh out.",
                         static_cast<std::uint64_t>(m_Cells.IndexAt(position)),
                         m_Topology->GetDescriptor().ToString().c_str(), index,
                         m_Key.ToString().c_str());
    }
    cell.nodes.push_back(static_cast<std::int64_t>(*node));
  }
}

bool QeltaMesh::LooksInside(const std::vector<std::int32_t>& wedge) const {
  double p[4][3];
  for (std::size_t i = 0; i < 4; ++i) {
    m_Coordinates->GetVector(static_cast<std::size_t>(wedge[i]), p[i]);
  }
  double a[3][3];  // from the first node to the others of the base and to the top
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) a[i][k] = p[i + 1][k] - p[0][k];
  }
  const double volume = a[2][0] * (a[0][1] * a[1][2] - a[0][2] * a[1][1]) +
                        a[2][1] * (a[0][2] * a[1][0] - a[0][0] * a[1][2]) +
                        a[2][2] * (a[0][0] * a[1][1] - a[0][1] * a[1][0]);
  return volume > 0;
}

QeltaMeshes::QeltaMeshes(const FED_Database& database) {
  for (const Key& key : FindKind(database, ONF_NODE_COORDINATES)) {
    m_Meshes.emplace_back(database, key);
  }
}

const QeltaMesh* QeltaMeshes::Find(const Key& key) const {
  const QeltaMesh* best = nullptr;
  std::pair<int, std::string> bestRank;
  for (const QeltaMesh& mesh : m_Meshes) {
    int agreement = Agreement(mesh.GetKey(), key);
    if (agreement < 0) continue;
    const std::string label = LabelOf(mesh.GetKey());
    if (!label.empty() && label == LabelOf(key)) ++agreement;
    const std::pair<int, std::string> rank(-agreement, label);
    if (best != nullptr && bestRank <= rank) continue;
    best = &mesh;
    bestRank = rank;
  }
  return best;
}

}  // namespace qelta
