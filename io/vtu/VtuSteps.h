#pragma once

#include <QeltaMesh.h>
#include <QeltaSteps.h>

#include <map>
#include <string>
#include <vector>

namespace qelta {

/// A block whose values become arrays.
struct VtuValues {
  FED_DataDescriptor key;
  const FED_DataBlock* block;
  std::string name;
  const QeltaMesh* mesh;  ///< null: the values belong to no node or element
  bool isConstant;        ///< the same at every step
};

/// What one file shows: a mesh, and the values of one step on it.
struct VtuPart {
  const QeltaMesh* mesh;  ///< null: there are only values without a mesh
  std::size_t step;
  std::size_t number;  ///< counts the parts of a step from 0
  bool isOnlyPart;
  std::vector<const VtuValues*> values;
};

/// Blocks of a database arranged as files: by step, and within it by mesh.
class VtuSteps {
 public:
  VtuSteps(const FED_Database& database, const std::vector<FED_DataDescriptor>& keys);
  VtuSteps(const VtuSteps&) = delete;
  VtuSteps& operator=(const VtuSteps&) = delete;

  /// One step without fields when nothing depends on a step.
  const std::vector<QeltaStep>& GetSteps() const { return m_Steps; }
  bool HasSteps() const { return m_HasSteps; }

  const std::vector<VtuPart>& GetParts() const { return m_Parts; }
  const std::vector<FED_DataDescriptor>& GetLeftOut() const { return m_LeftOut; }

  /// The displacement or mode shape of the nodes of a part; null when there is none.
  const FED_DataBlock* FindDisplacement(const VtuPart& part) const;

 private:
  void SortOut(const std::vector<FED_DataDescriptor>& keys);
  void AddValues(const std::vector<FED_DataDescriptor>& keys);
  void FindStepsAndConstants();
  void AddParts(std::size_t step);
  std::vector<const QeltaMesh*> MeshesOf(const QeltaStep& step) const;
  const QeltaMesh* MeshOf(const FED_DataDescriptor& key) const;
  const QeltaMesh* MeshWithKey(const FED_DataDescriptor& key) const;
  const QeltaMesh* MeshOfValues(const FED_DataDescriptor& key, const FED_DataBlock& block) const;
  bool IsUsed(const QeltaMesh* mesh) const;

  const FED_Database& m_Database;
  QeltaMeshes m_Meshes;
  std::vector<FED_DataDescriptor> m_Movements;
  std::vector<VtuValues> m_Values;
  std::map<FED_DataDescriptor, VtuValues*> m_ValuesOfKey;
  std::vector<const QeltaMesh*> m_ChosenMeshes;
  std::vector<const QeltaMesh*> m_SteplessMeshes;  // of these
  std::vector<FED_DataDescriptor> m_LeftOut;
  std::vector<QeltaStep> m_Steps;
  std::vector<FED_DataDescriptor> m_Constant;
  std::vector<VtuPart> m_Parts;
  bool m_HasSteps = false;
};

}  // namespace qelta
