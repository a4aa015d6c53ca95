#pragma once

#include <cstdint>
#include <string>

#include "FED_IdMap.h"
#include "FED_IdType.h"

namespace qelta {

/// True when the map knows entities that cannot be listed.
bool HidesEntities(const FED_IdMap& map);

/// The entities of a map as bytes: runs of consecutive ids at consecutive indices, and names.
/// Empty for an empty map. `entities` becomes their number.
std::string EncodeIdMap(const FED_IdMap& map, std::uint64_t& entities);

/// Makes `map` hold what `bytes` hold. It may be empty, or hold the same and more behind it; any
/// other difference is a failure that names the id type and the index, and leaves the map as it
/// was. So are bytes that are no encoded map.
void MergeIdMap(FED_IdType type, const std::string& bytes, FED_IdMap& map);

}  // namespace qelta
