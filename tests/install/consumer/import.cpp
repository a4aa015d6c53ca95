#include <FED_MemoryDatabase.h>
#include <FrdImport.h>
#include <FrdSummary.h>
#include <QeltaPatternText.h>
#include <QeltaRecordRows.h>
#include <QeltaSelectingSink.h>
#include <QeltaVtuExport.h>

#include <cstdio>
#include <vector>

// Returns 0 when the import and its summary agree on what a selection picks, and it can be
// exported.
int main(int argc, char** argv) {
  if (argc != 2) return 1;
  const qelta::QeltaPatternText pattern({"LABEL=DISP"});
  FED_MemoryDatabase database;
  database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, FED_DEFAULT_DATABASE_NAME);
  if (!qelta::ImportFrd(argv[1], database)) return 2;
  std::vector<FED_DataDescriptor> keys;
  for (const auto& block : qelta::SummarizeFrd(argv[1]).blocks) keys.push_back(block.key);
  const std::size_t count = pattern.Select(keys).size();
  std::printf("import: %zu blocks\n", count);
  qelta::QeltaVtuExport(database, pattern.Select(database), {}).WriteCollection("import.pvd");
  return count > 0 && count == pattern.Select(database).size() ? 0 : 3;
}
