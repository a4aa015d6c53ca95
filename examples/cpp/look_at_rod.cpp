// What cooling_rod has kept: the last field by node, the history as a column, a failure.

#include <FED_ConstIdDataBlock.h>
#include <FED_Failure.h>
#include <FED_FileDatabase.h>
#include <QeltaBulkAccess.h>

#include <cstdio>
#include <vector>

int main() {
  FED_FileDatabase db;
  db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::READ_ONLY, 0, L"rod.db");

  FED_DataDescriptorPattern last;
  last.SetMatchExact(FED_DataDescriptor::ONF, ONF_TEMPERATURE);
  last.SetMatchHighest(FED_DataDescriptor::INCREMENT);
  const FED_DataDescriptor found = db.FindBlocks(last).front();
  const FED_ConstIdDataBlock byNode(db.GetDataBlock(found), db.GetIdMapsPool());
  double middle = 0;
  byNode.GetScalar(1011, middle);
  std::printf("%s: %.1f degrees at node 1011\n", found.ToString().c_str(), middle);

  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, "HISTORY");
  const FED_DataBlock& history = db.GetDataBlock(key);
  std::vector<double> heat(history.GetNumRecords());
  QeltaBulkAccess::ReadColumn(history, 2, 0, heat.size(), heat.data());
  std::printf("heat %.0f at the start, %.1f at the end\n", heat.front(), heat.back());

  try {
    byNode.GetScalar(4711, middle);
  } catch (const FED_Failure& failure) {
    std::printf("failure %s: %s\n", failure.GetMessageId().c_str(),
                failure.GetMessageText().c_str());
  }
}
