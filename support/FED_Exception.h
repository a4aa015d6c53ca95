#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "QeltaExport.h"

/// Base of everything that the library throws on purpose.
///
/// An exception carries a message for people, a message id (twelve decimal digits, unique to the
/// place that raised it, or empty), the location tag "|%P|module|class" of that place, and the
/// call stack at its construction. It may own a cause, which copies clone: every object deletes
/// its own cause only. An exception belongs to the thread that raised it.
class QELTA_EXPORT FED_Exception : public std::exception {
 public:
  ~FED_Exception() override;

  /// The message text; valid as long as the exception.
  const char* what() const noexcept override;

  /// A new exception on the heap with the same texts and a clone of the cause; its call stack is
  /// taken anew. The caller owns it.
  virtual FED_Exception* Clone() const = 0;

  virtual const std::string& GetMessageText() const;
  virtual const std::string& GetLocation() const;
  virtual std::string GetTypeName() const = 0;

  /// The status that a Fortran entry point returns for this exception.
  virtual std::int32_t GetStatusCode() const = 0;

  /// Twelve decimal digits, or empty for an exception raised without an id.
  const std::string& GetMessageId() const { return m_MessageId; }

 protected:
  FED_Exception(const std::string& messageId, const std::string& message,
                const std::string& location);
  FED_Exception(const std::string& message, const std::string& location);
  /// Clones `cause`.
  FED_Exception(const FED_Exception& cause, const std::string& messageId,
                const std::string& message, const std::string& location);

  FED_Exception(const FED_Exception& other);
  FED_Exception& operator=(const FED_Exception& other);

  const FED_Exception* GetCause() const { return m_Cause.get(); }

 private:
  std::string m_MessageId;
  std::string m_Location;
  std::string m_Message;
  std::unique_ptr<FED_Exception> m_Cause;
  std::vector<std::string> m_Backtrace;
};
