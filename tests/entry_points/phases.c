/* The life of a small database through the entry points alone, from C. */

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "FED_DataBlock_F.h"
#include "FED_DataDescriptorList_F.h"
#include "FED_DataDescriptorPattern_F.h"
#include "FED_DataDescriptor_F.h"
#include "FED_DataRecord_F.h"
#include "QeltaFortran_F.h"

/* Fields of a descriptor, and of a record of each type. */
enum { ITERATION = 0, ONF = 1, INCREMENT = 6, LABEL = 8, FIELDS = 14 };
enum { COUNT = 1, MASS, SHARE, NAME, AXIS, STRESS, MEMBERS, PATH, WEIGHTS, PLACE, MOMENT };
static const char* const kFormat = "I|IdfSVTOLDit";

static int32_t status;

static void Fail(const char* what, int line) {
  char text[201] = "", id[13] = "";
  const int32_t textLength = 200, idLength = 12;
  LastError_Text_F(text, &textLength, id, &idLength);
  fprintf(stderr, "phases.c:%d: %s (status %" PRId32 ", last failure %s %s)\n", line, what, status,
          id, text);
  exit(1);
}

#define CHECK(condition) ((condition) ? (void)0 : Fail(#condition, __LINE__))
/* A call whose last argument is &status. */
#define DO(call) (status = 77, call, CHECK(status == 0))

static FED_DataDescriptor* Key(QeltaDescriptorLayout* key) { return (FED_DataDescriptor*)key; }

static QeltaDescriptorLayout MakeKey(int field, int32_t value) {
  QeltaDescriptorLayout key;
  int i;
  memset(&key, 0, sizeof key);
  for (i = 0; i < FIELDS; ++i) key.slots[i] = i == INCREMENT ? 0 : INT32_MIN;
  key.tableId = key.blockId = -1;
  key.slots[field] = value;
  key.mask = 1u << field;
  return key;
}

static FED_DataBlock* FetchLabelled(FED_Database* database, const char* label, const char* format) {
  QeltaDescriptorLayout key = MakeKey(ITERATION, 3);
  const int32_t field = LABEL, length = 24;
  char text[25] = "";
  FED_DataBlock* block = NULL;
  Descriptor_SetString_F(Key(&key), &field, label);
  DO(Database_FetchBlock_Custom_F(database, Key(&key), format, &block, &status));
  memset(&key, 0, sizeof key);
  DataBlock_GetDescriptor_F(block, Key(&key));
  Descriptor_ToString_F(Key(&key), text, &length);
  CHECK(strncmp(text, "ITERATION=3/LABEL=top", 21) == 0);
  Descriptor_GetString_F(Key(&key), &field, text, &length);
  CHECK(strncmp(text, "top", 3) == 0 && text[23] == ' ');
  return block;
}

static void WriteNumbers(FED_DataRecord* record) {
  const double axis[3] = {1, 2, 3}, stress[6] = {1, 2, 3, 4, 5, 6};
  DO(DataRecord_SetTensor_F(record, STRESS, stress, &status));
  DO(DataRecord_SetVector_F(record, AXIS, axis, &status));
  DO(DataRecord_SetInteger_F(record, COUNT, -7, &status));
  DO(DataRecord_SetDouble_F(record, MASS, 2.5, &status));
  DO(DataRecord_SetFloat_F(record, SHARE, 0.25f, &status));
  DO(DataRecord_SetInteger_F(record, PLACE, 12, &status));
  DO(DataRecord_SetDouble_F(record, MOMENT, 0.125, &status));
}

static void CheckNumbers(FED_DataRecord* record) {
  int32_t integer = 0;
  double number = 0, axis[3], stress[6];
  float share = 0;
  const double mass = 2.5;
  DO(DataRecord_GetInteger_F(record, COUNT, &integer, &status));
  CHECK(integer == -7);
  DO(DataRecord_GetDouble_F(record, MASS, &number, &status));
  CHECK(number == mass);
  DO(DataRecord_GetInteger_F(record, MASS, &integer, &status));
  CHECK(memcmp(&integer, &mass, sizeof integer) == 0);
  DO(DataRecord_GetFloat_F(record, SHARE, &share, &status));
  CHECK(share == 0.25f);
  DO(DataRecord_GetVector_F(record, AXIS, axis, &status));
  CHECK(axis[0] == 1 && axis[1] == 2 && axis[2] == 3);
  DO(DataRecord_GetTensor_F(record, STRESS, stress, &status));
  CHECK(stress[0] == 1 && stress[5] == 6);
  DO(DataRecord_GetInteger_F(record, PLACE, &integer, &status));
  CHECK(integer == 12);
  DO(DataRecord_GetDouble_F(record, MOMENT, &number, &status));
  CHECK(number == 0.125);
}

static const int32_t kNumbers[6] = {5, 3, 3, 9, 4, 5}, kMembers[4] = {3, 4, 5, 9};
static const double kDoubles[2] = {0.5, -0.5};
static const int32_t kName = NAME, kSet = MEMBERS, kList = PATH, kWeights = WEIGHTS;

static void WriteContents(FED_DataRecord* record) {
  const int64_t six = 6, two = 2;
  FED_IntArray* ints = NULL;
  FED_DoubleArray* doubles = NULL;
  DO(IntArray_New_F(kNumbers, &six, &ints, &status));
  DO(DoubleArray_New_F(kDoubles, &two, &doubles, &status));
  DO(DataRecord_SetString_F(record, &kName, "  a name ", &status));
  DO(DataRecord_SetIntList_F(record, &kSet, ints, &status));
  DO(DataRecord_SetIntList_F(record, &kList, ints, &status));
  DO(DataRecord_SetDoubleList_F(record, &kWeights, doubles, &status));
  DO(IntArray_Delete_F(&ints, &status));
  DO(DoubleArray_Delete_F(&doubles, &status));
  CHECK(ints == NULL && doubles == NULL);
}

static void CheckContents(FED_DataRecord* record) {
  const int32_t length = 4;
  int32_t count = 0, found[6];
  double doubles[2];
  char text[5] = "";
  DO(DataRecord_GetIntListLen_F(record, MEMBERS, &count, &status));
  CHECK(count == 4);
  DO(DataRecord_GetIntListNative_F(record, MEMBERS, found, &count, &status));
  CHECK(count == 4 && memcmp(found, kMembers, sizeof kMembers) == 0);
  DO(DataRecord_GetIntListLen_F(record, PATH, &count, &status));
  CHECK(count == 6);
  DO(DataRecord_GetIntListNative_F(record, PATH, found, &count, &status));
  CHECK(count == 6 && memcmp(found, kNumbers, sizeof kNumbers) == 0);
  DO(DataRecord_GetDoubleListLen_F(record, WEIGHTS, &count, &status));
  CHECK(count == 2);
  DO(DataRecord_GetDoubleListNative_F(record, WEIGHTS, doubles, &count, &status));
  CHECK(count == 2 && memcmp(doubles, kDoubles, sizeof kDoubles) == 0);
  DO(DataRecord_GetString_F(record, &kName, text, &length, &status));
  CHECK(strcmp(text, "  a ") == 0);
}

static void CheckArrays(FED_DataRecord* record) {
  FED_IntArray *first = NULL, *second = NULL;
  FED_DoubleArray* doubles = NULL;
  DO(DataRecord_GetIntList_F(record, &kSet, &first, &status));
  DO(DataRecord_GetIntList_F(record, &kSet, &second, &status));
  DO(DataRecord_GetDoubleList_F(record, &kWeights, &doubles, &status));
  CHECK(first != NULL && second != NULL && first != second && doubles != NULL);
  DO(IntArray_Delete_F(&first, &status));
  DO(IntArray_Delete_F(&second, &status));
  DO(DoubleArray_Delete_F(&doubles, &status));
}

static void CheckRecords(FED_DataBlock* block) {
  const int32_t index = 41, absent = 40, room = 100;
  int32_t has = 77, maxIndex = 77;
  FED_DataRecord *record = NULL, *copy = NULL;
  DO(DataBlock_GetMaxIndex_F(block, &maxIndex, &status));
  CHECK(maxIndex == -1);
  DO(DataBlock_Reserve_F(block, &room, &status));
  DO(DataBlock_CreateRecord_F(block, &record, &status));
  WriteContents(record);
  WriteNumbers(record); /* tensor before vector: each keeps to its bytes */
  DO(DataBlock_SetRecord_F(block, &index, record, &status));
  DO(DataBlock_DeleteRecord_F(block, &record, &status));
  DO(DataBlock_CreateRecord_F(block, &copy, &status));
  DO(DataBlock_GetRecord_F(block, &index, copy, &status));
  CheckNumbers(copy);
  CheckContents(copy);
  CheckArrays(copy);
  DO(DataBlock_DeleteRecord_F(block, &copy, &status));
  DO(DataBlock_GetMaxIndex_F(block, &maxIndex, &status));
  CHECK(maxIndex == index);
  DO(DataBlock_HasRecord_F(block, &index, &has, &status));
  CHECK(has == 1);
  DO(DataBlock_HasRecord_F(block, &absent, &has, &status));
  CHECK(has == 0);
}

static void CheckBlockValues(FED_DataBlock* block) {
  const double tensor[6] = {1, 2, 3, 4, 5, 6}, vector[3] = {7, 8, 9};
  const int32_t field = 2, first = 3, count = 3;
  double numbers[6] = {0};
  int32_t integer = 0;
  DO(DataBlock_SetInteger_F(block, 3, -5, &status));
  DO(DataBlock_GetInteger_F(block, 3, &integer, &status));
  CHECK(integer == -5);
  DO(DataBlock_SetVector_F(block, 3, vector, &status));
  DO(DataBlock_GetVector_F(block, 3, numbers, &status));
  CHECK(numbers[0] == 7 && numbers[2] == 9);
  DO(DataBlock_SetTensor_F(block, 3, tensor, &status));
  DO(DataBlock_GetTensor_F(block, 3, numbers, &status));
  CHECK(numbers[0] == 1 && numbers[5] == 6);
  DO(Block_WriteColumn_F(block, &field, &first, &count, vector, &status));
  DO(DataBlock_SetScalar_F(block, 4, 0.5, &status));
  DO(DataBlock_GetScalar_F(block, 5, numbers, &status));
  CHECK(numbers[0] == 9);
  DO(Block_ReadColumn_F(block, &field, &first, &count, numbers, &status));
  CHECK(numbers[0] == 7 && numbers[1] == 0.5 && numbers[2] == 9);
}

static void CheckSearch(FED_Database* database) {
  QeltaDescriptorLayout key = MakeKey(ONF, 2);
  QeltaPatternLayout pattern;
  QeltaDescriptorListLayout list = {0, 0, NULL};
  FED_DataDescriptorPattern* const asPattern = (FED_DataDescriptorPattern*)&pattern;
  FED_DataDescriptorList* const asList = (FED_DataDescriptorList*)&list;
  const int32_t label = LABEL, length = 3, room = 43;
  const uint64_t two = 2;
  char text[44] = "";
  FED_DataBlock *block = NULL, *former = NULL;
  int i;
  for (i = 0; i < FIELDS; ++i) pattern.entries[i].mode = 1, pattern.entries[i].value = 0;
  key.mask |= 1u << ITERATION;
  for (key.slots[ITERATION] = 1; key.slots[ITERATION] <= 5; ++key.slots[ITERATION]) {
    DO(Database_FetchBlock_F(database, Key(&key), &block, &status));
    CHECK(block != former);
    former = block;
  }
  pattern.entries[ITERATION].mode = 4;
  pattern.entries[ONF].mode = 2;
  DataDescriptorPattern_ToString_F(asPattern, text, &room);
  CHECK(strcmp(text, "ITERATION:MATCH_HIGHEST / ONF:MATCH_PRESENT") == 0);
  DO(Database_FindBlocks_F(database, asPattern, asList, &status));
  CHECK(list.count == 1 && list.data[0].slots[ITERATION] == 5);
  DataDescriptorList_Resize_F(asList, &two);
  CHECK(list.count == 2 && list.capacity == 2 && list.data[1].mask == 0);
  DataDescriptorPattern_SetMatchExact_Str_F(asPattern, &label, "topmost", &length);
  pattern.entries[ONF].mode = 1;
  DO(Database_FindBlocks_F(database, asPattern, asList, &status));
  CHECK(list.count == 1 && list.data[0].slots[ITERATION] == 3);
  DataDescriptorList_Deallocate_F(asList);
  CHECK(list.count == 0 && list.capacity == 0 && list.data == NULL);
}

static void CheckDeletion(FED_Database* database) {
  QeltaDescriptorLayout key = MakeKey(ONF, 2), alias = MakeKey(ONF, 5);
  int32_t has = 77, created = 77;
  key.slots[ITERATION] = 5;
  key.mask |= 1u << ITERATION;
  DO(Database_CreateAlias_F(database, Key(&key), Key(&alias), &created, &status));
  CHECK(created == 1);
  DO(Database_HasBlock_F(database, Key(&alias), &has, &status));
  CHECK(has == 1);
  DO(Database_DeleteBlock_F(database, Key(&key), &status));
  DO(Database_HasBlock_F(database, Key(&alias), &has, &status));
  CHECK(has == 0);
}

int main(void) {
  const int32_t mode = 2;
  const int64_t cacheSize = 0;
  FED_Database* database = NULL;
  CHECK(sizeof(QeltaDescriptorLayout) == 80 && sizeof(QeltaPatternLayout) == 112 &&
        sizeof(QeltaDescriptorListLayout) == 24);
  DO(Database_Open_F("memory", "phases", &mode, &cacheSize, &database, &status));
  CheckRecords(FetchLabelled(database, "  top \n", kFormat));
  CheckBlockValues(FetchLabelled(database, "top values", "I|idVT"));
  CheckSearch(database);
  CheckDeletion(database);
  DO(Database_Save_F(database, &status));
  DO(Database_Close_F(&database, &status));
  CHECK(database == NULL);
  return 0;
}
