#pragma once

#include <vector>

#include "FED_OnfInfoPool.h"
#include "FED_OnfMetaData.h"

namespace qelta {

/// The catalogue as written down in the source, in ascending order of the numbers.
std::vector<FED_OnfMetaData> MakeOnfCatalogue();

std::vector<FED_OnfCategoryInfo> MakeOnfCategories();

/// Meta data of a bare format; id types, names and flags are those of a custom format.
FED_OnfMetaData MakeCustomMetaData(const std::string& format);

}  // namespace qelta
