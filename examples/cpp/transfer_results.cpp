// Results move from one model of a plate to another that numbers everything differently: the same
// external ids and names, but other places for them, backwards and with gaps.

#include <FED_ConstIdDataBlock.h>
#include <FED_Exception.h>
#include <FED_IdDataBlock.h>
#include <FED_MemoryDatabase.h>
#include <FED_MemoryIdMap.h>
#include <FED_OnfInfoPool.h>
#include <QeltaDatabaseUtils.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

using Ids = std::vector<int>;

constexpr int kColumns = 6;
constexpr int kRows = 4;

// Node 203 is the third of the second row; an element has the id of its first node, plus 1000.
Ids MakeIds(int first, int rows, int columns) {
  Ids ids;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) ids.push_back(first + 100 * row + column);
  }
  return ids;
}

Ids NodeIds() { return MakeIds(101, kRows, kColumns); }
Ids ElementIds() { return MakeIds(1101, kRows - 1, kColumns - 1); }

Ids NodesOfElement(int element) {
  const int node = element - 1000;
  return {node, node + 1, node + 101, node + 100};
}

// Entity i of the list stands at index `first` + i * `step`.
void Number(FED_IdMapsPool& pool, FED_IdType type, const Ids& ids, int first, int step) {
  const auto map = std::make_shared<FED_MemoryIdMap>(type);
  for (const int id : ids) {
    map->Add(first, id);
    first += step;
  }
  pool.SetMap(type, map);
}

void WriteMesh(FED_Database& model) {
  FED_DataBlock& block = model.FetchDataBlock(FED_DataDescriptor(ONF_ELEMENT_TOPOLOGY), 0);
  FED_IdDataBlock elements(block, model.GetIdMapsPool(), false);
  FED_IdDataRecord& record = elements.CreateDataRecord();
  for (const int id : ElementIds()) {
    record.SetInteger(1, 9);  // a quadrilateral
    record.SetIntList(2, NodesOfElement(id));
    elements.SetRecord(id, record);
  }
  elements.DeleteDataRecord(record);
}

void WriteResults(FED_Database& model) {
  const auto open = [&model](FED_OnfId kind) {
    return FED_IdDataBlock(model.FetchDataBlock(FED_DataDescriptor(1, kind), 0),
                           model.GetIdMapsPool(), false);
  };
  FED_IdDataBlock displacement = open(ONF_DISPLACEMENT), temperature = open(ONF_TEMPERATURE),
                  stress = open(ONF_NODAL_STRESS), energy = open(ONF_ELEMENT_STRAIN_ENERGY);
  for (const int id : NodeIds()) {
    const int column = id % 100, row = id / 100;
    const double x = column, y = row;
    const double u[] = {0.01 * x * y, -0.02 * x * x, 0};
    const double s[] = {100 * x, 20 * y, 0, x * y, 0, 0};
    displacement.SetVector(id, u);
    temperature.SetScalar(id, 20 + 3 * x + y);
    stress.SetTensor(id, s);
  }
  for (const int id : ElementIds()) energy.SetScalar(id, 0.5 * (id - 1000));
}

// Groups and surfaces are records that have a name, and lists of the ids of their members.
void WriteNamed(FED_Database& model, FED_OnfId kind, const std::string& name, const Ids& members) {
  FED_IdDataBlock view(model.FetchDataBlock(FED_DataDescriptor(kind), 0), model.GetIdMapsPool(),
                       false);
  FED_IdDataRecord& record = view.CreateDataRecord();
  record.SetIntList(1, members);
  view.SetRecord(name, record);
  view.DeleteDataRecord(record);
}

// The values of a node or an element, as many as its kind has.
std::vector<double> ValuesOf(const FED_ConstIdDataBlock& view, int id) {
  std::vector<double> values(static_cast<std::size_t>(view.GetDataBlock().GetFieldDim()));
  if (values.size() == 1) view.GetScalar(id, values[0]);
  if (values.size() == 3) view.GetVector(id, values.data());
  if (values.size() == 6) view.GetTensor(id, values.data());
  return values;
}

// The members of a list field; those of a set come in the order of the model's own numbering.
template <class Key>
Ids MembersOf(const FED_ConstIdDataBlock& view, const Key& key, std::size_t field) {
  FED_ConstIdDataRecord& record = view.CreateDataRecord();
  view.GetRecord(key, record);
  FED_IntArray list;
  record.GetIntList(field, list);
  view.DeleteDataRecord(record);
  Ids members(list.data, list.data + list.count);
  const BlockDataType type = view.GetDataBlock().GetDataTypes()[field - 1];
  if (type == BLOCK_DATA_INT_SET) std::sort(members.begin(), members.end());
  return members;
}

class Comparison {
 public:
  Comparison(const FED_Database& a, const FED_Database& b) : m_A(a), m_B(b) {}

  // same(viewA, viewB, key) tells whether both have the same under an id or a name.
  template <class Keys, class Same>
  void Compare(const FED_DataDescriptor& key, const Keys& keys, Same same) {
    const FED_ConstIdDataBlock a(m_A.GetDataBlock(key.Duplicate()), m_A.GetIdMapsPool());
    const FED_ConstIdDataBlock b(m_B.GetDataBlock(key.Duplicate()), m_B.GetIdMapsPool());
    const auto count =
        std::count_if(keys.begin(), keys.end(), [&](const auto& each) { return same(a, b, each); });
    const int kind = key.GetInteger(FED_DataDescriptor::ONF);
    std::printf("  %-22s %2d of %2d the same\n",
                FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(kind)).name.c_str(),
                static_cast<int>(count), static_cast<int>(keys.size()));
    m_IsSame = m_IsSame && static_cast<std::size_t>(count) == keys.size();
  }

  bool IsSame() const { return m_IsSame; }

 private:
  const FED_Database& m_A;
  const FED_Database& m_B;
  bool m_IsSame = true;
};

bool CompareAll(const FED_Database& a, const FED_Database& b) {
  Comparison comparison(a, b);
  const auto values = [](const auto& viewA, const auto& viewB, int id) {
    return ValuesOf(viewA, id) == ValuesOf(viewB, id);
  };
  const auto members = [](std::size_t field) {
    return [field](const auto& viewA, const auto& viewB, const auto& key) {
      return MembersOf(viewA, key, field) == MembersOf(viewB, key, field);
    };
  };
  for (const FED_OnfId kind : {ONF_DISPLACEMENT, ONF_TEMPERATURE, ONF_NODAL_STRESS}) {
    comparison.Compare(FED_DataDescriptor(1, kind), NodeIds(), values);
  }
  comparison.Compare(FED_DataDescriptor(1, ONF_ELEMENT_STRAIN_ENERGY), ElementIds(), values);
  comparison.Compare(FED_DataDescriptor(ONF_ELEMENT_TOPOLOGY), ElementIds(), members(2));
  const std::vector<std::string> groups{"left edge", "corner"}, surfaces{"top"};
  comparison.Compare(FED_DataDescriptor(ONF_NODE_GROUP), groups, members(1));
  comparison.Compare(FED_DataDescriptor(ONF_SURFACE), surfaces, members(1));
  return comparison.IsSame();
}

void ShowPlace(const char* model, const FED_Database& database, int node) {
  const FED_ConstIdDataBlock view(database.GetDataBlock(FED_DataDescriptor(1, ONF_DISPLACEMENT)),
                                  database.GetIdMapsPool());
  double u[3];
  view.GetVector(node, u);
  std::printf("  %-9s node %d stands at index %3d: u = (%g, %g, %g)\n", model, node,
              static_cast<int>(view.GetIdMap().IndexOfId(node)), u[0], u[1], u[2]);
}

int Run() {
  const Ids nodes = NodeIds(), elements = ElementIds();
  FED_IdMapsPool solverMaps, acousticMaps;
  Number(solverMaps, ID_TYPE_NODE, nodes, 0, 1);
  Number(solverMaps, ID_TYPE_ELEMENT, elements, 0, 1);
  Number(acousticMaps, ID_TYPE_NODE, nodes, 500, -7);
  Number(acousticMaps, ID_TYPE_ELEMENT, Ids(elements.rbegin(), elements.rend()), 20, 3);

  FED_MemoryDatabase solver, acoustics;
  solver.InitDb(solverMaps, FED_DatabaseDefs::CREATE, 0, L"solver");
  acoustics.InitDb(acousticMaps, FED_DatabaseDefs::CREATE, 0, L"acoustics");
  WriteMesh(solver);
  WriteResults(solver);
  WriteNamed(solver, ONF_NODE_GROUP, "left edge", {101, 201, 301, 401});
  WriteNamed(solver, ONF_NODE_GROUP, "corner", {406});
  WriteNamed(solver, ONF_SURFACE, "top", {1301, 1302, 1303, 1304, 1305});
  WriteNamed(acoustics, ONF_SURFACE, "bottom", {1101});  // a name that the other does not know

  const std::uint64_t copied = QeltaDatabaseUtils::copy_datablocks(
      solver, acoustics, FED_DataDescriptorPattern(), QeltaDatabaseUtils::SKIP_EMPTY_BLOCKS);
  std::printf("%d blocks copied from 'solver' to 'acoustics'\n", static_cast<int>(copied));
  ShowPlace("solver", solver, 203);
  ShowPlace("acoustics", acoustics, 203);
  std::printf("compared node by node, element by element, name by name\n");
  const bool isSame = CompareAll(solver, acoustics);
  std::printf("%s\n", isSame ? "everything arrived" : "THERE ARE DIFFERENCES");
  return isSame ? 0 : 1;
}

}  // namespace

int main() {
  try {
    return Run();
  } catch (const FED_Exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 2;
  }
}
