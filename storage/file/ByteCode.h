#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "LittleEndian.h"

namespace qelta {

/// Appends an integer in little-endian order.
template <class T>
void AppendNumber(std::string& bytes, T value) {
  unsigned char raw[sizeof(T)];
  PutNumber(raw, static_cast<std::make_unsigned_t<T>>(value), sizeof raw);
  bytes.append(reinterpret_cast<const char*>(raw), sizeof raw);
}

/// Takes values off the front of bytes, which outlive it. Taking more than is left gives false.
class ByteSource {
 public:
  explicit ByteSource(std::string_view bytes) : m_Rest(bytes) {}

  /// An integer in little-endian order.
  template <class T>
  bool Take(T& value) {
    std::string_view raw;
    if (!Take(sizeof(T), raw)) return false;
    const auto* const from = reinterpret_cast<const unsigned char*>(raw.data());
    value = static_cast<T>(GetNumber(from, raw.size()));
    return true;
  }

  bool Take(std::size_t size, std::string_view& bytes) {
    if (size > m_Rest.size()) return false;
    bytes = m_Rest.substr(0, size);
    m_Rest.remove_prefix(size);
    return true;
  }

  std::size_t GetRest() const { return m_Rest.size(); }

 private:
  std::string_view m_Rest;
};

}  // namespace qelta
