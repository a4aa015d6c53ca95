#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "FED_DataDescriptor.h"

namespace qelta {

/// Bytes of a chunk, but for records.
constexpr std::size_t kChunkBytes = std::size_t{256} * 1024;

/// PRESENCE consists of words; the first one is a number, the others hold a bit for each index.
constexpr std::size_t kWord = 8;

/// An entry of HANDLES: the offset in CONTENTS, then the length with the kind in the highest byte;
/// all zeros for a string or list that was dropped.
constexpr std::size_t kHandleEntry = 16;
constexpr unsigned kKindShift = 56;

/// Bytes of a record; fails when `format` is none.
std::size_t RecordSizeOf(const std::string& format);

/// Records of a chunk, as a power of two: about kChunkBytes of them and a multiple of 64.
unsigned ShiftFor(std::size_t recordSize);

/// Whether this program means the same by the block's kind as the one that stored it.
bool IsKnownHere(const FED_DataDescriptor& descriptor, const std::string& format);

/// The places in a record that hold handles of strings, lists and sets, of a block that is known
/// here. Names that stand for an index of an id map are none.
std::vector<std::size_t> HandlePlaces(const FED_DataDescriptor& descriptor,
                                      const std::string& format);

}  // namespace qelta
