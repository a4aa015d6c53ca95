#include "FED_DataBlock_F.h"

#include "FED_DataBlock.h"
#include "QeltaEntryPoint.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataBlock|FED_DataBlock";

}  // namespace

void DataBlock_CreateRecord_F(FED_DataBlock* block, FED_DataRecord** record,
                              std::int32_t* status) noexcept {
  const auto work = [&] { *record = &block->CreateDataRecord(); };
  qelta::RunWithStatus(kLocation, status, work, block, record);
}

void DataBlock_DeleteRecord_F(FED_DataBlock* block, FED_DataRecord** record,
                              std::int32_t* status) noexcept {
  const auto work = [&] {
    if (*record != nullptr) block->DeleteDataRecord(**record);
  };
  qelta::RunWithStatus(kLocation, status, work, block, record);
}

void DataBlock_GetDescriptor_F(FED_DataBlock* block, FED_DataDescriptor* descriptor) noexcept {
  const auto work = [&] { *descriptor = block->GetDescriptor(); };
  qelta::RunOrEnd(kLocation, "errcode != STATUS_OK", work, block, descriptor);
}

void DataBlock_GetMaxIndex_F(FED_DataBlock* block, std::int32_t* maxIndex,
                             std::int32_t* status) noexcept {
  const auto work = [&] { *maxIndex = static_cast<std::int32_t>(block->GetMaxIndex()); };
  qelta::RunWithStatus(kLocation, status, work, block, maxIndex);
}

void DataBlock_HasRecord_F(FED_DataBlock* block, const std::int32_t* index, std::int32_t* has,
                           std::int32_t* status) noexcept {
  const auto work = [&] {
    *has = 0;
    *has = block->HasRecord(qelta::Widen(*index)) ? 1 : 0;
  };
  qelta::RunWithStatus(kLocation, status, work, block, index, has);
}

void DataBlock_Reserve_F(FED_DataBlock* block, const std::int32_t* count,
                         std::int32_t* status) noexcept {
  const auto work = [&] { block->Reserve(qelta::Widen(*count)); };
  qelta::RunWithStatus(kLocation, status, work, block, count);
}

void DataBlock_GetRecord_F(FED_DataBlock* block, const std::int32_t* index, FED_DataRecord* record,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->GetRecord(qelta::Widen(*index), *record); };
  qelta::RunWithStatus(kLocation, status, work, block, index, record);
}

void DataBlock_SetRecord_F(FED_DataBlock* block, const std::int32_t* index, FED_DataRecord* record,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->SetRecord(qelta::Widen(*index), *record); };
  qelta::RunWithStatus(kLocation, status, work, block, index, record);
}

void DataBlock_GetInteger_F(FED_DataBlock* block, std::int32_t index, std::int32_t* value,
                            std::int32_t* status) noexcept {
  const auto work = [&] { *value = block->GetInteger(qelta::Widen(index)); };
  qelta::RunWithStatus(kLocation, status, work, block, value);
}

void DataBlock_SetInteger_F(FED_DataBlock* block, std::int32_t index, std::int32_t value,
                            std::int32_t* status) noexcept {
  const auto work = [&] { block->SetInteger(qelta::Widen(index), value); };
  qelta::RunWithStatus(kLocation, status, work, block);
}

void DataBlock_GetScalar_F(FED_DataBlock* block, std::int32_t index, double* value,
                           std::int32_t* status) noexcept {
  const auto work = [&] { *value = block->GetScalar(qelta::Widen(index)); };
  qelta::RunWithStatus(kLocation, status, work, block, value);
}

void DataBlock_SetScalar_F(FED_DataBlock* block, std::int32_t index, double value,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->SetScalar(qelta::Widen(index), value); };
  qelta::RunWithStatus(kLocation, status, work, block);
}

void DataBlock_GetVector_F(FED_DataBlock* block, std::int32_t index, double* values,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->GetVector(qelta::Widen(index), values); };
  qelta::RunWithStatus(kLocation, status, work, block, values);
}

void DataBlock_SetVector_F(FED_DataBlock* block, std::int32_t index, const double* values,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->SetVector(qelta::Widen(index), values); };
  qelta::RunWithStatus(kLocation, status, work, block, values);
}

void DataBlock_GetTensor_F(FED_DataBlock* block, std::int32_t index, double* values,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->GetTensor(qelta::Widen(index), values); };
  qelta::RunWithStatus(kLocation, status, work, block, values);
}

void DataBlock_SetTensor_F(FED_DataBlock* block, std::int32_t index, const double* values,
                           std::int32_t* status) noexcept {
  const auto work = [&] { block->SetTensor(qelta::Widen(index), values); };
  qelta::RunWithStatus(kLocation, status, work, block, values);
}
