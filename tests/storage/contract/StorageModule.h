#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "FED_Database.h"

namespace qelta::test {

/// What the contract suite knows about a storage module.
struct StorageModule {
  using Database = std::unique_ptr<FED_Database>;
  using Action = std::function<void(FED_Database&)>;

  std::string name;
  bool keepsContent;                        ///< saved content is there when opened again
  std::function<std::wstring()> freshName;  ///< a database name that no other test uses

  std::function<Database()> make;                     ///< not initialised
  std::function<Database(const FED_Database&)> copy;  ///< empty: cannot be copied
  Action save;                                        ///< Save
  Action closeBlocks;                                 ///< FED_Database::SaveData
  Action closeBlocksOfModule;  ///< SaveData as the module's own code calls it
};

inline void PrintTo(const StorageModule& module, std::ostream* out) { *out << module.name; }

/// Makes SaveData accessible.
template <class Database>
class SavingDatabase : public Database {
 public:
  void CloseBlocks() { FED_Database::SaveData(); }
  void CloseBlocksOfModule() { Database::SaveData(); }
};

/// The row of a module; `Database` is its default-constructible database.
template <class Database>
StorageModule DescribeModule(std::string name, bool keepsContent,
                             std::function<std::wstring()> freshName) {
  using Saving = SavingDatabase<Database>;
  const auto cast = [](FED_Database& database) -> Saving& {
    return static_cast<Saving&>(database);
  };
  StorageModule module{std::move(name),
                       keepsContent,
                       std::move(freshName),
                       [] { return std::make_unique<Saving>(); },
                       nullptr,
                       [cast](FED_Database& database) { cast(database).Save(); },
                       [cast](FED_Database& database) { cast(database).CloseBlocks(); },
                       [cast](FED_Database& database) { cast(database).CloseBlocksOfModule(); }};
  if constexpr (std::is_copy_constructible_v<Database>) {
    module.copy = [](const FED_Database& database) {
      return std::make_unique<Saving>(static_cast<const Saving&>(database));
    };
  }
  return module;
}

/// The modules that the suite runs over, one row each.
std::vector<StorageModule> StorageModules();

}  // namespace qelta::test
