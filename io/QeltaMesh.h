#pragma once

#include <FED_Database.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "QeltaPositions.h"

namespace qelta {

/// A mesh of a database: the nodes of a NODE_COORDINATES block, and the elements of an
/// ELEMENT_TOPOLOGY block: of those with its LABEL whose key agrees with that of the nodes in every
/// field it specifies the one with most fields. So the moved nodes of ITERATION=3 may have the
/// elements of all iterations.
///
/// Nodes and cells are numbered without gaps from 0, in ascending order of their record indices.
/// Nothing of the mesh is kept in memory but the gaps between records; every visit reads the
/// blocks. The database must outlive this object and not change meanwhile.
class QeltaMesh {
 public:
  /// An element. `nodes` are positions of nodes, in VTK's order.
  struct Cell {
    std::size_t position = 0;
    std::int32_t vtkType = 0;
    std::vector<std::int64_t> nodes;
  };

  /// `nodes` is the key of the coordinates. Fails when there is no such block.
  QeltaMesh(const FED_Database& database, const FED_DataDescriptor& nodes);

  /// The key of the coordinates.
  const FED_DataDescriptor& GetKey() const { return m_Key; }

  /// Which node or cell belongs to the record of an index.
  const QeltaPositions& GetNodes() const { return m_Nodes; }
  const QeltaPositions& GetCells() const { return m_Cells; }

  /// x, y and z of nodes first, first + 1 and so on, in batches.
  using NodeVisitor =
      std::function<void(std::size_t first, std::size_t count, const double* coordinates)>;
  void VisitNodes(const NodeVisitor& visit) const;

  /// Every cell. A linear wedge whose base looks inside, as solvers number it, is turned: for VTK
  /// the base looks away from the top. Fails when one refers to a node that has no coordinates, or
  /// has not as many nodes as its type wants.
  using CellVisitor = std::function<void(const Cell&)>;
  void VisitCells(const CellVisitor& visit) const;

 private:
  void ReadNodes(std::size_t position, const std::vector<std::int32_t>& indices, Cell& cell) const;
  bool LooksInside(const std::vector<std::int32_t>& wedge) const;

  FED_DataDescriptor m_Key;
  const FED_DataBlock* m_Coordinates;
  const FED_DataBlock* m_Topology;  // null: the mesh has nodes only
  QeltaPositions m_Nodes;
  QeltaPositions m_Cells;
};

/// The block of a kind that tells more of a mesh, whose key is that of its nodes: of those with its
/// LABEL whose key agrees in every field it specifies the one with most fields. Null when there is
/// none.
const FED_DataBlock* FindBlockOfMesh(const FED_Database& database, const FED_DataDescriptor& mesh,
                                     FED_OnfId kind);

/// The meshes of a database in the order of their keys.
class QeltaMeshes {
 public:
  explicit QeltaMeshes(const FED_Database& database);

  const std::vector<QeltaMesh>& GetAll() const { return m_Meshes; }

  /// The mesh that the values of a block belong to: one whose key agrees with the block's in every
  /// field that the mesh's key specifies, but for ONF and LABEL. Of several that with most fields
  /// that agree, an equal LABEL among them; of these one without LABEL, or else the first by the
  /// letters of its LABEL. Null when there is none.
  const QeltaMesh* Find(const FED_DataDescriptor& key) const;

 private:
  std::vector<QeltaMesh> m_Meshes;
};

}  // namespace qelta
