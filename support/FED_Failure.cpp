#include "FED_Failure.h"

#include <cstdarg>

#include "FedStatusCode.h"
#include "QeltaFormat.h"

FED_Failure::FED_Failure(const std::string& messageId, const std::string& message,
                         const std::string& location)
    : FED_Exception(messageId, message, location) {}

FED_Failure::FED_Failure(const std::string& message, const std::string& location)
    : FED_Exception(message, location) {}

FED_Failure::FED_Failure(const FED_Exception& cause, const std::string& messageId,
                         const std::string& message, const std::string& location)
    : FED_Exception(cause, messageId, message, location) {}

FED_Failure::FED_Failure(const FED_Failure& other) = default;

FED_Failure& FED_Failure::operator=(const FED_Failure& other) = default;

FED_Failure::~FED_Failure() = default;

FED_Exception* FED_Failure::Clone() const {
  if (const FED_Exception* cause = GetCause()) {
    return new FED_Failure(*cause, GetMessageId(), GetMessageText(), GetLocation());
  }
  return new FED_Failure(GetMessageId(), GetMessageText(), GetLocation());
}

std::string FED_Failure::GetTypeName() const { return "FED_Failure"; }

std::int32_t FED_Failure::GetStatusCode() const {
  return GetMessageId().empty() ? STATUS_FAILURE_WITHOUT_ID : STATUS_FAILURE;
}

void FED_Failure::Throw(const char* messageId, const char* location, const char* format, ...) {
  char text[1024];
  std::va_list arguments;
  va_start(arguments, format);
  QeltaFormat::FormatTo(text, sizeof text, format, arguments);
  va_end(arguments);
  throw FED_Failure(messageId, text, location);
}
