#pragma once

#include "QeltaExport.h"

// What the storage libraries show; each macro's QELTA_BUILDING_... is defined while its library is
// compiled.
#if defined(QELTA_BUILDING_STORAGE)
#define QELTA_STORAGE_EXPORT QELTA_SHOWN
#else
#define QELTA_STORAGE_EXPORT QELTA_SEEN
#endif

#if defined(QELTA_BUILDING_MEMORY_STORAGE)
#define QELTA_MEMORY_STORAGE_EXPORT QELTA_SHOWN
#else
#define QELTA_MEMORY_STORAGE_EXPORT QELTA_SEEN
#endif

#if defined(QELTA_BUILDING_FILE_STORAGE)
#define QELTA_FILE_STORAGE_EXPORT QELTA_SHOWN
#else
#define QELTA_FILE_STORAGE_EXPORT QELTA_SEEN
#endif
