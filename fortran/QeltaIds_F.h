#pragma once

#include "QeltaFortran_F.h"

/* Companion entry points for external ids and names: the id maps of a database, views that read and
 * write records by id and name, and copies between databases that number differently. Conventions
 * as in QeltaFortran_F.h. An id or name that a map does not know fails where it is read, and is
 * registered where it is written, as the key of a record or as a reference. */

#ifdef __cplusplus
class FED_IdDataBlock;
class FED_IdDataRecord;
extern "C" {
#else
typedef struct FED_IdDataBlock FED_IdDataBlock;
typedef struct FED_IdDataRecord FED_IdDataRecord;
#endif

/* Registers `count` ids at the indices from `*firstIndex` on, in the database's map of an id type
 * (0 node, 1 element, ...). The quickest way to fill a map. A contradiction to what is registered
 * fails; what precedes it stays. */
QELTA_FORTRAN_EXPORT void Database_AddIds_F(FED_Database* database, const int32_t* idType,
                                            const int64_t* firstIndex, const int32_t* ids,
                                            const int64_t* count,
                                            int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Registers one entity of a named id type: its index, id and name. */
QELTA_FORTRAN_EXPORT void Database_AddName_F(FED_Database* database, const int32_t* idType,
                                             const int64_t* index, const int32_t* id,
                                             const char* name,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Registers `count` entities with their names, each `*nameLength` characters of which trailing
 * blanks are dropped, one behind the other, at the indices from `*firstIndex` on. */
QELTA_FORTRAN_EXPORT void Database_AddNames_F(FED_Database* database, const int32_t* idType,
                                              const int64_t* firstIndex, const int32_t* ids,
                                              const char* names, const int32_t* nameLength,
                                              const int64_t* count,
                                              int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The index of a known id. */
QELTA_FORTRAN_EXPORT void Database_IndexOfId_F(FED_Database* database, const int32_t* idType,
                                               const int32_t* id, int64_t* index,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The id at an index. */
QELTA_FORTRAN_EXPORT void Database_IdOfIndex_F(FED_Database* database, const int32_t* idType,
                                               const int64_t* index, int32_t* id,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The index of a known name. */
QELTA_FORTRAN_EXPORT void Database_IndexOfName_F(FED_Database* database, const int32_t* idType,
                                                 const char* name, int64_t* index,
                                                 int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The name at an index. */
QELTA_FORTRAN_EXPORT void Database_NameOfIndex_F(FED_Database* database, const int32_t* idType,
                                                 const int64_t* index, char* buffer,
                                                 const int32_t* bufferLength,
                                                 int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many characters the name at an index has. */
QELTA_FORTRAN_EXPORT void Database_NameLenOfIndex_F(FED_Database* database, const int32_t* idType,
                                                    const int64_t* index, int32_t* length,
                                                    int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The highest index of a map; -1 when it is empty. */
QELTA_FORTRAN_EXPORT void Database_MaxIndexOfIds_F(FED_Database* database, const int32_t* idType,
                                                   int64_t* maxIndex,
                                                   int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Copies the blocks that the pattern selects from one database to another, which may number
 * differently: records travel by id, or by name where their id type has names; references likewise;
 * custom blocks index for index. Blocks without records are copied when `*copyEmpty` is not 0.
 * `copied` is the number of blocks; after a failure, what was copied stays. */
QELTA_FORTRAN_EXPORT void Database_CopyBlocks_F(FED_Database* source, FED_Database* target,
                                                const FED_DataDescriptorPattern* pattern,
                                                const int32_t* copyEmpty, int64_t* copied,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A view that reads and writes the records of a block by id and name. Release it, after its records
 * and before its block goes, with IdView_Delete_F. */
QELTA_FORTRAN_EXPORT void IdView_New_F(FED_Database* database, FED_DataBlock* block,
                                       FED_IdDataBlock** view,
                                       int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Releases a view and sets the handle variable to 0; does nothing when it holds 0. */
QELTA_FORTRAN_EXPORT void IdView_Delete_F(FED_IdDataBlock** view,
                                          int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The id types of the records and their fields: the first `room` of them, and how many there are,
 * one more than fields. Type 15 is no reference: what is stored is a plain number. */
QELTA_FORTRAN_EXPORT void IdView_GetIdTypes_F(FED_IdDataBlock* view, const int32_t* room,
                                              int32_t* types, int32_t* count,
                                              int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* 1 when the id is known and has a record, else 0. */
QELTA_FORTRAN_EXPORT void IdView_HasRecord_F(FED_IdDataBlock* view, const int32_t* id, int32_t* has,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_HasRecord_Name_F(FED_IdDataBlock* view, const char* name,
                                                  int32_t* has,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* One double. */
QELTA_FORTRAN_EXPORT void IdView_GetScalar_F(FED_IdDataBlock* view, const int32_t* id,
                                             double* value, int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetScalar_F(FED_IdDataBlock* view, const int32_t* id,
                                             const double* value,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_FORTRAN_EXPORT void IdView_GetVector_F(FED_IdDataBlock* view, const int32_t* id,
                                             double* values, int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetVector_F(FED_IdDataBlock* view, const int32_t* id,
                                             const double* values,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_FORTRAN_EXPORT void IdView_GetTensor_F(FED_IdDataBlock* view, const int32_t* id,
                                             double* values, int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetTensor_F(FED_IdDataBlock* view, const int32_t* id,
                                             const double* values,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* The same by name. */
QELTA_FORTRAN_EXPORT void IdView_GetScalar_Name_F(FED_IdDataBlock* view, const char* name,
                                                  double* value,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetScalar_Name_F(FED_IdDataBlock* view, const char* name,
                                                  const double* value,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_GetVector_Name_F(FED_IdDataBlock* view, const char* name,
                                                  double* values,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetVector_Name_F(FED_IdDataBlock* view, const char* name,
                                                  const double* values,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_GetTensor_Name_F(FED_IdDataBlock* view, const char* name,
                                                  double* values,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetTensor_Name_F(FED_IdDataBlock* view, const char* name,
                                                  const double* values,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Makes a record cursor of the view. */
QELTA_FORTRAN_EXPORT void IdView_CreateRecord_F(FED_IdDataBlock* view, FED_IdDataRecord** record,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Destroys the cursor and sets the handle variable to 0; does nothing when it holds 0. */
QELTA_FORTRAN_EXPORT void IdView_DeleteRecord_F(FED_IdDataBlock* view, FED_IdDataRecord** record,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Fills the cursor with the record of an id, or of a name. */
QELTA_FORTRAN_EXPORT void IdView_GetRecord_F(FED_IdDataBlock* view, const int32_t* id,
                                             FED_IdDataRecord* record,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_GetRecord_Name_F(FED_IdDataBlock* view, const char* name,
                                                  FED_IdDataRecord* record,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Stores the cursor as the record of an id, or of a name. */
QELTA_FORTRAN_EXPORT void IdView_SetRecord_F(FED_IdDataBlock* view, const int32_t* id,
                                             FED_IdDataRecord* record,
                                             int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdView_SetRecord_Name_F(FED_IdDataBlock* view, const char* name,
                                                  FED_IdDataRecord* record,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A number, or the id that an id reference stands for. Fields count from 1. */
QELTA_FORTRAN_EXPORT void IdRecord_GetInteger_F(FED_IdDataRecord* record, const int32_t* field,
                                                int32_t* value,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetInteger_F(FED_IdDataRecord* record, const int32_t* field,
                                                const int32_t* value,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_GetDouble_F(FED_IdDataRecord* record, const int32_t* field,
                                               double* value, int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetDouble_F(FED_IdDataRecord* record, const int32_t* field,
                                               const double* value,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Three doubles. */
QELTA_FORTRAN_EXPORT void IdRecord_GetVector_F(FED_IdDataRecord* record, const int32_t* field,
                                               double* values,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetVector_F(FED_IdDataRecord* record, const int32_t* field,
                                               const double* values,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Six doubles: xx, yy, zz, xy, yz, zx. */
QELTA_FORTRAN_EXPORT void IdRecord_GetTensor_F(FED_IdDataRecord* record, const int32_t* field,
                                               double* values,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetTensor_F(FED_IdDataRecord* record, const int32_t* field,
                                               const double* values,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A text, or the name that a name reference stands for. */
QELTA_FORTRAN_EXPORT void IdRecord_GetString_F(FED_IdDataRecord* record, const int32_t* field,
                                               char* buffer, const int32_t* bufferLength,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* How many characters that has. */
QELTA_FORTRAN_EXPORT void IdRecord_GetStringLen_F(FED_IdDataRecord* record, const int32_t* field,
                                                  int32_t* length,
                                                  int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetString_F(FED_IdDataRecord* record, const int32_t* field,
                                               const char* text,
                                               int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A new array, ids where the field refers to entities; release it with IntArray_Delete_F. */
QELTA_FORTRAN_EXPORT void IdRecord_GetIntList_F(FED_IdDataRecord* record, const int32_t* field,
                                                FED_IntArray** list,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetIntList_F(FED_IdDataRecord* record, const int32_t* field,
                                                FED_IntArray* list,
                                                int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* A new array; release it with DoubleArray_Delete_F. */
QELTA_FORTRAN_EXPORT void IdRecord_GetDoubleList_F(FED_IdDataRecord* record, const int32_t* field,
                                                   FED_DoubleArray** list,
                                                   int32_t* status) QELTA_ENTRY_NOEXCEPT;

QELTA_FORTRAN_EXPORT void IdRecord_SetDoubleList_F(FED_IdDataRecord* record, const int32_t* field,
                                                   FED_DoubleArray* list,
                                                   int32_t* status) QELTA_ENTRY_NOEXCEPT;

/* Stores references to `count` known names, each `*nameLength` characters of which trailing blanks
 * are dropped, one behind the other. */
QELTA_FORTRAN_EXPORT void IdRecord_SetStringList_F(FED_IdDataRecord* record, const int32_t* field,
                                                   const char* names, const int32_t* nameLength,
                                                   const int64_t* count,
                                                   int32_t* status) QELTA_ENTRY_NOEXCEPT;

#ifdef __cplusplus
}
#endif
