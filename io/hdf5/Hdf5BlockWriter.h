#pragma once

#include <FED_DataBlock.h>
#include <FED_IdMapsPool.h>

#include <cstddef>
#include <functional>

#include "Hdf5Handle.h"
#include "Hdf5RecordIds.h"

namespace qelta {

/// Writes the records of a block, and what is known about its kind, into a group that has the
/// block's key. `onRecords` hears of every batch of records, by their number.
void WriteHdf5Block(hid_t group, const FED_DataBlock& block, Hdf5RecordIds& ids, int deflateLevel,
                    const std::function<void(std::size_t count)>& onRecords);

}  // namespace qelta
