// Reads a solver's result file into a database in memory and finds the node that moves farthest in
// the last increment.
//
//     highest_displacement FILE.frd

#include <FED_Exception.h>
#include <FED_MemoryDatabase.h>
#include <FrdImport.h>

#include <cmath>
#include <cstdio>

namespace {

double Length(const QeltaMatrix<3, 1, double>& v) { return std::hypot(v[0], v[1], v[2]); }

std::size_t FindFarthest(const FED_DataBlock& displacements) {
  std::size_t farthest = *displacements.Begin();
  for (const std::size_t index : displacements) {
    if (Length(displacements.GetVector(index)) > Length(displacements.GetVector(farthest))) {
      farthest = index;
    }
  }
  return farthest;
}

void Report(const FED_Database& database, const FED_DataBlock& displacements) {
  const std::size_t index = FindFarthest(displacements);
  const QeltaMatrix<3, 1, double> v = displacements.GetVector(index);
  const FED_IdMap& nodes = database.GetIdMapsPool().GetMap(ID_TYPE_NODE);
  std::printf("%s\n", displacements.GetDescriptor().ToString().c_str());
  std::printf("node %d moves by %.6g: (%.6g, %.6g, %.6g)\n",
              static_cast<int>(nodes.IdOfIndex(static_cast<std::int64_t>(index))), Length(v), v[0],
              v[1], v[2]);
}

int Run(const char* file) {
  FED_MemoryDatabase database;
  database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"results");
  qelta::ImportFrd(file, database);

  FED_DataDescriptorPattern lastDisplacements;
  lastDisplacements.SetMatchExact(FED_DataDescriptor::ONF, ONF_DISPLACEMENT);
  lastDisplacements.SetMatchHighest(FED_DataDescriptor::INCREMENT);
  const std::vector<FED_DataBlock*> found = database.GetDataBlocks(lastDisplacements);
  for (const FED_DataBlock* block : found) Report(database, *block);
  return found.empty() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE.frd\n", argv[0]);
    return 2;
  }
  try {
    return Run(argv[1]);
  } catch (const FED_Exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 3;
  }
}
