#pragma once

#include "QeltaExport.h"

/// Marks what a storage module shows outside its library; QELTA_BUILDING_STORAGE is defined while
/// the module itself is compiled.
#if defined(QELTA_STATIC)
#define QELTA_STORAGE_EXPORT
#elif defined(_WIN32) && defined(QELTA_BUILDING_STORAGE)
#define QELTA_STORAGE_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define QELTA_STORAGE_EXPORT __declspec(dllimport)
#else
#define QELTA_STORAGE_EXPORT __attribute__((visibility("default")))
#endif
