#pragma once

#include <memory>
#include <string>

#include "FED_Database.h"

namespace qelta {

/// A new, not yet initialised database of the kind that `name` tells; fails for an unknown kind.
std::unique_ptr<FED_Database> MakeDatabase(const std::string& name);

/// Calls the `Save` of the database's own class.
void SaveDatabase(FED_Database& database);

}  // namespace qelta
