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

/* Fields of a descriptor and of a record. */
enum { ITERATION = 0, ONF = 1, INCREMENT = 6, LABEL = 8, FIELDS = 14 };
enum { MASS = 1, NAME, MEMBERS, STRESS };
static const char* const kFormat = "I|dSOT";

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

static FED_DataBlock* FetchLabelled(FED_Database* database) {
  QeltaDescriptorLayout key = MakeKey(ITERATION, 3);
  const int32_t field = LABEL, length = 24;
  char text[25] = "";
  FED_DataBlock* block = NULL;
  Descriptor_SetString_F(Key(&key), &field, "  top \n");
  DO(Database_FetchBlock_Custom_F(database, Key(&key), kFormat, &block, &status));
  memset(&key, 0, sizeof key);
  DataBlock_GetDescriptor_F(block, Key(&key));
  Descriptor_ToString_F(Key(&key), text, &length);
  CHECK(strncmp(text, "ITERATION=3/LABEL=top", 21) == 0);
  Descriptor_GetString_F(Key(&key), &field, text, &length);
  CHECK(strncmp(text, "top", 3) == 0 && text[23] == ' ');
  return block;
}

static const double kStress[6] = {1, 2, 3, 4, 5, 6};
static const int32_t kName = NAME, kMembers = MEMBERS;

static void WriteContents(FED_DataRecord* record) {
  const int32_t numbers[6] = {5, 3, 3, 9, 4, 5};
  const int64_t six = 6;
  FED_IntArray* ints = NULL;
  DO(DataRecord_SetTensor_F(record, STRESS, kStress, &status));
  DO(DataRecord_SetDouble_F(record, MASS, 2.5, &status));
  DO(DataRecord_SetString_F(record, &kName, "  a name ", &status));
  DO(IntArray_New_F(numbers, &six, &ints, &status));
  DO(DataRecord_SetIntList_F(record, &kMembers, ints, &status));
  DO(IntArray_Delete_F(&ints, &status));
  CHECK(ints == NULL);
}

static void CheckContents(FED_DataRecord* record) {
  const int32_t length = 4, members[4] = {3, 4, 5, 9};
  int32_t count = 0, found[4];
  double mass = 0, stress[6];
  char text[5] = "";
  DO(DataRecord_GetTensor_F(record, STRESS, stress, &status));
  CHECK(memcmp(stress, kStress, sizeof stress) == 0);
  DO(DataRecord_GetDouble_F(record, MASS, &mass, &status));
  CHECK(mass == 2.5);
  DO(DataRecord_GetIntListLen_F(record, MEMBERS, &count, &status));
  CHECK(count == 4);
  DO(DataRecord_GetIntListNative_F(record, MEMBERS, found, &count, &status));
  CHECK(count == 4 && memcmp(found, members, sizeof members) == 0);
  DO(DataRecord_GetString_F(record, &kName, text, &length, &status));
  CHECK(strcmp(text, "  a ") == 0);
}

static void CheckRecords(FED_DataBlock* block) {
  const int32_t index = 41, absent = 40, room = 100, field = MASS, one = 1;
  const double heavier = 7.5;
  double mass = 0;
  int32_t has = 77, maxIndex = 77;
  FED_DataRecord *record = NULL, *copy = NULL;
  DO(DataBlock_Reserve_F(block, &room, &status));
  DO(DataBlock_CreateRecord_F(block, &record, &status));
  WriteContents(record);
  DO(DataBlock_SetRecord_F(block, &index, record, &status));
  DO(DataBlock_DeleteRecord_F(block, &record, &status));
  DO(DataBlock_CreateRecord_F(block, &copy, &status));
  DO(DataBlock_GetRecord_F(block, &index, copy, &status));
  CheckContents(copy);
  DO(DataBlock_DeleteRecord_F(block, &copy, &status));
  DO(DataBlock_GetMaxIndex_F(block, &maxIndex, &status));
  CHECK(maxIndex == index);
  DO(DataBlock_HasRecord_F(block, &index, &has, &status));
  CHECK(has == 1);
  DO(DataBlock_HasRecord_F(block, &absent, &has, &status));
  CHECK(has == 0);
  DO(Block_WriteColumn_F(block, &field, &index, &one, &heavier, &status));
  DO(DataBlock_GetScalar_F(block, index, &mass, &status));
  CHECK(mass == heavier);
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

int main(void) {
  const int32_t mode = 2;
  const int64_t cacheSize = 0;
  FED_Database* database = NULL;
  CHECK(sizeof(QeltaDescriptorLayout) == 80 && sizeof(QeltaPatternLayout) == 112 &&
        sizeof(QeltaDescriptorListLayout) == 24);
  DO(Database_Open_F("memory", "phases", &mode, &cacheSize, &database, &status));
  CheckRecords(FetchLabelled(database));
  CheckSearch(database);
  DO(Database_Save_F(database, &status));
  DO(Database_Close_F(&database, &status));
  CHECK(database == NULL);
  return 0;
}
