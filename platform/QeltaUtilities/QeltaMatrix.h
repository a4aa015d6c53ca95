#pragma once

#include <cstddef>

/// A small matrix of R rows and C columns, zero when default constructed.
///
/// The elements stand row by row in one contiguous run without a header, so that data() may be
/// handed to whatever wants R * C values. Rows, columns and positions count from 0 and are not
/// checked.
template <std::size_t R, std::size_t C, class T>
class QeltaMatrix {
 public:
  constexpr T& operator()(std::size_t row, std::size_t column) {
    return m_Elements[row * C + column];
  }
  constexpr const T& operator()(std::size_t row, std::size_t column) const {
    return m_Elements[row * C + column];
  }

  /// Element number i in the order of data(), 0 <= i < R * C.
  constexpr T& operator[](std::size_t i) { return m_Elements[i]; }
  constexpr const T& operator[](std::size_t i) const { return m_Elements[i]; }

  constexpr T* data() { return m_Elements; }
  constexpr const T* data() const { return m_Elements; }

  static constexpr std::size_t size() { return R * C; }

 private:
  static_assert(R > 0 && C > 0, "a matrix has at least one element");

  T m_Elements[R * C] = {};
};
