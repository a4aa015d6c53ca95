// export_hdf5 DATABASE FILE [DEFLATE_LEVEL]: exports a database.
// export_hdf5 DATABASE: makes one that holds everything a database can hold.

#include <FED_FileDatabase.h>
#include <QeltaHdf5.h>

#include <cstdio>
#include <cstdlib>

#include "OddDatabase.h"

namespace {

void Run(int argc, char** argv) {
  const std::string name = argv[1];
  const auto mode = argc > 2 ? FED_DatabaseDefs::READ_ONLY : FED_DatabaseDefs::CREATE;
  FED_FileDatabase database;
  database.InitDb(FED_IdMapsPool(), mode, 0, std::wstring(name.begin(), name.end()));
  if (argc > 2) {
    const qelta::QeltaHdf5ExportOptions options{argc > 3 ? std::atoi(argv[3]) : 0};
    qelta::ExportHdf5(database, database.FindBlocks({}), argv[2], {}, options);
  } else {
    qelta::test::FillAll(database);
    database.Save();
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc < 2) return 2;
    Run(argc, argv);
  } catch (const FED_Exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 4;
  }
  return 0;
}
