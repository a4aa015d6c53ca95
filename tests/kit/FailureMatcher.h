#pragma once

#include <gtest/gtest.h>

#include <string>

#include "FED_Failure.h"

namespace qelta::test {

/// Runs `action` and returns the failure that it throws; an empty one, and a test failure, when it
/// throws none.
template <class Action>
FED_Failure CatchFailure(Action action) {
  try {
    action();
  } catch (const FED_Failure& failure) {
    return failure;
  }
  ADD_FAILURE() << "no FED_Failure was thrown";
  return FED_Failure("", "");
}

/// The message id of the failure that `action` throws.
template <class Action>
std::string FailureId(Action action) {
  return CatchFailure(action).GetMessageId();
}

/// Expects `action` to throw a failure with exactly these texts.
template <class Action>
void ExpectFailure(Action action, const std::string& id, const std::string& location,
                   const std::string& message) {
  const FED_Failure failure = CatchFailure(action);
  EXPECT_EQ(failure.GetMessageId(), id);
  EXPECT_EQ(failure.GetLocation(), location);
  EXPECT_EQ(failure.GetMessageText(), message);
}

}  // namespace qelta::test
