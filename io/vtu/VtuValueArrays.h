#pragma once

#include <FED_DataBlock.h>
#include <FED_IdMapsPool.h>
#include <QeltaPositions.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "VtuArray.h"

namespace qelta {

/// The values of a block as arrays: one for each field, or one for all fields of a custom block
/// whose fields are all numbers of one type.
///
/// Numbers are Float64, or Float32 if the block has these, and NaN where there is no record.
/// References to what has a name are Int32, indices into the list that NamesOf gives, and -1 where
/// there is none. What else a record may hold (texts, lists, references by id) is left out.
///
/// `positions` says which record stands where; records that it does not know are left out and
/// counted in `strays`, when they are written. The first three must outlive the arrays.
std::vector<VtuArray> ValuesOf(const FED_DataBlock& block, const std::string& name,
                               const QeltaPositions& positions, VtuSection section,
                               const std::shared_ptr<std::uint64_t>& strays);

/// Whether a block has values for arrays.
bool HasValues(const FED_DataBlock& block);

/// The names that references of a block point at: for the array `NAME` of references a list of
/// texts, `NAME names`, of which entry i is what i stands for.
std::vector<VtuArray> NamesOf(const FED_DataBlock& block, const std::string& name,
                              const FED_IdMapsPool& maps);

/// One number, or one text, about the whole file.
VtuArray FactOf(const std::string& name, double value);
VtuArray FactOf(const std::string& name, const std::string& text);

}  // namespace qelta
