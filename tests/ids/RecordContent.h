#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>

#include "FED_DataBlock.h"
#include "FED_IdMapsPool.h"

namespace qelta::test {

/// Records as text by their id, by their name where the id type is named, or by their index where
/// it has no map.
using Content = std::map<std::string, std::string>;

/// What a block holds in the terms of the outside world, which are the same for all numberings.
/// Asks maps and plain cursors only, no view.
Content ExternalContent(const FED_DataBlock& block, const FED_IdMapsPool& maps);

/// Writes a record with something in every field that depends on the index, without a view.
/// `refer` gives the integers, which for an id type with a map are indices of entities.
void FillRecord(FED_DataBlock& block, std::size_t index,
                const std::function<int(FED_IdType)>& refer);

/// The same with the record's own index for all integers.
void FillRecord(FED_DataBlock& block, std::size_t index);

}  // namespace qelta::test
