#pragma once

#include <FED_DataDescriptor.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Hdf5Handle.h"

namespace qelta {

// Attributes of groups and datasets: 64-bit integers, texts, lists of texts. Reading throws an
// Hdf5Problem when there is none of the name, or one of another kind.

void WriteAttribute(hid_t object, const std::string& name, std::int64_t value);
void WriteAttribute(hid_t object, const std::string& name, const std::string& text);
void WriteAttribute(hid_t object, const std::string& name, const std::vector<std::string>& texts);

std::int64_t ReadInteger(hid_t object, const std::string& name);
/// Fails outside of the range as well.
int ReadInteger(hid_t object, const std::string& name, int lowest, int highest);
std::string ReadText(hid_t object, const std::string& name);

/// A key is an attribute for each specified field, and all of it as a text.
void WriteKey(hid_t object, const FED_DataDescriptor& key);
/// A valid key; fails when the attributes make none.
FED_DataDescriptor ReadKey(hid_t object);

}  // namespace qelta
