#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

/// The common part of FED_IntArray and FED_DoubleArray: a run of elements on the heap, described by
/// three 64-bit words that other languages may read.
///
/// The array owns its elements. Copies are deep; a moved-from array is empty.
template <class T>
struct QeltaArray {
  static_assert(std::is_trivially_copyable_v<T>, "elements are copied as bytes");

  /// Number of elements at `data`.
  std::uint64_t count = 0;
  /// Free for the owner; carried along by copies and moves, otherwise never touched.
  std::uint64_t reserved = 0;
  /// The elements; null when there are none. Changed by Resize and assignment only.
  T* data = nullptr;

  QeltaArray() = default;

  /// A copy of the vector's elements; not explicit, so that a vector does where an array is asked
  /// for.
  QeltaArray(const std::vector<T>& values) : QeltaArray(values.data(), values.size()) {}

  QeltaArray(const QeltaArray& other) : QeltaArray(other.data, other.count) {
    reserved = other.reserved;
  }
  QeltaArray(QeltaArray&& other) noexcept { Swap(other); }

  QeltaArray& operator=(const QeltaArray& other) {
    if (this != &other) QeltaArray(other).Swap(*this);
    return *this;
  }
  QeltaArray& operator=(QeltaArray&& other) noexcept {
    QeltaArray(std::move(other)).Swap(*this);
    return *this;
  }

  ~QeltaArray() { delete[] data; }

  /// Makes `newCount` the number of elements: those that fit stay, new ones are 0. Growing moves
  /// the elements, shrinking leaves them where they are (with their memory) unless none remains.
  /// std::bad_alloc when there is no room; the array is then unchanged.
  void Resize(std::uint64_t newCount) {
    if (newCount == 0 || newCount > count) {
      Reallocate(newCount);
    }
    count = newCount;
  }

 private:
  QeltaArray(const T* values, std::uint64_t valueCount) {
    Resize(valueCount);
    if (valueCount > 0) std::memcpy(data, values, ByteCount(valueCount));
  }

  void Reallocate(std::uint64_t newCount) {
    if (newCount > PTRDIFF_MAX / sizeof(T)) throw std::bad_array_new_length();
    T* const fresh = newCount == 0 ? nullptr : new T[static_cast<std::size_t>(newCount)]();
    if (fresh != nullptr && count > 0) std::memcpy(fresh, data, ByteCount(count));
    delete[] data;
    data = fresh;
  }

  void Swap(QeltaArray& other) noexcept {
    std::swap(count, other.count);
    std::swap(reserved, other.reserved);
    std::swap(data, other.data);
  }

  static std::size_t ByteCount(std::uint64_t elements) {
    return static_cast<std::size_t>(elements) * sizeof(T);
  }
};
