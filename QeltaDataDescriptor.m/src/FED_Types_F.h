#pragma once

#include <stdint.h>

#include "QeltaExport.h"

/* What the flat entry points share: the objects that programs in C and Fortran know by address.
 *
 * Conventions of all entry points: every argument passed by address must be given; a missing one
 * ends the process with exit code 1. A status, where there is one, comes last and is 0 on success;
 * otherwise the failure is in the log and no output was written. Record indices count from 0,
 * record fields from 1, descriptor fields from 0. Nothing checks an index or a count. Texts to the
 * caller are cut to the buffer or filled up with blanks, without a closing zero. No exception
 * leaves an entry point; one thread at a time for each object. */

#ifdef __cplusplus

class FED_DataBlock;
class FED_DataDescriptor;
class FED_DataDescriptorList;
class FED_DataDescriptorPattern;
class FED_DataRecord;
struct FED_DoubleArray;
struct FED_IntArray;

#define QELTA_ENTRY_NOEXCEPT noexcept

#else

typedef struct FED_DataBlock FED_DataBlock;
typedef struct FED_DataDescriptor FED_DataDescriptor;
typedef struct FED_DataDescriptorList FED_DataDescriptorList;
typedef struct FED_DataDescriptorPattern FED_DataDescriptorPattern;
typedef struct FED_DataRecord FED_DataRecord;
typedef struct FED_DoubleArray FED_DoubleArray;
typedef struct FED_IntArray FED_IntArray;

#define QELTA_ENTRY_NOEXCEPT

/* The layouts of what a C program holds in its own memory; pass the address, cast to FED_*. */

typedef struct QeltaDescriptorLayout {
  int32_t slots[14];  /* value of an integer field, pool id of a text field */
  uint32_t mask;      /* bit i: field i is specified */
  int32_t tableId;    /* -1; set both to -1 whenever a slot or the mask is changed directly */
  int32_t blockId;    /* -1 */
  uint64_t missStamp; /* 0 */
} QeltaDescriptorLayout;

typedef struct QeltaPatternLayout {
  struct {
    int32_t mode; /* 0 exact, 1 all, 2 present, 3 missing, 4 highest, 5 lowest, 6 <=, 7 >=, 8
                     category */
    int32_t value;
  } entries[14];
} QeltaPatternLayout;

typedef struct QeltaDescriptorListLayout {
  uint64_t count;
  uint64_t capacity;
  QeltaDescriptorLayout* data;
} QeltaDescriptorListLayout;

#endif
