#pragma once

#include <FED_MemoryDatabase.h>

namespace qelta::bench {

/// An empty database in memory that shows its block set.
class BenchDatabase : public FED_MemoryDatabase {
 public:
  BenchDatabase() {
    InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, FED_DEFAULT_DATABASE_NAME);
  }
  using FED_Database::m_BlockSet;
};

}  // namespace qelta::bench
