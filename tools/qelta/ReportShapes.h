#pragma once

#include <FED_IdMapsPool.h>
#include <QeltaMesh.h>
#include <QeltaSurface.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

#include "ReportArrays.h"

namespace qelta {

/// A mesh in a report: what the page is told of it, and which nodes and cells can be seen.
struct ReportShapes {
  nlohmann::ordered_json json;
  std::vector<std::uint32_t> nodes;  ///< positions in the mesh, ascending
  std::vector<std::uint32_t> cells;
};

/// Reduces a mesh to its surface and writes that into a page.
ReportShapes WriteShapes(const QeltaMesh& mesh, const FED_IdMapsPool& maps, ReportArrays& arrays,
                         const QeltaSurfaceProgress& progress);

}  // namespace qelta
