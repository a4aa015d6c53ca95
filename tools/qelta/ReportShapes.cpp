#include "ReportShapes.h"

#include <string>

#include "TargetDatabase.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Json = nlohmann::ordered_json;

std::string NameOf(Key key) {
  key.Unset(Key::ONF);
  return key.EqualTo(Key()) ? "mesh" : key.ToString();
}

std::string NoteOn(const QeltaMesh& mesh, const QeltaSurface& surface) {
  const std::size_t nodes = mesh.GetNodes().GetCount(), cells = mesh.GetCells().GetCount();
  std::string note = CountText(nodes, "node") + ", " + CountText(cells, "element");
  if (surface.nodePositions.size() < nodes) {
    note += "; shown is the surface with " + CountText(surface.nodePositions.size(), "node");
  }
  if (surface.unknownCells > 0) {
    note += "; " + CountText(surface.unknownCells, "element") + " of unknown type left out";
  }
  return note + ".";
}

// What has no id is -1 - its index.
std::vector<std::int32_t> IdsOf(const FED_IdMap& map, const QeltaPositions& all,
                                const std::vector<std::uint32_t>& positions) {
  std::vector<std::int32_t> ids;
  ids.reserve(positions.size());
  for (const std::uint32_t position : positions) {
    const auto index = static_cast<std::int32_t>(all.IndexAt(position));
    ids.push_back(map.ContainsIndex(index) ? map.IdOfIndex(index) : -1 - index);
  }
  return ids;
}

std::vector<float> CoordinatesOf(const QeltaMesh& mesh, const std::vector<std::uint32_t>& nodes) {
  std::vector<float> coordinates;
  coordinates.reserve(3 * nodes.size());
  auto next = nodes.begin();
  mesh.VisitNodes([&](std::size_t first, std::size_t count, const double* all) {
    for (; next != nodes.end() && *next < first + count; ++next) {
      for (std::size_t k = 0; k < 3; ++k) {
        coordinates.push_back(static_cast<float>(all[3 * (*next - first) + k]));
      }
    }
  });
  return coordinates;
}

}  // namespace

ReportShapes WriteShapes(const QeltaMesh& mesh, const FED_IdMapsPool& maps, ReportArrays& arrays,
                         const QeltaSurfaceProgress& progress) {
  QeltaSurface surface = ExtractSurface(mesh, progress);
  const auto& nodeIds = maps.GetMap(ID_TYPE_NODE);
  const auto& cellIds = maps.GetMap(ID_TYPE_ELEMENT);
  Json json;
  json["name"] = NameOf(mesh.GetKey());
  json["note"] = NoteOn(mesh, surface);
  json["nodeIds"] = arrays.Write(IdsOf(nodeIds, mesh.GetNodes(), surface.nodePositions));
  json["cellIds"] = arrays.Write(IdsOf(cellIds, mesh.GetCells(), surface.cellPositions));
  json["positions"] = arrays.Write(CoordinatesOf(mesh, surface.nodePositions));
  json["types"] = arrays.Write(surface.types);
  json["nodes"] = arrays.Write(surface.nodes);
  json["cells"] = arrays.Write(surface.cells);
  return {std::move(json), std::move(surface.nodePositions), std::move(surface.cellPositions)};
}

}  // namespace qelta
