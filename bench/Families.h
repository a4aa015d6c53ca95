#pragma once

#include "Suite.h"

namespace qelta::bench {

void AddLookup(Suite& suite);
void AddPattern(Suite& suite);
void AddRecords(Suite& suite);
void AddFieldData(Suite& suite);
void AddIdMaps(Suite& suite);
void AddEntryPoints(Suite& suite);
void AddCopies(Suite& suite);
void AddFrd(Suite& suite);
void AddStorageWrites(Suite& suite);
void AddStorageReads(Suite& suite);

}  // namespace qelta::bench
