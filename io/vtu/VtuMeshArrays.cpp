#include "VtuMeshArrays.h"

#include <FED_Failure.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace qelta {
namespace {

constexpr int kGreatestCellType = 255;  // of VTK

// What arrays of a mesh are known by.
enum Identity { POINTS, CONNECTIVITY, OFFSETS, TYPES, IDS };

VtuArray MakeArray(VtuSection section, const char* name, const char* type, std::uint64_t tuples,
                   std::size_t size) {
  VtuArray array;
  array.section = section;
  array.name = name;
  array.type = type;
  array.tuples = tuples;
  array.bytes = tuples * size;
  return array;
}

VtuArray MakePoints(const QeltaMesh& mesh) {
  VtuArray array = MakeArray(VtuSection::Points, "Points", "Float64", mesh.GetNodes().GetCount(),
                             3 * sizeof(double));
  array.components = {"X", "Y", "Z"};
  return array;
}

void Move(double* place, const FED_DataBlock& displacement, std::size_t index, double scale) {
  if (!displacement.HasRecord(index)) return;
  double u[3];
  displacement.GetVector(index, u);
  if (!std::all_of(u, u + 3, [](double value) { return std::isfinite(value); })) return;
  for (int i = 0; i < 3; ++i) place[i] += scale * u[i];
}

unsigned char TypeOf(const QeltaMesh& mesh, const QeltaMesh::Cell& cell) {
  if (0 < cell.vtkType && cell.vtkType <= kGreatestCellType) {
    return static_cast<unsigned char>(cell.vtkType);
  }
  FED_Failure::Throw(
      "310000000902", "|%P|QeltaVtu|VtuMeshArrays",
      "Element with record %Iu of the mesh %s has the type %d, which is no cell type "
      "of VTK; correct the element table or leave the mesh out.",
      static_cast<std::uint64_t>(mesh.GetCells().IndexAt(cell.position)),
      mesh.GetKey().ToString().c_str(), cell.vtkType);
}

// Connectivity and offsets as numbers of one width, as VTK wants them.
template <class Number>
void AddCellNumbers(const QeltaMesh& mesh, std::uint64_t references, const char* type,
                    std::vector<VtuArray>& arrays) {
  VtuArray nodes = MakeArray(VtuSection::Cells, "connectivity", type, references, sizeof(Number));
  nodes.identity = {&mesh, CONNECTIVITY};
  nodes.write = [&mesh](const VtuArray::Sink& sink) {
    VtuNumbers<Number> numbers(sink);
    mesh.VisitCells([&](const QeltaMesh::Cell& cell) {
      for (const std::int64_t node : cell.nodes) numbers.Add(static_cast<Number>(node));
    });
    numbers.Flush();
  };
  VtuArray ends =
      MakeArray(VtuSection::Cells, "offsets", type, mesh.GetCells().GetCount(), sizeof(Number));
  ends.identity = {&mesh, OFFSETS};
  ends.write = [&mesh](const VtuArray::Sink& sink) {
    VtuNumbers<Number> numbers(sink);
    std::uint64_t end = 0;
    mesh.VisitCells([&](const QeltaMesh::Cell& cell) {
      end += cell.nodes.size();
      numbers.Add(static_cast<Number>(end));
    });
    numbers.Flush();
  };
  arrays.push_back(std::move(nodes));
  arrays.push_back(std::move(ends));
}

}  // namespace

VtuArray PointsOf(const QeltaMesh& mesh) {
  VtuArray array = MakePoints(mesh);
  array.identity = {&mesh, POINTS};
  array.write = [&mesh](const VtuArray::Sink& sink) {
    mesh.VisitNodes([&](std::size_t, std::size_t count, const double* coordinates) {
      sink(coordinates, 3 * count * sizeof(double));
    });
  };
  return array;
}

VtuArray MovedPointsOf(const QeltaMesh& mesh, const FED_DataBlock& displacement, double scale) {
  VtuArray array = MakePoints(mesh);
  array.write = [&mesh, &displacement, scale](const VtuArray::Sink& sink) {
    std::vector<double> moved;
    mesh.VisitNodes([&](std::size_t first, std::size_t count, const double* coordinates) {
      moved.assign(coordinates, coordinates + 3 * count);
      for (std::size_t i = 0; i < count; ++i) {
        Move(&moved[3 * i], displacement, mesh.GetNodes().IndexAt(first + i), scale);
      }
      sink(moved.data(), moved.size() * sizeof(double));
    });
  };
  return array;
}

std::uint64_t CountReferences(const QeltaMesh& mesh) {
  std::uint64_t references = 0;
  mesh.VisitCells([&](const QeltaMesh::Cell& cell) { references += cell.nodes.size(); });
  return references;
}

std::vector<VtuArray> CellsOf(const QeltaMesh& mesh, std::uint64_t references) {
  std::vector<VtuArray> arrays;
  if (references <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) {
    AddCellNumbers<std::int32_t>(mesh, references, "Int32", arrays);
  } else {
    AddCellNumbers<std::int64_t>(mesh, references, "Int64", arrays);
  }
  VtuArray types = MakeArray(VtuSection::Cells, "types", "UInt8", mesh.GetCells().GetCount(), 1);
  types.identity = {&mesh, TYPES};
  types.write = [&mesh](const VtuArray::Sink& sink) {
    VtuNumbers<unsigned char> numbers(sink);
    mesh.VisitCells([&](const QeltaMesh::Cell& cell) { numbers.Add(TypeOf(mesh, cell)); });
    numbers.Flush();
  };
  arrays.push_back(std::move(types));
  return arrays;
}

VtuArray IdsOf(const QeltaPositions& positions, const FED_IdMap& map, VtuSection section,
               const std::string& name) {
  VtuArray array =
      MakeArray(section, name.c_str(), "Int64", positions.GetCount(), sizeof(std::int64_t));
  array.identity = {&positions, IDS};
  array.areIds = true;
  array.write = [&positions, &map](const VtuArray::Sink& sink) {
    VtuNumbers<std::int64_t> numbers(sink);
    for (std::size_t i = 0; i < positions.GetCount(); ++i) {
      const auto index = static_cast<std::int64_t>(positions.IndexAt(i));
      numbers.Add(map.ContainsIndex(index) ? map.IdOfIndex(index) : -1);
    }
    numbers.Flush();
  };
  return array;
}

}  // namespace qelta
