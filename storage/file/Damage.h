#pragma once

#include <string>

#include "FED_Failure.h"

namespace qelta {

/// A database does not hold what was written into it. The message names the file and the place.
class Damage : public FED_Failure {
 public:
  Damage(const std::string& messageId, const std::string& message, const std::string& location)
      : FED_Failure(messageId, message, location) {}

  FED_Exception* Clone() const override { return new Damage(*this); }
};

}  // namespace qelta
