#include "StorageKinds.h"

#include "FED_Failure.h"
#include "FED_FileDatabase.h"
#include "FED_MemoryDatabase.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFortran|StorageKinds";

template <class Database>
std::unique_ptr<FED_Database> Make() {
  return std::make_unique<Database>();
}

template <class Database>
bool Save(FED_Database& database) {
  auto* const mine = dynamic_cast<Database*>(&database);
  if (mine == nullptr) return false;
  mine->Save();
  return true;
}

struct StorageKind {
  const char* name;
  std::unique_ptr<FED_Database> (*make)();
  bool (*save)(FED_Database&);  // false when the database is of another kind
};

constexpr StorageKind kKinds[] = {
    {"memory", Make<FED_MemoryDatabase>, Save<FED_MemoryDatabase>},
    {"file", Make<FED_FileDatabase>, Save<FED_FileDatabase>},
};

}  // namespace

std::unique_ptr<FED_Database> MakeDatabase(const std::string& name) {
  std::string known;
  for (const StorageKind& kind : kKinds) {
    if (name == kind.name) return kind.make();
    known += (known.empty() ? "" : ", ") + std::string(kind.name);
  }
  FED_Failure::Throw("400000000001", kLocation, "There is no kind of storage '%s'; there is %s.",
                     name.c_str(), known.c_str());
}

void SaveDatabase(FED_Database& database) {
  for (const StorageKind& kind : kKinds) {
    if (kind.save(database)) return;
  }
  FED_Failure::Throw("400000000002", kLocation,
                     "This database is of no kind that can be saved here; save it where it was "
                     "made.");
}

}  // namespace qelta
