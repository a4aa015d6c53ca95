#include "FED_DataDescriptor_F.h"

#include "FED_DataDescriptor.h"
#include "QeltaEntryPoint.h"
#include "QeltaStringUtil.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataDescriptor|FED_DataDescriptor_F";
constexpr const char* kCondition = "status != STATUS_OK";

FED_DataDescriptor::ResultIndex Field(std::int32_t field) {
  return static_cast<FED_DataDescriptor::ResultIndex>(field);
}

}  // namespace

void Descriptor_GetString_F(FED_DataDescriptor* descriptor, const std::int32_t* field, char* buffer,
                            const std::int32_t* bufferLength) noexcept {
  const auto work = [&] {
    const std::string text = descriptor->GetString(Field(*field));
    QeltaStringUtil::copy_to_fstr_trunc(text.c_str(), text.size(), buffer, *bufferLength);
  };
  qelta::RunOrEnd(kLocation, kCondition, work, descriptor, field, buffer, bufferLength);
}

void Descriptor_SetString_F(FED_DataDescriptor* descriptor, const std::int32_t* field,
                            const char* text) noexcept {
  const auto work = [&] { descriptor->SetString(Field(*field), QeltaStringUtil::Trim(text)); };
  qelta::RunOrEnd(kLocation, kCondition, work, descriptor, field, text);
}

void Descriptor_ToString_F(FED_DataDescriptor* descriptor, char* buffer,
                           const std::int32_t* bufferLength) noexcept {
  const auto work = [&] {
    const std::string text = descriptor->ToString();
    QeltaStringUtil::copy_to_fstr_trunc(text.c_str(), text.size(), buffer, *bufferLength);
  };
  qelta::RunOrEnd(kLocation, kCondition, work, descriptor, buffer, bufferLength);
}
