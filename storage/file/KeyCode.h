#pragma once

#include <string>

#include "FED_DataDescriptor.h"

namespace qelta {

/// The key of a block as bytes: the mask of specified fields in 2 bytes, then each of these fields
/// in order; an integer in 4 bytes, a text as its length in 4 bytes and its bytes. Little-endian.
/// Equal keys give equal bytes, in every process.
std::string EncodeKey(const FED_DataDescriptor& descriptor);

/// False when `key` is not what EncodeKey gives for any descriptor.
bool DecodeKey(const std::string& key, FED_DataDescriptor& descriptor);

}  // namespace qelta
