#include "QeltaFortran_F.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "FED_DataDescriptorList.h"
#include "FED_Database.h"
#include "FED_Failure.h"
#include "QeltaBulkAccess.h"
#include "QeltaEntryPoint.h"
#include "QeltaPatternText.h"
#include "QeltaStringUtil.h"
#include "StorageKinds.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaFortran|QeltaFortran_F";

FED_DatabaseDefs::AccessMode RequireMode(std::int32_t mode) {
  if (mode < FED_DatabaseDefs::READ_ONLY || mode > FED_DatabaseDefs::CREATE) {
    FED_Failure::Throw("400000000003", kLocation,
                       "There is no access mode %d; 0 reads only, 1 reads and writes, 2 creates.",
                       mode);
  }
  return static_cast<FED_DatabaseDefs::AccessMode>(mode);
}

std::wstring RequireName(const char* name) {
  std::wstring wide;
  if (!QeltaStringUtil::ToWide(name, wide)) {
    FED_Failure::Throw("400000000006", kLocation,
                       "The name '%s' of the database is not in UTF-8; convert it.", name);
  }
  return wide;
}

// Columns travel as bare values, so what a block keeps under handles cannot.
std::size_t RequireColumn(const FED_DataBlock& block, std::int32_t field) {
  const std::vector<BlockDataType>& types = block.GetDataTypes();
  const std::size_t number = qelta::Widen(field);
  if (number < 1 || number > types.size()) return number;  // reported by the access itself
  const BlockDataType type = types[number - 1];
  if (type == BLOCK_DATA_STRING || type == BLOCK_DATA_INT_SET || type == BLOCK_DATA_INT_LIST ||
      type == BLOCK_DATA_DOUBLE_LIST) {
    FED_Failure::Throw("400000000004", kLocation,
                       "Field %d of block %s holds strings, lists or sets (format '%s'), which "
                       "have no columns; use a record cursor.",
                       field, block.GetDescriptor().ToString().c_str(), block.GetFormat().c_str());
  }
  return number;
}

std::size_t RequireCount(std::int32_t count) {
  if (count < 0) {
    FED_Failure::Throw("400000000005", kLocation, "A column cannot have %d records.", count);
  }
  return static_cast<std::size_t>(count);
}

void Fill(FED_DataDescriptorList& list, const std::vector<FED_DataDescriptor>& keys) {
  list.Resize(keys.size());
  std::transform(keys.begin(), keys.end(), list.GetData(),
                 [](const FED_DataDescriptor& key) { return key.Duplicate(); });
}

template <class Array, class Value>
void MakeArray(const Value* values, std::int64_t count, Array** array) {
  auto made = std::make_unique<Array>();
  made->Resize(static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0)));
  if (made->count > 0) {
    std::memcpy(made->data, values, static_cast<std::size_t>(made->count) * sizeof(Value));
  }
  *array = made.release();
}

template <class Object>
void Release(Object** handle) {
  delete *handle;
  *handle = nullptr;
}

}  // namespace

void Database_Open_F(const char* kind, const char* name, const std::int32_t* mode,
                     const std::int64_t* cacheSize, FED_Database** database,
                     std::int32_t* status) noexcept {
  const auto work = [&] {
    std::unique_ptr<FED_Database> made = qelta::MakeDatabase(kind);
    const auto bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(*cacheSize, 0));
    made->InitDb(FED_IdMapsPool(), RequireMode(*mode), bytes, RequireName(name));
    *database = made.release();
  };
  qelta::RunWithStatus(kLocation, status, work, kind, name, mode, cacheSize, database);
}

void Database_Close_F(FED_Database** database, std::int32_t* status) noexcept {
  const auto work = [&] {
    if (*database != nullptr) (*database)->CloseDb();
    Release(database);
  };
  qelta::RunWithStatus(kLocation, status, work, database);
}

void Database_Save_F(FED_Database* database, std::int32_t* status) noexcept {
  const auto work = [&] { qelta::SaveDatabase(*database); };
  qelta::RunWithStatus(kLocation, status, work, database);
}

void Database_FetchBlock_F(FED_Database* database, const FED_DataDescriptor* descriptor,
                           FED_DataBlock** block, std::int32_t* status) noexcept {
  const auto work = [&] {
    *block = &database->FetchDataBlock(descriptor->Duplicate(), std::size_t{0});
  };
  qelta::RunWithStatus(kLocation, status, work, database, descriptor, block);
}

void Database_FetchBlock_Custom_F(FED_Database* database, const FED_DataDescriptor* descriptor,
                                  const char* format, FED_DataBlock** block,
                                  std::int32_t* status) noexcept {
  const auto work = [&] {
    *block = &database->FetchDataBlock(descriptor->Duplicate(), 0, 0, format);
  };
  qelta::RunWithStatus(kLocation, status, work, database, descriptor, format, block);
}

void Database_HasBlock_F(FED_Database* database, const FED_DataDescriptor* descriptor,
                         std::int32_t* has, std::int32_t* status) noexcept {
  const auto work = [&] { *has = database->HasBlock(descriptor->Duplicate()) ? 1 : 0; };
  qelta::RunWithStatus(kLocation, status, work, database, descriptor, has);
}

void Database_DeleteBlock_F(FED_Database* database, const FED_DataDescriptor* descriptor,
                            std::int32_t* status) noexcept {
  const auto work = [&] { database->DeleteDataBlock(descriptor->Duplicate()); };
  qelta::RunWithStatus(kLocation, status, work, database, descriptor);
}

void Database_DeleteBlocks_F(FED_Database* database, const FED_DataDescriptorPattern* pattern,
                             std::int32_t* status) noexcept {
  const auto work = [&] { database->DeleteDataBlocks(*pattern); };
  qelta::RunWithStatus(kLocation, status, work, database, pattern);
}

void Database_FindBlocks_F(FED_Database* database, const FED_DataDescriptorPattern* pattern,
                           FED_DataDescriptorList* list, std::int32_t* status) noexcept {
  const auto work = [&] { Fill(*list, database->FindBlocks(*pattern)); };
  qelta::RunWithStatus(kLocation, status, work, database, pattern, list);
}

void Database_SelectBlocks_F(FED_Database* database, const char* text, FED_DataDescriptorList* list,
                             std::int32_t* status) noexcept {
  const auto work = [&] {
    qelta::QeltaPatternText pattern;
    if (*text != '\0') pattern.Add(text);
    Fill(*list, pattern.Select(*database));
  };
  qelta::RunWithStatus(kLocation, status, work, database, text, list);
}

void Database_CreateAlias_F(FED_Database* database, const FED_DataDescriptor* existing,
                            const FED_DataDescriptor* alias, std::int32_t* created,
                            std::int32_t* status) noexcept {
  const auto work = [&] {
    FED_DataDescriptor name = alias->Duplicate();
    *created = database->CreateDataBlockAlias(existing->Duplicate(), name) ? 1 : 0;
  };
  qelta::RunWithStatus(kLocation, status, work, database, existing, alias, created);
}

void Block_ReadColumn_F(FED_DataBlock* block, const std::int32_t* field, const std::int32_t* first,
                        const std::int32_t* count, void* values, std::int32_t* status) noexcept {
  const auto work = [&] {
    QeltaBulkAccess::ReadColumn(*block, RequireColumn(*block, *field), qelta::Widen(*first),
                                RequireCount(*count), values);
  };
  qelta::RunWithStatus(kLocation, status, work, block, field, first, count, values);
}

void Block_WriteColumn_F(FED_DataBlock* block, const std::int32_t* field, const std::int32_t* first,
                         const std::int32_t* count, const void* values,
                         std::int32_t* status) noexcept {
  const auto work = [&] {
    QeltaBulkAccess::WriteColumn(*block, RequireColumn(*block, *field), qelta::Widen(*first),
                                 RequireCount(*count), values);
  };
  qelta::RunWithStatus(kLocation, status, work, block, field, first, count, values);
}

void Block_GetFieldTypes_F(FED_DataBlock* block, const std::int32_t* room, std::int32_t* types,
                           std::int32_t* count, std::int32_t* status) noexcept {
  const auto work = [&] {
    const std::vector<BlockDataType>& all = block->GetDataTypes();
    const auto fitting = static_cast<std::size_t>(std::max(*room, 0));
    std::copy_n(all.begin(), std::min(fitting, all.size()), types);
    *count = static_cast<std::int32_t>(all.size());
  };
  qelta::RunWithStatus(kLocation, status, work, block, room, types, count);
}

void Record_GetStringLen_F(FED_DataRecord* record, const std::int32_t* field, std::int32_t* length,
                           std::int32_t* status) noexcept {
  const auto work = [&] {
    *length = static_cast<std::int32_t>(record->GetString(qelta::Widen(*field)).size());
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, length);
}

void Descriptor_GetStringLen_F(const FED_DataDescriptor* descriptor, const std::int32_t* field,
                               std::int32_t* length, std::int32_t* status) noexcept {
  const auto work = [&] {
    const auto index = static_cast<FED_DataDescriptor::ResultIndex>(*field);
    *length = static_cast<std::int32_t>(descriptor->GetString(index).size());
  };
  qelta::RunWithStatus(kLocation, status, work, descriptor, field, length);
}

void IntArray_New_F(const std::int32_t* values, const std::int64_t* count, FED_IntArray** array,
                    std::int32_t* status) noexcept {
  const auto work = [&] { MakeArray(values, *count, array); };
  qelta::RunWithStatus(kLocation, status, work, values, count, array);
}

void IntArray_Delete_F(FED_IntArray** array, std::int32_t* status) noexcept {
  qelta::RunWithStatus(
      kLocation, status, [&] { Release(array); }, array);
}

void DoubleArray_New_F(const double* values, const std::int64_t* count, FED_DoubleArray** array,
                       std::int32_t* status) noexcept {
  const auto work = [&] { MakeArray(values, *count, array); };
  qelta::RunWithStatus(kLocation, status, work, values, count, array);
}

void DoubleArray_Delete_F(FED_DoubleArray** array, std::int32_t* status) noexcept {
  qelta::RunWithStatus(
      kLocation, status, [&] { Release(array); }, array);
}

void LastError_Text_F(char* text, const std::int32_t* textLength, char* messageId,
                      const std::int32_t* messageIdLength) noexcept {
  qelta::RequireArguments(kLocation, text, textLength, messageId, messageIdLength);
  const auto copy = [](const char* from, char* to, std::int32_t length) {
    QeltaStringUtil::copy_to_fstr_trunc(from, std::strlen(from), to, length);
  };
  copy(QeltaLastFailure::Text(), text, *textLength);
  copy(QeltaLastFailure::MessageId(), messageId, *messageIdLength);
}
