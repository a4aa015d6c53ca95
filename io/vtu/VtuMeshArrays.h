#pragma once

#include <FED_IdMapsPool.h>
#include <QeltaMesh.h>

#include <string>
#include <vector>

#include "VtuArray.h"

namespace qelta {

// The arrays of a mesh. All of them read the mesh, and what else they are given, when they are
// written.

VtuArray PointsOf(const QeltaMesh& mesh);

/// The same, moved by `scale` times a displacement: a block of vectors at nodes. Nodes without one,
/// or with one that is not finite, stay where they are.
VtuArray MovedPointsOf(const QeltaMesh& mesh, const FED_DataBlock& displacement, double scale);

/// Connectivity, offsets and types. `references` is what CountReferences gives.
std::vector<VtuArray> CellsOf(const QeltaMesh& mesh, std::uint64_t references);

/// The nodes of all cells together. Costs a pass over the cells.
std::uint64_t CountReferences(const QeltaMesh& mesh);

/// The ids of nodes or elements; -1 where the map has none.
VtuArray IdsOf(const QeltaPositions& positions, const FED_IdMap& map, VtuSection section,
               const std::string& name);

}  // namespace qelta
