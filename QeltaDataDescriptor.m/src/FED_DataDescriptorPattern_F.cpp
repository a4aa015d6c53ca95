#include "FED_DataDescriptorPattern_F.h"

#include <algorithm>

#include "FED_DataDescriptorPattern.h"
#include "QeltaEntryPoint.h"
#include "QeltaStringUtil.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataDescriptor|FED_DataDescriptorPattern_F";
constexpr const char* kCondition = "status != STATUS_OK";

}  // namespace

void DataDescriptorPattern_SetMatchExact_Str_F(FED_DataDescriptorPattern* pattern,
                                               const std::int32_t* field, const char* text,
                                               const std::int32_t* textLength) noexcept {
  const auto work = [&] {
    const auto length = static_cast<std::size_t>(std::max(*textLength, 0));
    pattern->SetMatchExact(static_cast<FED_DataDescriptor::ResultIndex>(*field),
                           std::string(text, length));
  };
  qelta::RunOrEnd(kLocation, kCondition, work, pattern, field, text, textLength);
}

void DataDescriptorPattern_ToString_F(FED_DataDescriptorPattern* pattern, char* buffer,
                                      const std::int32_t* bufferLength) noexcept {
  const auto work = [&] {
    const std::string text = pattern->ToString();
    QeltaStringUtil::copy_to_fstr_trunc(text.c_str(), text.size(), buffer, *bufferLength);
  };
  qelta::RunOrEnd(kLocation, kCondition, work, pattern, buffer, bufferLength);
}
