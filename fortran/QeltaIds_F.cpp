#include "QeltaIds_F.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "BlockMetaData.h"
#include "FED_Database.h"
#include "FED_Failure.h"
#include "FED_IdDataBlock.h"
#include "FED_MemoryIdMap.h"
#include "QeltaDatabaseUtils.h"
#include "QeltaEntryPoint.h"
#include "QeltaStringUtil.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaFortran|QeltaIds_F";

FED_IdMap& MapOf(FED_Database& database, std::int32_t idType) {
  return database.GetIdMapsPool().GetMap(static_cast<FED_IdType>(idType));
}

FED_MemoryIdMap& MapToFill(FED_Database& database, std::int32_t idType) {
  if (auto* const map = dynamic_cast<FED_MemoryIdMap*>(&MapOf(database, idType))) return *map;
  FED_Failure::Throw("400000000011", kLocation,
                     "The map of id type %d is one of the program's own; fill it there.", idType);
}

std::size_t CountOf(std::int64_t count) { return count < 0 ? 0 : static_cast<std::size_t>(count); }

std::size_t FieldOf(std::int32_t field) { return qelta::Widen(field); }

void CopyText(const std::string& text, char* buffer, std::int32_t bufferLength) {
  QeltaStringUtil::copy_to_fstr_trunc(text.c_str(), text.size(), buffer, bufferLength);
}

std::string NameAt(FED_Database& database, std::int32_t idType, std::int64_t index) {
  std::string name;
  MapOf(database, idType).NameOfIndex(index, name);
  return name;
}

std::vector<std::string> SplitNames(const char* names, std::int32_t nameLength, std::size_t count) {
  const auto length = static_cast<std::size_t>(nameLength < 0 ? 0 : nameLength);
  std::vector<std::string> split;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string name(names + i * length, length);
    split.push_back(name.substr(0, name.find_last_not_of(' ') + 1));
  }
  return split;
}

}  // namespace

void Database_AddIds_F(FED_Database* database, const std::int32_t* idType,
                       const std::int64_t* firstIndex, const std::int32_t* ids,
                       const std::int64_t* count, std::int32_t* status) noexcept {
  const auto work = [&] { MapToFill(*database, *idType).Add(ids, CountOf(*count), *firstIndex); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, firstIndex, ids, count);
}

void Database_AddName_F(FED_Database* database, const std::int32_t* idType,
                        const std::int64_t* index, const std::int32_t* id, const char* name,
                        std::int32_t* status) noexcept {
  const auto work = [&] { MapToFill(*database, *idType).Add(*index, *id, name); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, index, id, name);
}

void Database_AddNames_F(FED_Database* database, const std::int32_t* idType,
                         const std::int64_t* firstIndex, const std::int32_t* ids, const char* names,
                         const std::int32_t* nameLength, const std::int64_t* count,
                         std::int32_t* status) noexcept {
  const auto work = [&] {
    const std::vector<std::string> split = SplitNames(names, *nameLength, CountOf(*count));
    MapToFill(*database, *idType).Add(ids, split.data(), split.size(), *firstIndex);
  };
  qelta::RunWithStatus(kLocation, status, work, database, idType, firstIndex, ids, names,
                       nameLength, count);
}

void Database_IndexOfId_F(FED_Database* database, const std::int32_t* idType,
                          const std::int32_t* id, std::int64_t* index,
                          std::int32_t* status) noexcept {
  const auto work = [&] { *index = MapOf(*database, *idType).IndexOfId(*id); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, id, index);
}

void Database_IdOfIndex_F(FED_Database* database, const std::int32_t* idType,
                          const std::int64_t* index, std::int32_t* id,
                          std::int32_t* status) noexcept {
  const auto work = [&] { *id = MapOf(*database, *idType).IdOfIndex(*index); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, index, id);
}

void Database_IndexOfName_F(FED_Database* database, const std::int32_t* idType, const char* name,
                            std::int64_t* index, std::int32_t* status) noexcept {
  const auto work = [&] { *index = MapOf(*database, *idType).IndexOfName(name); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, name, index);
}

void Database_NameOfIndex_F(FED_Database* database, const std::int32_t* idType,
                            const std::int64_t* index, char* buffer,
                            const std::int32_t* bufferLength, std::int32_t* status) noexcept {
  const auto work = [&] { CopyText(NameAt(*database, *idType, *index), buffer, *bufferLength); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, index, buffer, bufferLength);
}

void Database_NameLenOfIndex_F(FED_Database* database, const std::int32_t* idType,
                               const std::int64_t* index, std::int32_t* length,
                               std::int32_t* status) noexcept {
  const auto work = [&] {
    *length = static_cast<std::int32_t>(NameAt(*database, *idType, *index).size());
  };
  qelta::RunWithStatus(kLocation, status, work, database, idType, index, length);
}

void Database_MaxIndexOfIds_F(FED_Database* database, const std::int32_t* idType,
                              std::int64_t* maxIndex, std::int32_t* status) noexcept {
  const auto work = [&] { *maxIndex = MapOf(*database, *idType).GetMaxIndex(); };
  qelta::RunWithStatus(kLocation, status, work, database, idType, maxIndex);
}

void Database_CopyBlocks_F(FED_Database* source, FED_Database* target,
                           const FED_DataDescriptorPattern* pattern, const std::int32_t* copyEmpty,
                           std::int64_t* copied, std::int32_t* status) noexcept {
  const auto work = [&] {
    const auto action = *copyEmpty == 0 ? QeltaDatabaseUtils::SKIP_EMPTY_BLOCKS
                                        : QeltaDatabaseUtils::COPY_EMPTY_BLOCKS;
    *copied = static_cast<std::int64_t>(
        QeltaDatabaseUtils::copy_datablocks(*source, *target, *pattern, action));
  };
  qelta::RunWithStatus(kLocation, status, work, source, target, pattern, copyEmpty, copied);
}

void IdView_New_F(FED_Database* database, FED_DataBlock* block, FED_IdDataBlock** view,
                  std::int32_t* status) noexcept {
  const auto work = [&] { *view = new FED_IdDataBlock(*block, database->GetIdMapsPool(), false); };
  qelta::RunWithStatus(kLocation, status, work, database, block, view);
}

void IdView_Delete_F(FED_IdDataBlock** view, std::int32_t* status) noexcept {
  const auto work = [&] {
    delete *view;
    *view = nullptr;
  };
  qelta::RunWithStatus(kLocation, status, work, view);
}

void IdView_GetIdTypes_F(FED_IdDataBlock* view, const std::int32_t* room, std::int32_t* types,
                         std::int32_t* count, std::int32_t* status) noexcept {
  const auto work = [&] {
    const std::vector<FED_IdType>& all = qelta::MetaDataOf(view->GetDataBlock()).idTypes;
    const auto fitting = static_cast<std::size_t>(std::max(*room, 0));
    std::copy_n(all.begin(), std::min(fitting, all.size()), types);
    *count = static_cast<std::int32_t>(all.size());
  };
  qelta::RunWithStatus(kLocation, status, work, view, room, types, count);
}

void IdView_HasRecord_F(FED_IdDataBlock* view, const std::int32_t* id, std::int32_t* has,
                        std::int32_t* status) noexcept {
  const auto work = [&] { *has = view->HasRecord(*id) ? 1 : 0; };
  qelta::RunWithStatus(kLocation, status, work, view, id, has);
}

void IdView_HasRecord_Name_F(FED_IdDataBlock* view, const char* name, std::int32_t* has,
                             std::int32_t* status) noexcept {
  const auto work = [&] { *has = view->HasRecord(std::string(name)) ? 1 : 0; };
  qelta::RunWithStatus(kLocation, status, work, view, name, has);
}

void IdView_GetScalar_F(FED_IdDataBlock* view, const std::int32_t* id, double* value,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->GetScalar(*id, *value); };
  qelta::RunWithStatus(kLocation, status, work, view, id, value);
}

void IdView_SetScalar_F(FED_IdDataBlock* view, const std::int32_t* id, const double* value,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->SetScalar(*id, *value); };
  qelta::RunWithStatus(kLocation, status, work, view, id, value);
}

void IdView_GetVector_F(FED_IdDataBlock* view, const std::int32_t* id, double* values,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->GetVector(*id, values); };
  qelta::RunWithStatus(kLocation, status, work, view, id, values);
}

void IdView_SetVector_F(FED_IdDataBlock* view, const std::int32_t* id, const double* values,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->SetVector(*id, values); };
  qelta::RunWithStatus(kLocation, status, work, view, id, values);
}

void IdView_GetTensor_F(FED_IdDataBlock* view, const std::int32_t* id, double* values,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->GetTensor(*id, values); };
  qelta::RunWithStatus(kLocation, status, work, view, id, values);
}

void IdView_SetTensor_F(FED_IdDataBlock* view, const std::int32_t* id, const double* values,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->SetTensor(*id, values); };
  qelta::RunWithStatus(kLocation, status, work, view, id, values);
}

void IdView_GetScalar_Name_F(FED_IdDataBlock* view, const char* name, double* value,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->GetScalar(std::string(name), *value); };
  qelta::RunWithStatus(kLocation, status, work, view, name, value);
}

void IdView_SetScalar_Name_F(FED_IdDataBlock* view, const char* name, const double* value,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->SetScalar(std::string(name), *value); };
  qelta::RunWithStatus(kLocation, status, work, view, name, value);
}

void IdView_GetVector_Name_F(FED_IdDataBlock* view, const char* name, double* values,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->GetVector(std::string(name), values); };
  qelta::RunWithStatus(kLocation, status, work, view, name, values);
}

void IdView_SetVector_Name_F(FED_IdDataBlock* view, const char* name, const double* values,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->SetVector(std::string(name), values); };
  qelta::RunWithStatus(kLocation, status, work, view, name, values);
}

void IdView_GetTensor_Name_F(FED_IdDataBlock* view, const char* name, double* values,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->GetTensor(std::string(name), values); };
  qelta::RunWithStatus(kLocation, status, work, view, name, values);
}

void IdView_SetTensor_Name_F(FED_IdDataBlock* view, const char* name, const double* values,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->SetTensor(std::string(name), values); };
  qelta::RunWithStatus(kLocation, status, work, view, name, values);
}

void IdView_CreateRecord_F(FED_IdDataBlock* view, FED_IdDataRecord** record,
                           std::int32_t* status) noexcept {
  const auto work = [&] { *record = &view->CreateDataRecord(); };
  qelta::RunWithStatus(kLocation, status, work, view, record);
}

void IdView_DeleteRecord_F(FED_IdDataBlock* view, FED_IdDataRecord** record,
                           std::int32_t* status) noexcept {
  const auto work = [&] {
    if (*record != nullptr) view->DeleteDataRecord(**record);
    *record = nullptr;
  };
  qelta::RunWithStatus(kLocation, status, work, view, record);
}

void IdView_GetRecord_F(FED_IdDataBlock* view, const std::int32_t* id, FED_IdDataRecord* record,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->GetRecord(*id, *record); };
  qelta::RunWithStatus(kLocation, status, work, view, id, record);
}

void IdView_GetRecord_Name_F(FED_IdDataBlock* view, const char* name, FED_IdDataRecord* record,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->GetRecord(std::string(name), *record); };
  qelta::RunWithStatus(kLocation, status, work, view, name, record);
}

void IdView_SetRecord_F(FED_IdDataBlock* view, const std::int32_t* id, FED_IdDataRecord* record,
                        std::int32_t* status) noexcept {
  const auto work = [&] { view->SetRecord(*id, *record); };
  qelta::RunWithStatus(kLocation, status, work, view, id, record);
}

void IdView_SetRecord_Name_F(FED_IdDataBlock* view, const char* name, FED_IdDataRecord* record,
                             std::int32_t* status) noexcept {
  const auto work = [&] { view->SetRecord(std::string(name), *record); };
  qelta::RunWithStatus(kLocation, status, work, view, name, record);
}

void IdRecord_GetInteger_F(FED_IdDataRecord* record, const std::int32_t* field, std::int32_t* value,
                           std::int32_t* status) noexcept {
  const auto work = [&] { *value = record->GetInteger(FieldOf(*field)); };
  qelta::RunWithStatus(kLocation, status, work, record, field, value);
}

void IdRecord_SetInteger_F(FED_IdDataRecord* record, const std::int32_t* field,
                           const std::int32_t* value, std::int32_t* status) noexcept {
  const auto work = [&] { record->SetInteger(FieldOf(*field), *value); };
  qelta::RunWithStatus(kLocation, status, work, record, field, value);
}

void IdRecord_GetDouble_F(FED_IdDataRecord* record, const std::int32_t* field, double* value,
                          std::int32_t* status) noexcept {
  const auto work = [&] { *value = record->GetDouble(FieldOf(*field)); };
  qelta::RunWithStatus(kLocation, status, work, record, field, value);
}

void IdRecord_SetDouble_F(FED_IdDataRecord* record, const std::int32_t* field, const double* value,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->SetDouble(FieldOf(*field), *value); };
  qelta::RunWithStatus(kLocation, status, work, record, field, value);
}

void IdRecord_GetVector_F(FED_IdDataRecord* record, const std::int32_t* field, double* values,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->GetVector(FieldOf(*field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, field, values);
}

void IdRecord_SetVector_F(FED_IdDataRecord* record, const std::int32_t* field, const double* values,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->SetVector(FieldOf(*field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, field, values);
}

void IdRecord_GetTensor_F(FED_IdDataRecord* record, const std::int32_t* field, double* values,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->GetTensor(FieldOf(*field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, field, values);
}

void IdRecord_SetTensor_F(FED_IdDataRecord* record, const std::int32_t* field, const double* values,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->SetTensor(FieldOf(*field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, field, values);
}

void IdRecord_GetString_F(FED_IdDataRecord* record, const std::int32_t* field, char* buffer,
                          const std::int32_t* bufferLength, std::int32_t* status) noexcept {
  const auto work = [&] { CopyText(record->GetString(FieldOf(*field)), buffer, *bufferLength); };
  qelta::RunWithStatus(kLocation, status, work, record, field, buffer, bufferLength);
}

void IdRecord_GetStringLen_F(FED_IdDataRecord* record, const std::int32_t* field,
                             std::int32_t* length, std::int32_t* status) noexcept {
  const auto work = [&] {
    *length = static_cast<std::int32_t>(record->GetString(FieldOf(*field)).size());
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, length);
}

void IdRecord_SetString_F(FED_IdDataRecord* record, const std::int32_t* field, const char* text,
                          std::int32_t* status) noexcept {
  const auto work = [&] { record->SetString(FieldOf(*field), text); };
  qelta::RunWithStatus(kLocation, status, work, record, field, text);
}

void IdRecord_GetIntList_F(FED_IdDataRecord* record, const std::int32_t* field, FED_IntArray** list,
                           std::int32_t* status) noexcept {
  const auto work = [&] {
    auto array = std::make_unique<FED_IntArray>();
    record->GetIntList(FieldOf(*field), *array);
    *list = array.release();
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void IdRecord_SetIntList_F(FED_IdDataRecord* record, const std::int32_t* field, FED_IntArray* list,
                           std::int32_t* status) noexcept {
  const auto work = [&] { record->SetIntList(FieldOf(*field), *list); };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void IdRecord_GetDoubleList_F(FED_IdDataRecord* record, const std::int32_t* field,
                              FED_DoubleArray** list, std::int32_t* status) noexcept {
  const auto work = [&] {
    auto array = std::make_unique<FED_DoubleArray>();
    record->GetDoubleList(FieldOf(*field), *array);
    *list = array.release();
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void IdRecord_SetDoubleList_F(FED_IdDataRecord* record, const std::int32_t* field,
                              FED_DoubleArray* list, std::int32_t* status) noexcept {
  const auto work = [&] { record->SetDoubleList(FieldOf(*field), *list); };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void IdRecord_SetStringList_F(FED_IdDataRecord* record, const std::int32_t* field,
                              const char* names, const std::int32_t* nameLength,
                              const std::int64_t* count, std::int32_t* status) noexcept {
  const auto work = [&] {
    record->SetStringList(FieldOf(*field), SplitNames(names, *nameLength, CountOf(*count)));
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, names, nameLength, count);
}
