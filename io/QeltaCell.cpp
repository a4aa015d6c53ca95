#include "QeltaCell.h"

#include <FED_Message.h>

#include <cmath>

namespace qelta {
namespace {

std::string Text(std::int64_t number, int /*digits*/) { return std::to_string(number); }
std::string Text(double number, int digits) { return ToText(number, digits); }
std::string Text(const std::string& text, int /*digits*/) { return text; }
std::string Text(const std::vector<QeltaScalar>& list, int digits) {
  std::string text;
  for (const QeltaScalar& item : list) text += (text.empty() ? "" : " ") + ToText(item, digits);
  return text;
}

}  // namespace

// The sign of what is not a number means nothing.
std::string ToText(double number, int digits) {
  return std::isnan(number) ? "nan" : FED_MESSAGE("%.*g", digits, number);
}

std::string ToText(const QeltaScalar& scalar, int digits) {
  return std::visit([digits](const auto& value) { return Text(value, digits); }, scalar);
}

std::string ToText(const QeltaCell& cell, int digits) {
  return std::visit([digits](const auto& value) { return Text(value, digits); }, cell);
}

}  // namespace qelta
