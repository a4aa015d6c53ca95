#include "VtuSteps.h"

#include <FED_Failure.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <set>

#include "VtuValueArrays.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

bool IsKind(const Key& key, std::initializer_list<FED_OnfId> kinds) {
  if (!key.Has(Key::ONF)) return false;
  const int kind = key.GetInteger(Key::ONF);
  return std::any_of(kinds.begin(), kinds.end(), [kind](FED_OnfId one) { return one == kind; });
}

// What a mesh consists of.
bool IsOfMesh(const Key& key) {
  return IsKind(key, {ONF_NODE_COORDINATES, ONF_ELEMENT_TOPOLOGY, ONF_ELEMENT_ATTRIBUTES});
}

Key WithKind(Key key, FED_OnfId kind) {
  key.SetInteger(Key::ONF, kind);
  return key;
}

bool DependsOnStep(const FED_Database& database, const Key& key) {
  return !FindSteps(database, {key}).steps.empty();
}

// What moves nodes: no layers, no parts of complex values.
std::vector<Key> FindMovements(const FED_Database& database) {
  std::vector<Key> movements;
  for (const FED_OnfId kind : {ONF_MODE_SHAPE, ONF_DISPLACEMENT}) {
    FED_DataDescriptorPattern pattern;
    pattern.SetMatchExact(Key::ONF, kind);
    for (const Key::ResultIndex field :
         {Key::LAYER, Key::SUB_LEVEL, Key::DIRECTION, Key::MICROPHONE, Key::OBJECTIVE_ID}) {
      pattern.SetMatchIfPresent(field, false);
    }
    const std::vector<Key> found = database.FindBlocks(pattern);
    movements.insert(movements.end(), found.begin(), found.end());
  }
  return movements;
}

std::string LabelOf(const QeltaMesh& mesh) {
  return mesh.GetKey().Has(Key::LABEL) ? mesh.GetKey().GetString(Key::LABEL) : "";
}

}  // namespace

VtuSteps::VtuSteps(const FED_Database& database, const std::vector<Key>& keys)
    : m_Database(database), m_Meshes(database), m_Movements(FindMovements(database)) {
  SortOut(keys);
  FindStepsAndConstants();
  for (std::size_t i = 0; i < m_Steps.size(); ++i) AddParts(i);
}

void VtuSteps::SortOut(const std::vector<Key>& keys) {
  std::vector<Key> withValues;
  for (const Key& key : keys) {
    const QeltaMesh* const mesh = IsOfMesh(key) ? MeshWithKey(key) : nullptr;
    if (mesh != nullptr) {
      const auto end = m_ChosenMeshes.end();
      if (std::find(m_ChosenMeshes.begin(), end, mesh) == end) m_ChosenMeshes.push_back(mesh);
    } else if (!IsOfMesh(key) && HasValues(m_Database.GetDataBlock(key))) {
      withValues.push_back(key);
    } else if (!IsOfMesh(key)) {
      m_LeftOut.push_back(key);
    }
  }
  for (const QeltaMesh* chosen : m_ChosenMeshes) {
    if (!DependsOnStep(m_Database, chosen->GetKey())) m_SteplessMeshes.push_back(chosen);
  }
  AddValues(withValues);
}

void VtuSteps::AddValues(const std::vector<Key>& keys) {
  const std::vector<std::string> names = NameBlocks(keys);
  m_Values.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const FED_DataBlock& block = m_Database.GetDataBlock(keys[i]);
    m_Values.push_back({keys[i], &block, names[i], MeshOfValues(keys[i], block), false});
    m_ValuesOfKey[keys[i]] = &m_Values.back();
  }
}

// A mesh counts as something of its step when no values show it.
void VtuSteps::FindStepsAndConstants() {
  std::vector<Key> keys;
  keys.reserve(m_Values.size());
  for (const VtuValues& values : m_Values) keys.push_back(values.key);
  for (const QeltaMesh* mesh : m_ChosenMeshes) {
    if (!IsUsed(mesh)) keys.push_back(mesh->GetKey());
  }
  QeltaSteps found = FindSteps(m_Database, keys);
  m_Steps = std::move(found.steps);
  m_Constant = std::move(found.constant);
  for (const Key& key : m_Constant) {
    if (m_ValuesOfKey.count(key) > 0) m_ValuesOfKey[key]->isConstant = true;
  }
  m_HasSteps = !m_Steps.empty();
  if (!m_HasSteps) m_Steps.emplace_back();
}

bool VtuSteps::IsUsed(const QeltaMesh* mesh) const {
  return std::any_of(m_Values.begin(), m_Values.end(),
                     [mesh](const VtuValues& values) { return values.mesh == mesh; });
}

void VtuSteps::AddParts(std::size_t step) {
  const std::vector<const QeltaMesh*> meshes = MeshesOf(m_Steps[step]);
  for (std::size_t i = 0; i < meshes.size(); ++i) {
    VtuPart part{meshes[i], step, i, meshes.size() == 1, {}};
    for (const auto* keys : {&m_Steps[step].blocks, &m_Constant}) {
      for (const Key& key : *keys) {
        const auto values = m_ValuesOfKey.find(key);
        if (values == m_ValuesOfKey.end()) continue;
        const QeltaMesh* const mesh = values->second->mesh;
        if (mesh == nullptr || mesh == meshes[i]) part.values.push_back(values->second);
      }
    }
    m_Parts.push_back(std::move(part));
  }
}

// In the order of the database. A mesh that depends on no step is shown at all of them, unless the
// step has its own one in its place.
std::vector<const QeltaMesh*> VtuSteps::MeshesOf(const QeltaStep& step) const {
  std::set<const QeltaMesh*> meshes;
  for (const Key& key : step.blocks) meshes.insert(MeshOf(key));
  meshes.erase(nullptr);
  std::set<std::string> labels;
  for (const QeltaMesh* mesh : meshes) labels.insert(LabelOf(*mesh));
  const auto add = [&](const QeltaMesh* mesh) {
    if (mesh != nullptr && labels.count(LabelOf(*mesh)) == 0) meshes.insert(mesh);
  };
  for (const Key& key : m_Constant) add(MeshOf(key));
  for (const QeltaMesh* mesh : m_SteplessMeshes) add(mesh);
  if (meshes.empty()) meshes.insert(m_Meshes.Find(step.key));
  return {meshes.begin(), meshes.end()};
}

// The mesh that a block belongs to, or is a part of.
const QeltaMesh* VtuSteps::MeshOf(const Key& key) const {
  const auto values = m_ValuesOfKey.find(key);
  return values != m_ValuesOfKey.end() ? values->second->mesh : MeshWithKey(key);
}

const QeltaMesh* VtuSteps::MeshWithKey(const Key& key) const {
  const Key coordinates = WithKind(key, ONF_NODE_COORDINATES);
  const std::vector<QeltaMesh>& meshes = m_Meshes.GetAll();
  const auto found = std::find_if(meshes.begin(), meshes.end(), [&](const QeltaMesh& mesh) {
    return mesh.GetKey().EqualTo(coordinates);
  });
  return found == meshes.end() ? nullptr : &*found;
}

const QeltaMesh* VtuSteps::MeshOfValues(const Key& key, const FED_DataBlock& block) const {
  const FED_IdType type = RecordIdTypeOf(block);
  if (type != ID_TYPE_NODE && type != ID_TYPE_ELEMENT) return nullptr;
  const QeltaMesh* const mesh = m_Meshes.Find(key);
  if (mesh == nullptr) {
    FED_Failure::Throw("310000000903", "|%P|QeltaVtu|VtuSteps",
                       "There is no mesh for %s: no block of kind NODE_COORDINATES whose key "
                       "agrees with it. Import the mesh, or export to csv or jsonl.",
                       key.ToString().c_str());
  }
  return mesh;
}

// What says most about the step first: keys that specify more come later.
const FED_DataBlock* VtuSteps::FindDisplacement(const VtuPart& part) const {
  const Key& step = m_Steps[part.step].key;
  const auto found = std::find_if(m_Movements.rbegin(), m_Movements.rend(), [&](const Key& key) {
    return HoldsAt(key, step) && m_Meshes.Find(key) == part.mesh;
  });
  return found == m_Movements.rend() ? nullptr : &m_Database.GetDataBlock(*found);
}

}  // namespace qelta
