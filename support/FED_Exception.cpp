#include "FED_Exception.h"

#include "FED_Backtrace.h"

namespace {

FED_Exception* CloneOrNull(const FED_Exception* cause) {
  return cause == nullptr ? nullptr : cause->Clone();
}

}  // namespace

FED_Exception::FED_Exception(const std::string& messageId, const std::string& message,
                             const std::string& location)
    : m_MessageId(messageId),
      m_Location(location),
      m_Message(message),
      m_Backtrace(FED_Backtrace::GetBacktrace()) {}

FED_Exception::FED_Exception(const std::string& message, const std::string& location)
    : FED_Exception(std::string(), message, location) {}

FED_Exception::FED_Exception(const FED_Exception& cause, const std::string& messageId,
                             const std::string& message, const std::string& location)
    : FED_Exception(messageId, message, location) {
  m_Cause.reset(cause.Clone());
}

FED_Exception::FED_Exception(const FED_Exception& other)
    : std::exception(other),
      m_MessageId(other.m_MessageId),
      m_Location(other.m_Location),
      m_Message(other.m_Message),
      m_Cause(CloneOrNull(other.m_Cause.get())),
      m_Backtrace(other.m_Backtrace) {}

FED_Exception& FED_Exception::operator=(const FED_Exception& other) {
  if (this == &other) return *this;
  std::unique_ptr<FED_Exception> cause(CloneOrNull(other.m_Cause.get()));
  std::exception::operator=(other);
  m_MessageId = other.m_MessageId;
  m_Location = other.m_Location;
  m_Message = other.m_Message;
  m_Backtrace = other.m_Backtrace;
  m_Cause = std::move(cause);
  return *this;
}

FED_Exception::~FED_Exception() = default;

const char* FED_Exception::what() const noexcept { return m_Message.c_str(); }

const std::string& FED_Exception::GetMessageText() const { return m_Message; }

const std::string& FED_Exception::GetLocation() const { return m_Location; }
