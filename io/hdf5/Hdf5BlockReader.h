#pragma once

#include <FED_DataBlock.h>

#include <cstddef>
#include <functional>

#include "Hdf5Catalogue.h"
#include "Hdf5Handle.h"
#include "Hdf5IdMaps.h"

namespace qelta {

/// Reads the records of a block of a file, whose group is given, into an empty one of the same
/// format. `onRecords` hears of every batch of records, by their number. Throws an Hdf5Problem when
/// the group is damaged.
void ReadHdf5Block(hid_t group, const Hdf5Catalogue::Block& source, const Hdf5IdMaps& maps,
                   FED_DataBlock& block, const std::function<void(std::size_t count)>& onRecords);

/// The word for the storage module that a block of a file had.
int ReadHdf5Properties(hid_t group);

}  // namespace qelta
