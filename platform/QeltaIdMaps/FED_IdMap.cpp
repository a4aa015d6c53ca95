#include "FED_IdMap.h"

FED_IdMap::~FED_IdMap() = default;

std::int64_t FED_IdMap::GetMaxIndex() const { return -1; }

bool FED_IdMap::HasNameAt(std::int64_t) const { return false; }
