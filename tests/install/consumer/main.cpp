#include <FED_Failure.h>
#include <FED_MemoryDatabase.h>
#include <FED_RecordRuns.h>

#include <cstdio>
#include <vector>

// Returns 0 when classes, casts and exceptions work across the library's boundary.
int main() {
  FED_MemoryDatabase db;
  db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, FED_DEFAULT_DATABASE_NAME);
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, "consumer");
  FED_DataBlock& block = db.FetchDataBlock(key, 0, 0, "Id");
  const std::vector<double> values(5000, 2.5);
  auto* runs = dynamic_cast<FED_RecordRuns*>(&block);
  if (runs == nullptr) return 1;
  runs->WriteColumn(1, 0, values.size(), values.data());
  if (block.GetFieldData() != values) return 2;
  try {
    block.GetScalar(5000);
  } catch (const FED_Failure& failure) {
    std::printf("consumer: %s\n", failure.what());
    return 0;
  }
  return 3;
}
