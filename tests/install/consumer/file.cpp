#include <FED_FileDatabase.h>

// Returns 0 when what one database object saves, another one reads.
int main() {
  const FED_DataDescriptor key(1, ONF_TEMPERATURE);
  {
    FED_FileDatabase db;
    db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"file_consumer.qelta");
    db.FetchDataBlock(key, 0).SetScalar(3, 20.5);
    db.Save();
  }
  FED_FileDatabase db;
  db.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::READ_ONLY, 0, L"file_consumer.qelta");
  return db.GetDataBlock(key).GetScalar(3) == 20.5 ? 0 : 1;
}
