#pragma once

#include <QeltaCell.h>

#include <nlohmann/json.hpp>

namespace qelta {

/// Numbers that are none, or infinite, become the texts "NaN", "Infinity" and "-Infinity".
nlohmann::ordered_json ToJson(const QeltaCell& cell);

/// On one line; bytes that are no UTF-8 are replaced.
std::string ToLine(const nlohmann::ordered_json& value);

}  // namespace qelta
