#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace qelta {

/// The element of the file that an array stands in.
enum class VtuSection { FieldData, PointData, CellData, Points, Cells };

/// An array of a .vtu file: what its XML element says, and how to get the bytes.
struct VtuArray {
  /// Takes the next bytes of the array.
  using Sink = std::function<void(const void* data, std::size_t bytes)>;
  /// Tells arrays of the same bytes; a null pointer: there is no other.
  using Identity = std::pair<const void*, int>;

  VtuSection section = VtuSection::FieldData;
  std::string name;
  const char* type = "Float64";
  std::uint64_t tuples = 0;
  std::vector<std::string> components = {""};  ///< their names; an empty one is not written
  std::uint64_t bytes = 0;
  Identity identity = {nullptr, 0};
  bool areIds = false;  ///< ids that are unique in the whole mesh
  /// Hands over exactly `bytes` bytes, in batches.
  std::function<void(const Sink&)> write;
};

/// A mesh with values: a .vtu file.
struct VtuGrid {
  std::uint64_t points = 0;
  std::uint64_t cells = 0;
  std::vector<VtuArray> arrays;

  std::uint64_t GetBytes() const;
};

/// Numbers of one type on their way to a sink, in batches.
template <class Number>
class VtuNumbers {
 public:
  explicit VtuNumbers(const VtuArray::Sink& sink) : m_Sink(sink) { m_Batch.reserve(kBatch); }

  void Add(Number number) {
    m_Batch.push_back(number);
    if (m_Batch.size() == kBatch) Flush();
  }

  /// Must follow the last number.
  void Flush() {
    if (!m_Batch.empty()) m_Sink(m_Batch.data(), m_Batch.size() * sizeof(Number));
    m_Batch.clear();
  }

 private:
  static constexpr std::size_t kBatch = std::size_t{1} << 16;

  const VtuArray::Sink& m_Sink;
  std::vector<Number> m_Batch;
};

}  // namespace qelta
