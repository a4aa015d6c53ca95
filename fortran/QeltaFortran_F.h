#pragma once

#include "FED_Types_F.h"
#include "QeltaFortranExport.h"

/* Companion entry points: what a program in Fortran or C needs beside the operations on blocks,
 * records and descriptors. The conventions are those of FED_Types_F.h; texts to the library end
 * with a zero and are UTF-8. Descriptors given for a lookup are never changed, so that a program
 * may change their slots directly and look up again. */

#ifdef __cplusplus
class FED_Database;
extern "C" {
#else
typedef struct FED_Database FED_Database;
#endif

/* Opens a database of a kind of storage ("memory", or "file", whose name is the path of a
 * directory) and gives its handle. `mode` is 0 read only, 1 read and write, 2 create anew;
 * `cacheSize` is in bytes, 0 for the default, and a negative one counts as 0. */
QELTA_FORTRAN_EXPORT void Database_Open_F(const char* kind, const char* name, const int32_t* mode,
                                          const int64_t* cacheSize, FED_Database** database,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Closes without saving and sets the handle variable to 0; does nothing when it holds 0. The
 * handles of its blocks and records are dead afterwards. */
QELTA_FORTRAN_EXPORT void Database_Close_F(FED_Database** database,
                                           int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Makes everything durable where the storage is; blocks stay open. */
QELTA_FORTRAN_EXPORT void Database_Save_F(FED_Database* database,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The block of a descriptor, made when it is absent: of a catalogued kind ... */
QELTA_FORTRAN_EXPORT void Database_FetchBlock_F(FED_Database* database,
                                                const FED_DataDescriptor* descriptor,
                                                FED_DataBlock** block,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* ... or custom, with a record format such as "I|dd". */
QELTA_FORTRAN_EXPORT void Database_FetchBlock_Custom_F(FED_Database* database,
                                                       const FED_DataDescriptor* descriptor,
                                                       const char* format, FED_DataBlock** block,
                                                       int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* 1 or 0. */
QELTA_FORTRAN_EXPORT void Database_HasBlock_F(FED_Database* database,
                                              const FED_DataDescriptor* descriptor, int32_t* has,
                                              int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Deletes the block of a descriptor, if there is one. Its handle is dead afterwards. */
QELTA_FORTRAN_EXPORT void Database_DeleteBlock_F(FED_Database* database,
                                                 const FED_DataDescriptor* descriptor,
                                                 int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Deletes the blocks that the pattern selects. */
QELTA_FORTRAN_EXPORT void Database_DeleteBlocks_F(FED_Database* database,
                                                  const FED_DataDescriptorPattern* pattern,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Puts the descriptors that the pattern selects into the list, in place of what it held. */
QELTA_FORTRAN_EXPORT void Database_FindBlocks_F(FED_Database* database,
                                                const FED_DataDescriptorPattern* pattern,
                                                FED_DataDescriptorList* list,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The same for a selection in text form, such as "LABEL=DISP; ITERATION=10..20; STATE=max": the
 * conditions of QeltaPatternText.h, separated by semicolons. An empty text selects everything. */
QELTA_FORTRAN_EXPORT void Database_SelectBlocks_F(FED_Database* database, const char* text,
                                                  FED_DataDescriptorList* list,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Makes `alias` a further name of the block of `existing`. `created` is 0, and nothing changed,
 * when the two are equal, `existing` has no block, `alias` has one, or either specifies no field.
 */
QELTA_FORTRAN_EXPORT void Database_CreateAlias_F(FED_Database* database,
                                                 const FED_DataDescriptor* existing,
                                                 const FED_DataDescriptor* alias, int32_t* created,
                                                 int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Reads one field (from 1) of `count` consecutive records from `first` (from 0): int32, float or
 * double values, 3 doubles a vector, 6 a tensor. A field of strings, lists or sets fails, as does a
 * record that is absent: the one failure after which part of the output may be written. */
QELTA_FORTRAN_EXPORT void Block_ReadColumn_F(FED_DataBlock* block, const int32_t* field,
                                             const int32_t* first, const int32_t* count,
                                             void* values, int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Writes one field of consecutive records, creating those that are absent. */
QELTA_FORTRAN_EXPORT void Block_WriteColumn_F(FED_DataBlock* block, const int32_t* field,
                                              const int32_t* first, const int32_t* count,
                                              const void* values,
                                              int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many fields the records of a block have, and the types (BlockDataType) of the first `room` of
 * them. */
QELTA_FORTRAN_EXPORT void Block_GetFieldTypes_F(FED_DataBlock* block, const int32_t* room,
                                                int32_t* types, int32_t* count,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many characters the text of a string field (from 1) has, ... */
QELTA_FORTRAN_EXPORT void Record_GetStringLen_F(FED_DataRecord* record, const int32_t* field,
                                                int32_t* length,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* ... or the text of a descriptor's text field (from 0); fails when that is not specified. */
QELTA_FORTRAN_EXPORT void Descriptor_GetStringLen_F(const FED_DataDescriptor* descriptor,
                                                    const int32_t* field, int32_t* length,
                                                    int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Arrays for DataRecord_SetIntList_F and DataRecord_SetDoubleList_F, holding a copy of `count`
 * values; a negative count counts as 0. Delete releases an array, however it was made, and sets the
 * handle variable to 0; it does nothing when that holds 0. */
QELTA_FORTRAN_EXPORT void IntArray_New_F(const int32_t* values, const int64_t* count,
                                         FED_IntArray** array,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;
QELTA_FORTRAN_EXPORT void IntArray_Delete_F(FED_IntArray** array,
                                            int32_t* status) QELTA_ENTRY_NOEXCEPT;
QELTA_FORTRAN_EXPORT void DoubleArray_New_F(const double* values, const int64_t* count,
                                            FED_DoubleArray** array,
                                            int32_t* status) QELTA_ENTRY_NOEXCEPT;
QELTA_FORTRAN_EXPORT void DoubleArray_Delete_F(FED_DoubleArray** array,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The message and the message id of the calling thread's last failure; blank when there was none.
 * A message has at most 1023 characters, an id twelve. */
QELTA_FORTRAN_EXPORT void LastError_Text_F(char* text, const int32_t* textLength, char* messageId,
                                           const int32_t* messageIdLength) QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
