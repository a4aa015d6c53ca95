#pragma once

#include "FED_Types_F.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Block operations. Record indices count from 0; a 32-bit index is widened with its sign. */

/* Makes a record cursor; give it back with DataBlock_DeleteRecord_F of the same block. */
QELTA_EXPORT void DataBlock_CreateRecord_F(FED_DataBlock* block, FED_DataRecord** record,
                                           int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Destroys the cursor; the handle variable is left as it is, and 0 in it does nothing. */
QELTA_EXPORT void DataBlock_DeleteRecord_F(FED_DataBlock* block, FED_DataRecord** record,
                                           int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The 80 bytes of the block's descriptor. No status. */
QELTA_EXPORT void DataBlock_GetDescriptor_F(FED_DataBlock* block,
                                            FED_DataDescriptor* descriptor) QELTA_ENTRY_NOEXCEPT;

/* The highest index that may hold a record; -1 for an empty block. */
QELTA_EXPORT void DataBlock_GetMaxIndex_F(FED_DataBlock* block, int32_t* maxIndex,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* 1 or 0; 0 also after a failure. */
QELTA_EXPORT void DataBlock_HasRecord_F(FED_DataBlock* block, const int32_t* index, int32_t* has,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Prepares room for records; a hint. */
QELTA_EXPORT void DataBlock_Reserve_F(FED_DataBlock* block, const int32_t* count,
                                      int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Fills the cursor with the record at the index. */
QELTA_EXPORT void DataBlock_GetRecord_F(FED_DataBlock* block, const int32_t* index,
                                        FED_DataRecord* record,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Stores the cursor as the record at the index. */
QELTA_EXPORT void DataBlock_SetRecord_F(FED_DataBlock* block, const int32_t* index,
                                        FED_DataRecord* record,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The first integer field of the record. */
QELTA_EXPORT void DataBlock_GetInteger_F(FED_DataBlock* block, int32_t index, int32_t* value,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Creates an absent record, as the setters below do. */
QELTA_EXPORT void DataBlock_SetInteger_F(FED_DataBlock* block, int32_t index, int32_t value,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The first double field of the record. */
QELTA_EXPORT void DataBlock_GetScalar_F(FED_DataBlock* block, int32_t index, double* value,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_EXPORT void DataBlock_SetScalar_F(FED_DataBlock* block, int32_t index, double value,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_EXPORT void DataBlock_GetVector_F(FED_DataBlock* block, int32_t index, double* values,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_EXPORT void DataBlock_SetVector_F(FED_DataBlock* block, int32_t index, const double* values,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_EXPORT void DataBlock_GetTensor_F(FED_DataBlock* block, int32_t index, double* values,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_EXPORT void DataBlock_SetTensor_F(FED_DataBlock* block, int32_t index, const double* values,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
