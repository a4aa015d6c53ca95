#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace qelta {

/// A number, or a text.
using QeltaScalar = std::variant<std::int64_t, double, std::string>;

/// What one column of a record holds.
using QeltaCell = std::variant<std::int64_t, double, std::string, std::vector<QeltaScalar>>;

/// Enough digits to read back the same double.
constexpr int kAllDigits = 17;

/// As printf's %.*g does: "0.25", "1e-05", "nan", "inf".
std::string ToText(double number, int digits);

/// Numbers as above, the members of a list with blanks between them.
std::string ToText(const QeltaScalar& scalar, int digits);
std::string ToText(const QeltaCell& cell, int digits);

}  // namespace qelta
