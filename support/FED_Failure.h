#pragma once

#include "FED_Exception.h"

/// The only exception class that the library throws.
///
/// Its status code is -1 when it has a message id and -14 when it has none.
class QELTA_EXPORT FED_Failure : public FED_Exception {
 public:
  FED_Failure(const std::string& messageId, const std::string& message,
              const std::string& location);
  FED_Failure(const std::string& message, const std::string& location);
  /// Keeps a clone of `cause`.
  FED_Failure(const FED_Exception& cause, const std::string& messageId, const std::string& message,
              const std::string& location);
  FED_Failure(const FED_Failure& other);
  FED_Failure& operator=(const FED_Failure& other);
  ~FED_Failure() override;

  FED_Exception* Clone() const override;
  std::string GetTypeName() const override;
  std::int32_t GetStatusCode() const override;

  /// Formats a message (printf conventions; `%Iu` is an unsigned 64-bit number; cut after 1023
  /// characters) and throws a failure that carries it. An empty message id means none.
  [[noreturn]] static void Throw(const char* messageId, const char* location, const char* format,
                                 ...);
};
