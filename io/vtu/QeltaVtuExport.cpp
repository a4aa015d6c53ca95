#include "QeltaVtuExport.h"

#include <FED_Failure.h>
#include <FED_Message.h>
#include <QeltaComponents.h>
#include <QeltaOutputFile.h>
#include <QeltaOutputFolder.h>

#include <filesystem>
#include <map>
#include <set>
#include <utility>

#include "VtuMeshArrays.h"
#include "VtuSteps.h"
#include "VtuValueArrays.h"
#include "VtuWriter.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaVtu|QeltaVtuExport";
constexpr const char* kCollectionHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<VTKFile type=\"Collection\">\n<Collection>\n";
constexpr const char* kCollectionEnd = "</Collection>\n</VTKFile>\n";

// A grid with what its arrays read and nobody else keeps.
struct OwnedGrid {
  VtuGrid grid;
  std::vector<std::unique_ptr<QeltaPositions>> positions;
};

// Arrays of one section have different names.
void MakeNamesUnique(std::vector<VtuArray>& arrays) {
  std::set<std::pair<VtuSection, std::string>> taken;
  for (VtuArray& array : arrays) {
    const std::string stem = array.name;
    for (int i = 2; !taken.emplace(array.section, array.name).second; ++i) {
      array.name = stem + "_" + std::to_string(i);
    }
  }
}

std::string Number(std::size_t number, std::size_t greatest) {
  const std::size_t digits = std::to_string(greatest).size();
  return FED_MESSAGE("%0*d", static_cast<int>(digits), static_cast<int>(number));
}

}  // namespace

class QeltaVtuExport::Plan {
 public:
  Plan(const FED_Database& database, const std::vector<FED_DataDescriptor>& keys,
       QeltaVtuOptions options)
      : m_Database(database),
        m_Options(std::move(options)),
        m_Steps(database, keys),
        m_Scale(ScaleOf(m_Steps.GetSteps())),
        m_Writer(m_Options.compresses, [this](std::uint64_t bytes) { Advance(bytes); }) {
    if (m_Options.deformation) RequireDisplacements();
  }

  const VtuSteps& GetSteps() const { return m_Steps; }
  std::uint64_t GetStrayCount() const { return *m_Strays; }

  void CountBytes() {
    m_Total = 0;
    m_Done = 0;
    for (const VtuPart& part : m_Steps.GetParts()) m_Total += GridOf(part).grid.GetBytes();
  }

  void Write(const VtuPart& part, QeltaOutputFile& file) {
    m_Writer.Write(GridOf(part).grid, file);
  }

  // Without the ending.
  std::string NameOf(const VtuPart& part) const {
    const std::size_t steps = m_Steps.GetSteps().size();
    const std::string step = m_Steps.HasSteps() ? "step_" + Number(part.step + 1, steps) : "mesh";
    return part.isOnlyPart ? step : step + "_part_" + std::to_string(part.number + 1);
  }

  std::string EntryOf(const VtuPart& part, const std::string& file) const {
    const double time = m_Steps.HasSteps() ? m_Scale.values[part.step] : 0;
    return FED_MESSAGE("<DataSet timestep=\"%.17g\" part=\"%d\" file=\"", time,
                       static_cast<int>(part.number)) +
           XmlText(file) + "\"/>\n";
  }

 private:
  void Advance(std::uint64_t bytes) {
    m_Done += bytes;
    if (m_Options.onProgress) m_Options.onProgress(m_Done, m_Total);
  }

  // Of the meshes of a step one must move; others may be rigid.
  void RequireDisplacements() const {
    std::set<std::size_t> moving;
    for (const VtuPart& part : m_Steps.GetParts()) {
      if (m_Steps.FindDisplacement(part) != nullptr) moving.insert(part.step);
    }
    for (std::size_t i = 0; i < m_Steps.GetSteps().size(); ++i) {
      if (moving.count(i) > 0) continue;
      FED_Failure::Throw("310000000904", kLocation,
                         "Step %s has no displacement to move the nodes by: no block of kind "
                         "DISPLACEMENT or MODE_SHAPE. Select steps that have one, or leave the "
                         "nodes where they are.",
                         m_Steps.GetSteps()[i].key.ToString().c_str());
    }
  }

  OwnedGrid GridOf(const VtuPart& part) {
    OwnedGrid owned;
    AddFacts(part, owned.grid.arrays);
    if (part.mesh != nullptr) AddMesh(part, owned.grid);
    for (const VtuValues* values : part.values) AddValues(*values, owned);
    MakeNamesUnique(owned.grid.arrays);
    return owned;
  }

  void AddFacts(const VtuPart& part, std::vector<VtuArray>& arrays) const {
    if (!m_Steps.HasSteps()) return;
    const QeltaStep& step = m_Steps.GetSteps()[part.step];
    arrays.push_back(FactOf("TimeValue", m_Scale.values[part.step]));
    arrays.push_back(FactOf("Step", step.key.ToString()));
    if (step.value) arrays.push_back(FactOf(step.valueName, *step.value));
  }

  void AddMesh(const VtuPart& part, VtuGrid& grid) {
    const QeltaMesh& mesh = *part.mesh;
    const FED_IdMapsPool& maps = m_Database.GetIdMapsPool();
    grid.points = mesh.GetNodes().GetCount();
    grid.cells = mesh.GetCells().GetCount();
    grid.arrays.push_back(PointsFor(part));
    const auto [references, isNew] = m_References.try_emplace(&mesh, 0);
    if (isNew) references->second = CountReferences(mesh);
    for (VtuArray& array : CellsOf(mesh, references->second)) {
      grid.arrays.push_back(std::move(array));
    }
    grid.arrays.push_back(
        IdsOf(mesh.GetNodes(), maps.GetMap(ID_TYPE_NODE), VtuSection::PointData, "GlobalNodeId"));
    grid.arrays.push_back(IdsOf(mesh.GetCells(), maps.GetMap(ID_TYPE_ELEMENT), VtuSection::CellData,
                                "GlobalElementId"));
    const FED_DataBlock* const attributes =
        FindBlockOfMesh(m_Database, mesh.GetKey(), ONF_ELEMENT_ATTRIBUTES);
    if (attributes == nullptr) return;
    AddArrays(*attributes, "", mesh.GetCells(), VtuSection::CellData, true, grid);
  }

  VtuArray PointsFor(const VtuPart& part) const {
    const FED_DataBlock* const displacement =
        m_Options.deformation ? m_Steps.FindDisplacement(part) : nullptr;
    if (displacement == nullptr) return PointsOf(*part.mesh);
    return MovedPointsOf(*part.mesh, *displacement, *m_Options.deformation);
  }

  void AddValues(const VtuValues& values, OwnedGrid& owned) {
    const FED_DataBlock& block = *values.block;
    if (values.mesh == nullptr) {
      owned.positions.push_back(std::make_unique<QeltaPositions>(block));
      AddArrays(block, values.name, *owned.positions.back(), VtuSection::FieldData,
                values.isConstant, owned.grid);
    } else if (RecordIdTypeOf(block) == ID_TYPE_NODE) {
      AddArrays(block, values.name, values.mesh->GetNodes(), VtuSection::PointData,
                values.isConstant, owned.grid);
    } else {
      AddArrays(block, values.name, values.mesh->GetCells(), VtuSection::CellData,
                values.isConstant, owned.grid);
    }
  }

  void AddArrays(const FED_DataBlock& block, const std::string& name,
                 const QeltaPositions& positions, VtuSection section, bool isConstant,
                 VtuGrid& grid) {
    int number = 0;
    for (VtuArray& array : ValuesOf(block, name, positions, section, m_Strays)) {
      if (isConstant) array.identity = {&block, number++};
      grid.arrays.push_back(std::move(array));
    }
    for (VtuArray& array : NamesOf(block, name, m_Database.GetIdMapsPool())) {
      grid.arrays.push_back(std::move(array));
    }
  }

  const FED_Database& m_Database;
  QeltaVtuOptions m_Options;
  VtuSteps m_Steps;
  QeltaStepScale m_Scale;
  VtuWriter m_Writer;
  std::map<const QeltaMesh*, std::uint64_t> m_References;
  std::shared_ptr<std::uint64_t> m_Strays = std::make_shared<std::uint64_t>(0);
  std::uint64_t m_Done = 0;
  std::uint64_t m_Total = 0;
};

QeltaVtuExport::QeltaVtuExport(const FED_Database& database,
                               const std::vector<FED_DataDescriptor>& keys, QeltaVtuOptions options)
    : m_Plan(std::make_unique<Plan>(database, keys, std::move(options))) {}

QeltaVtuExport::~QeltaVtuExport() = default;

std::size_t QeltaVtuExport::GetStepCount() const {
  const VtuSteps& steps = m_Plan->GetSteps();
  return steps.HasSteps() ? steps.GetSteps().size() : 0;
}

std::size_t QeltaVtuExport::GetFileCount() const { return m_Plan->GetSteps().GetParts().size(); }

const std::vector<FED_DataDescriptor>& QeltaVtuExport::GetLeftOut() const {
  return m_Plan->GetSteps().GetLeftOut();
}

std::uint64_t QeltaVtuExport::GetStrayCount() const { return m_Plan->GetStrayCount(); }

void QeltaVtuExport::WriteFile(const std::string& path) {
  if (GetFileCount() != 1) {
    FED_Failure::Throw("310000000905", kLocation,
                       "%s takes one step of one mesh, not %Iu; write a collection, or select one.",
                       path.c_str(), static_cast<std::uint64_t>(GetFileCount()));
  }
  QeltaOutputFile file(path);
  m_Plan->CountBytes();
  m_Plan->Write(m_Plan->GetSteps().GetParts().front(), file);
  file.Commit();
}

void QeltaVtuExport::WriteCollection(const std::string& path) {
  QeltaOutputFile collection(path);
  std::filesystem::path name = std::filesystem::u8path(path).replace_extension();
  name += "_vtu";
  QeltaOutputFolder folder(name);
  m_Plan->CountBytes();
  collection.Write(kCollectionHead);
  for (const VtuPart& part : m_Plan->GetSteps().GetParts()) {
    const std::string file = m_Plan->NameOf(part) + ".vtu";
    m_Plan->Write(part, folder.Add(file));
    collection.Write(m_Plan->EntryOf(part, name.filename().u8string() + "/" + file));
  }
  collection.Write(kCollectionEnd);
  collection.Close();
  folder.Commit();
  collection.Commit();
}

}  // namespace qelta
