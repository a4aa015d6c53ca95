#pragma once

#include <QeltaOutputFile.h>

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

namespace qelta {

/// Writes arrays of numbers into a page: their bytes plane by plane (all first bytes, then all
/// second ones ...), deflated, in base 64. Memory for four times the array.
class ReportArrays {
 public:
  explicit ReportArrays(QeltaOutputFile& file) : m_File(file) {}

  /// Gives what the page needs to find and decode the array: {"id", "type", "count"}.
  nlohmann::ordered_json Write(const std::vector<float>& numbers);
  nlohmann::ordered_json Write(const std::vector<std::int32_t>& numbers);
  nlohmann::ordered_json Write(const std::vector<std::uint32_t>& numbers);
  nlohmann::ordered_json Write(const std::vector<std::uint8_t>& numbers);

  /// What an array of so many bytes takes at most.
  static std::uint64_t MostBytes(std::uint64_t bytes);

 private:
  nlohmann::ordered_json WriteBytes(const char* type, const void* bytes, std::size_t size,
                                    std::size_t count);

  QeltaOutputFile& m_File;
  int m_Count = 0;
};

}  // namespace qelta
