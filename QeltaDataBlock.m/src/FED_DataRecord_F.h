#pragma once

#include "FED_Types_F.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Typed access to the fields, counted from 1, of a cursor that DataBlock_CreateRecord_F made. The
 * field's type is not looked at. */

/* The 4 bytes of the field. */
QELTA_EXPORT void DataRecord_GetInteger_F(FED_DataRecord* record, int32_t field, int32_t* value,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_EXPORT void DataRecord_SetInteger_F(FED_DataRecord* record, int32_t field, int32_t value,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The 4 bytes of the field. */
QELTA_EXPORT void DataRecord_GetFloat_F(FED_DataRecord* record, int32_t field, float* value,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_EXPORT void DataRecord_SetFloat_F(FED_DataRecord* record, int32_t field, float value,
                                        int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The 8 bytes of the field. */
QELTA_EXPORT void DataRecord_GetDouble_F(FED_DataRecord* record, int32_t field, double* value,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_EXPORT void DataRecord_SetDouble_F(FED_DataRecord* record, int32_t field, double value,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_EXPORT void DataRecord_GetVector_F(FED_DataRecord* record, int32_t field, double* values,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_EXPORT void DataRecord_SetVector_F(FED_DataRecord* record, int32_t field,
                                         const double* values,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_EXPORT void DataRecord_GetTensor_F(FED_DataRecord* record, int32_t field, double* values,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_EXPORT void DataRecord_SetTensor_F(FED_DataRecord* record, int32_t field,
                                         const double* values,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many integers of a list or set field there are. */
QELTA_EXPORT void DataRecord_GetIntListLen_F(FED_DataRecord* record, int32_t field, int32_t* length,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Writes the integers of a list or set field; `values` has room for GetIntListLen of them. */
QELTA_EXPORT void DataRecord_GetIntListNative_F(FED_DataRecord* record, int32_t field,
                                                int32_t* values, int32_t* count,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A new array with the integers of a list or set field; release it with IntArray_Delete_F. */
QELTA_EXPORT void DataRecord_GetIntList_F(FED_DataRecord* record, const int32_t* field,
                                          FED_IntArray** list,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Stores what the array holds; the array stays the caller's. */
QELTA_EXPORT void DataRecord_SetIntList_F(FED_DataRecord* record, const int32_t* field,
                                          FED_IntArray* list, int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many doubles of a list field there are. */
QELTA_EXPORT void DataRecord_GetDoubleListLen_F(FED_DataRecord* record, int32_t field,
                                                int32_t* length,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Writes the doubles of a list field; `values` has room for GetDoubleListLen of them. */
QELTA_EXPORT void DataRecord_GetDoubleListNative_F(FED_DataRecord* record, int32_t field,
                                                   double* values, int32_t* count,
                                                   int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A new array with the doubles of a list field; release it with DoubleArray_Delete_F. */
QELTA_EXPORT void DataRecord_GetDoubleList_F(FED_DataRecord* record, const int32_t* field,
                                             FED_DoubleArray** list,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Stores what the array holds; the array stays the caller's. */
QELTA_EXPORT void DataRecord_SetDoubleList_F(FED_DataRecord* record, const int32_t* field,
                                             FED_DoubleArray* list,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The text of a string field. */
QELTA_EXPORT void DataRecord_GetString_F(FED_DataRecord* record, const int32_t* field, char* buffer,
                                         const int32_t* bufferLength,
                                         int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* `text` ends with a zero; blanks stay. */
QELTA_EXPORT void DataRecord_SetString_F(FED_DataRecord* record, const int32_t* field,
                                         const char* text, int32_t* status) QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
