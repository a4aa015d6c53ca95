#include "JsonText.h"

#include <cmath>

namespace qelta {
namespace {

using Json = nlohmann::ordered_json;

Json Value(std::int64_t number) { return number; }
Json Value(const std::string& text) { return text; }
Json Value(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  return number;
}
Json Value(const std::vector<QeltaScalar>& list) {
  Json values = Json::array();
  for (const QeltaScalar& item : list) {
    values.push_back(std::visit([](const auto& value) { return Value(value); }, item));
  }
  return values;
}

}  // namespace

Json ToJson(const QeltaCell& cell) {
  return std::visit([](const auto& value) { return Value(value); }, cell);
}

std::string ToLine(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace qelta
