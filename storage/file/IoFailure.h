#pragma once

#include <string>

#include "FED_Failure.h"

namespace qelta {

/// What the system said no to, as far as somebody can act on it.
enum class IoProblem { NOT_FOUND, EXISTS, DENIED, NO_SPACE, LOCKED, OTHER };

/// The system refused to read, write, sync, lock or rename. The message names the file, what was
/// tried and the system's own reason.
class IoFailure : public FED_Failure {
 public:
  IoFailure(IoProblem problem, const std::string& messageId, const std::string& message)
      : FED_Failure(messageId, message, "|%P|QeltaFileStorage|FileSystem"), m_Problem(problem) {}

  /// "Cannot `action` '`path`': `reason`." and what to do about it.
  [[noreturn]] static void Throw(IoProblem problem, const std::string& action,
                                 const std::string& path, const std::string& reason);

  FED_Exception* Clone() const override { return new IoFailure(*this); }

  IoProblem GetProblem() const { return m_Problem; }

 private:
  IoProblem m_Problem;
};

}  // namespace qelta
