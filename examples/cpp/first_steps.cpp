#include <FED_MemoryDatabase.h>

#include <cstdio>

int main() {
  FED_MemoryDatabase db;
  db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"results");
  for (int iteration = 0; iteration < 3; ++iteration) {
    FED_DataBlock& block = db.FetchDataBlock(FED_DataDescriptor(iteration, ONF_DISPLACEMENT), 0);
    const double displacement[] = {0.5 * iteration, 0, 0};
    block.SetVector(0, displacement);
  }
  FED_DataDescriptorPattern latest;
  latest.SetMatchHighest(FED_DataDescriptor::ITERATION);
  for (const FED_DataDescriptor& key : db.FindBlocks(latest))
    std::printf("%s: u = %g\n", key.ToString().c_str(), db.GetDataBlock(key).GetVector(0)[0]);
}
