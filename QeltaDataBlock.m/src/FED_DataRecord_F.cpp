#include "FED_DataRecord_F.h"

#include <memory>

#include "FED_DataRecord.h"
#include "QeltaEntryPoint.h"
#include "QeltaStringUtil.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataBlock|FED_DataRecord_F";

}  // namespace

void DataRecord_GetInteger_F(FED_DataRecord* record, std::int32_t field, std::int32_t* value,
                             std::int32_t* status) noexcept {
  const auto work = [&] { *value = record->GetInteger(qelta::Widen(field)); };
  qelta::RunWithStatus(kLocation, status, work, record, value);
}

void DataRecord_SetInteger_F(FED_DataRecord* record, std::int32_t field, std::int32_t value,
                             std::int32_t* status) noexcept {
  const auto work = [&] { record->SetInteger(qelta::Widen(field), value); };
  qelta::RunWithStatus(kLocation, status, work, record);
}

void DataRecord_GetFloat_F(FED_DataRecord* record, std::int32_t field, float* value,
                           std::int32_t* status) noexcept {
  const auto work = [&] { *value = record->GetFloat(qelta::Widen(field)); };
  qelta::RunWithStatus(kLocation, status, work, record, value);
}

void DataRecord_SetFloat_F(FED_DataRecord* record, std::int32_t field, float value,
                           std::int32_t* status) noexcept {
  const auto work = [&] { record->SetFloat(qelta::Widen(field), value); };
  qelta::RunWithStatus(kLocation, status, work, record);
}

void DataRecord_GetDouble_F(FED_DataRecord* record, std::int32_t field, double* value,
                            std::int32_t* status) noexcept {
  const auto work = [&] { *value = record->GetDouble(qelta::Widen(field)); };
  qelta::RunWithStatus(kLocation, status, work, record, value);
}

void DataRecord_SetDouble_F(FED_DataRecord* record, std::int32_t field, double value,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->SetDouble(qelta::Widen(field), value); };
  qelta::RunWithStatus(kLocation, status, work, record);
}

void DataRecord_GetVector_F(FED_DataRecord* record, std::int32_t field, double* values,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->GetVector(qelta::Widen(field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, values);
}

void DataRecord_SetVector_F(FED_DataRecord* record, std::int32_t field, const double* values,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->SetVector(qelta::Widen(field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, values);
}

void DataRecord_GetTensor_F(FED_DataRecord* record, std::int32_t field, double* values,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->GetTensor(qelta::Widen(field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, values);
}

void DataRecord_SetTensor_F(FED_DataRecord* record, std::int32_t field, const double* values,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->SetTensor(qelta::Widen(field), values); };
  qelta::RunWithStatus(kLocation, status, work, record, values);
}

void DataRecord_GetIntListLen_F(FED_DataRecord* record, std::int32_t field, std::int32_t* length,
                                std::int32_t* status) noexcept {
  const auto work = [&] {
    *length = static_cast<std::int32_t>(record->GetIntListLen(qelta::Widen(field)));
  };
  qelta::RunWithStatus(kLocation, status, work, record, length);
}

void DataRecord_GetIntListNative_F(FED_DataRecord* record, std::int32_t field, std::int32_t* values,
                                   std::int32_t* count, std::int32_t* status) noexcept {
  const auto work = [&] {
    *count = static_cast<std::int32_t>(record->GetIntList(qelta::Widen(field), values));
  };
  qelta::RunWithStatus(kLocation, status, work, record, values, count);
}

void DataRecord_GetIntList_F(FED_DataRecord* record, const std::int32_t* field, FED_IntArray** list,
                             std::int32_t* status) noexcept {
  const auto work = [&] {
    auto array = std::make_unique<FED_IntArray>();
    record->GetIntList(qelta::Widen(*field), *array);
    *list = array.release();
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void DataRecord_SetIntList_F(FED_DataRecord* record, const std::int32_t* field, FED_IntArray* list,
                             std::int32_t* status) noexcept {
  const auto work = [&] {
    record->SetIntList(qelta::Widen(*field), list->data, static_cast<std::size_t>(list->count));
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void DataRecord_GetDoubleListLen_F(FED_DataRecord* record, std::int32_t field, std::int32_t* length,
                                   std::int32_t* status) noexcept {
  const auto work = [&] {
    *length = static_cast<std::int32_t>(record->GetDoubleListLen(qelta::Widen(field)));
  };
  qelta::RunWithStatus(kLocation, status, work, record, length);
}

void DataRecord_GetDoubleListNative_F(FED_DataRecord* record, std::int32_t field, double* values,
                                      std::int32_t* count, std::int32_t* status) noexcept {
  const auto work = [&] {
    *count = static_cast<std::int32_t>(record->GetDoubleList(qelta::Widen(field), values));
  };
  qelta::RunWithStatus(kLocation, status, work, record, values, count);
}

void DataRecord_GetDoubleList_F(FED_DataRecord* record, const std::int32_t* field,
                                FED_DoubleArray** list, std::int32_t* status) noexcept {
  const auto work = [&] {
    auto array = std::make_unique<FED_DoubleArray>();
    record->GetDoubleList(qelta::Widen(*field), *array);
    *list = array.release();
  };
  const auto entry = qelta::EntryPoint(kLocation).LoggedAs("DataRecord_GetDoublList_F");
  qelta::RunWithStatus(entry, status, work, record, field, list);
}

void DataRecord_SetDoubleList_F(FED_DataRecord* record, const std::int32_t* field,
                                FED_DoubleArray* list, std::int32_t* status) noexcept {
  const auto work = [&] {
    record->SetDoubleList(qelta::Widen(*field), list->data, static_cast<std::size_t>(list->count));
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, list);
}

void DataRecord_GetString_F(FED_DataRecord* record, const std::int32_t* field, char* buffer,
                            const std::int32_t* bufferLength, std::int32_t* status) noexcept {
  const auto work = [&] {
    const std::string text = record->GetString(qelta::Widen(*field));
    QeltaStringUtil::copy_to_fstr_trunc(text.c_str(), text.size(), buffer, *bufferLength);
  };
  qelta::RunWithStatus(kLocation, status, work, record, field, buffer, bufferLength);
}

void DataRecord_SetString_F(FED_DataRecord* record, const std::int32_t* field, const char* text,
                            std::int32_t* status) noexcept {
  const auto work = [&] { record->SetString(qelta::Widen(*field), text); };
  qelta::RunWithStatus(kLocation, status, work, record, field, text);
}
