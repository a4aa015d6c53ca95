// Writes the databases of GoldenTest.cpp. Run once for each version of the format, by the library
// that has it, into a new folder named after it; what is there is never written again:
//
//   cmake --build build/release --target make_golden
//   build/release/tests/storage/make_golden tests/storage/file/golden/version-1
//
// and the same with the preset windows, into version-1-windows.

#include <filesystem>

#include "FED_DataRecord.h"
#include "FED_FileDatabase.h"
#include "SqliteConnection.h"

namespace {

void WriteField(FED_FileDatabase& db) {
  FED_DataDescriptor key(7, ONF_DISPLACEMENT), alias;
  key.SetString(FED_DataDescriptor::LABEL, "t\u00f6p");
  alias.SetString(FED_DataDescriptor::OBJECTIVE_ID, "latest");
  const double vectors[][3] = {{1, 2, 3}, {-0.5, 1e300, 0}};
  FED_DataBlock& block = db.FetchDataBlock(key, 0);
  for (std::size_t i : {0u, 1u}) block.SetVector(i, vectors[i]);
  if (!db.HasBlock(alias)) db.CreateDataBlockAlias(key, alias);
}

void WriteAllTypes(FED_FileDatabase& db, double first) {
  FED_DataDescriptor key;
  key.SetInteger(FED_DataDescriptor::ITERATION, -1);
  FED_DataBlock& block = db.FetchDataBlock(key, -5, 0, "S|SODLfitVT");
  FED_DataRecord& record = block.CreateDataRecord();
  const double values[] = {first, 2, 3, 4, 5, 6};
  record.SetString(1, "text");
  record.SetIntList(2, {9, -2});
  record.SetDoubleList(3, {0.25, -1});
  record.SetIntList(4, {3, 1, 2});
  record.SetFloat(5, 1.5f);
  record.SetInteger(6, -7);
  record.SetDouble(7, 0.125);
  record.SetVector(8, values);
  record.SetTensor(9, values);
  for (const std::size_t index : {1u, 65u}) block.SetRecord(index, record);
  block.DeleteDataRecord(record);
}

void Write(const std::filesystem::path& path, int saves) {
  {
    FED_FileDatabase db;
    db.InitDb({}, FED_DatabaseDefs::CREATE, 0, path.wstring());
    FED_IdMapsPool pool = db.GetIdMapsPool();
    for (int save = 1; save <= saves; ++save) {
      WriteAllTypes(db, save);
      WriteField(db);
      for (const int id : {10, 11, 99}) pool.GetMap(ID_TYPE_NODE).IndexOfIdForWrite(id);
      for (const char* name : {"steel", "air"}) {
        pool.GetMap(ID_TYPE_MATERIAL).IndexOfNameForWrite(name);
      }
      db.Save();
    }
  }
  std::filesystem::remove(path / "lock");
  // Pages of 16 KiB would be empty for the most part; their size is SQLite's own affair.
  qelta::SqliteConnection(qelta::SystemFiles(), (path / "catalogue.sqlite").string(),
                          qelta::SqliteConnection::Mode::WRITE)
      .Execute("PRAGMA page_size=1024; VACUUM");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directory(folder);
  Write(folder / "full", 2);
  Write(folder / "empty", 0);
}
