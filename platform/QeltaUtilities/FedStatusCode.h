#pragma once

#include <cstdint>

/// Result of an operation that reports by value instead of throwing: the flat entry points and the
/// conversions of QeltaStringUtil. Success is 0, every failure is negative.
enum FedStatusCode : std::int32_t {
  STATUS_OK = 0,
  /// A failure that has a message id, or any other exception.
  STATUS_FAILURE = -1,
  /// The text is not a number.
  STATUS_NO_NUMBER = -2,
  /// The text is a number that the result cannot hold.
  STATUS_OUT_OF_RANGE = -3,
  /// A failure raised without a message id.
  STATUS_FAILURE_WITHOUT_ID = -14
};
