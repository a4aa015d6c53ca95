// A hot rod cools down, and every second of it is kept on disk.

#include <FED_FileDatabase.h>
#include <FED_IdDataBlock.h>

#include <vector>

namespace {

constexpr int kNodes = 21;

void Cool(std::vector<double>& temperature) {
  const std::vector<double> before = temperature;
  for (std::size_t i = 1; i + 1 < before.size(); ++i) {
    temperature[i] += 0.2 * (before[i - 1] - 2 * before[i] + before[i + 1]);
  }
}

FED_DataDescriptor KeyOf(int second, FED_OnfId kind) {
  FED_DataDescriptor key(kind);
  key.SetInteger(FED_DataDescriptor::INCREMENT, second);
  return key;
}

void StoreField(FED_Database& db, int second, const std::vector<double>& temperature) {
  FED_DataBlock& block = db.FetchDataBlock(KeyOf(second, ONF_TEMPERATURE), temperature.size());
  FED_IdDataBlock byNode(block, db.GetIdMapsPool(), false);
  int node = 1001;
  for (const double value : temperature) byNode.SetScalar(node++, value);
}

// One record a second, of a layout of our own: time and heat.
void StoreHistory(FED_Database& db, int second, double heat) {
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, "HISTORY");
  FED_DataBlock& history = db.FetchDataBlock(key, 0, 0, "I|dd");
  FED_DataRecord& record = history.CreateDataRecord();
  record.SetDouble(1, second);
  record.SetDouble(2, heat);
  history.SetRecord(static_cast<std::size_t>(second), record);
  history.DeleteDataRecord(record);
}

}  // namespace

int main() {
  FED_FileDatabase db;
  db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"rod.db");
  std::vector<double> temperature(kNodes, 0);
  temperature[kNodes / 2] = 1000;
  for (int second = 0; second <= 10; ++second) {
    StoreField(db, second, temperature);
    double heat = 0;
    for (const double value : temperature) heat += value;
    StoreHistory(db, second, heat);
    db.Save();
    Cool(temperature);
  }
}
